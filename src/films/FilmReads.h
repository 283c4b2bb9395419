#pragma once

#include "films/FilmTransferParts.h"

#include <optional>
#include <vector>

namespace drx9 {

/// Films read from the instrument one after the other, held back until it is sure that each is the film of
/// its number. The wire numbers no answers: one that comes twice is the next film's too, and those behind it
/// move by one, until a command that is lost takes the surplus up. Then nothing shows it but a film that is
/// like the one before it. The last of such films is read once more.
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
    /// The films read since it was called last, after a look at the line; pumps events. `strict`: the last
    /// one is to be sure even if it shows only later that all have moved.
    Taken take(bool strict = false);

private:
    [[nodiscard]] bool likeTheOneBefore(std::size_t i) const;
    [[nodiscard]] bool isSuspect(std::size_t i, bool lastToo) const;
    bool confirmSuspects(bool lastToo);

    const FilmTransferParts& parts_;
    std::vector<FilmRecord> films_;
    std::optional<FilmRecord> before_; ///< the film before the first of them
    bool lastIsLost_ = false;
};

} // namespace drx9
