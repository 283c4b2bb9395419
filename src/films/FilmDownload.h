#pragma once

#include "films/FilmReads.h"
#include "films/FilmTransferParts.h"
#include "films/TransferReport.h"

#include <vector>

namespace drx9 {

/// One download: films of the list to the instrument, then read back and compared. Lives inside one of
/// FilmTransfer's operations; pumps events.
class FilmDownload {
public:
    /// `index` as in FilmTransfer::download.
    FilmDownload(const FilmTransferParts& parts, int index)
        : parts_(parts)
        , index_(index)
        , reads_(parts) {}

    /// False when the shutter is open, or nobody knows; the operator has been told. Where it is open the
    /// hourglass is left behind (kept).
    bool shutterClosed();
    /// Writes and verifies; what came of it.
    LibraryNotice run();

private:
    void writeFilms();
    void VerifyFilms();
    [[nodiscard]] int rows() const;
    [[nodiscard]] bool takes(int film) const;
    [[nodiscard]] std::string rowName(int film) const;
    void writeRow(int film);
    void noteFaults(const std::string& name, const std::string& named);
    void nameRest();
    void lookAtWritten();
    bool verifyRow(int film);
    bool keepReadBack();

    const FilmTransferParts& parts_;
    int index_;
    TransferReport report_{"sent"};
    std::vector<int> written_;
    FilmReads reads_;
    Messages messages_ = Messages::Blocking; ///< of the next read-back
};

} // namespace drx9
