#pragma once

#include "films/FilmTransferParts.h"

#include <optional>
#include <vector>

namespace drx9 {

/// Films read from the instrument one after the other, held back until a look at the line shows nothing that
/// speaks against each being the film of its number. The wire numbers no answers: one that comes twice is the
/// next film's too, and those behind it move by one. That leaves an answer too many at the end; where an
/// exchange got none, or the last answer came once more, only films that are alike can hide it: the last of
/// such films is read once more then. Nothing is sent beside the reads where nothing is odd.
class FilmReads {
public:
    struct Taken {
        std::vector<FilmRecord> own;
        std::vector<int> lost; ///< numbers of films that may be others'
    };

    explicit FilmReads(const FilmTransferParts& parts)
        : parts_(parts) {}

    /// Pumps events.
    Commands::FilmAnswer read(int number, Messages messages);
    /// The films read since it was called last, after a look at the line; pumps events.
    Taken take();

private:
    [[nodiscard]] bool likeTheOneBefore(std::size_t i) const;
    [[nodiscard]] bool isSuspect(std::size_t i) const;
    bool confirmSuspects();

    const FilmTransferParts& parts_;
    std::vector<FilmRecord> films_;
    std::optional<FilmRecord> before_; ///< the film before the first of them
    bool lastIsLost_ = false;
};

} // namespace drx9
