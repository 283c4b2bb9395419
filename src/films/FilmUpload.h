#pragma once

#include "films/FilmReads.h"
#include "films/FilmTransferParts.h"
#include "films/TransferReport.h"
#include "platform/ShownProgress.h"

#include <string>

namespace drx9 {

/// One upload: the instrument's films into the library that is open. Lives inside one of FilmTransfer's
/// operations; pumps events.
class FilmUpload {
public:
    explicit FilmUpload(const FilmTransferParts& parts)
        : parts_(parts)
        , reads_(parts)
        , replacements_(parts.library.replacements()) {}

    /// What was read is stored before a box tells why the rest was not. What came of it.
    LibraryNotice run();

private:
    void readFilms(const ShownProgress& shown);
    void readFilm(int number);
    void store();
    void storeFilms(const std::vector<FilmRecord>& films);
    bool storeFilm(const FilmRecord& film);
    void fail(int number);

    static constexpr double kStoreWithin = 0.9; ///< s; films read are stored together, once a second

    const FilmTransferParts& parts_;
    TransferReport report_{"read"};
    FilmReads reads_;
    int replacements_;    ///< of the library, when it was last written
    int failed_ = 0;      ///< the first film that could not be read; 0 none
    std::string failure_; ///< why, where the read itself told it
};

} // namespace drx9
