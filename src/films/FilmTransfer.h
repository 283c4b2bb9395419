#pragma once

#include "films/FilmTransferParts.h"

namespace drx9 {

/// Moves films between the library and the instrument. Every operation pumps events, from its first exchange
/// to its last: nothing of ours runs meanwhile except what only looks, and another operation asked for then
/// has no effect. It ends early when two exchanges in a row time out, or after the exchange in hand when the
/// program closes. What came of it is the library's notice.
class FilmTransfer {
public:
    explicit FilmTransfer(const FilmTransferParts& parts)
        : parts_(parts) {}

    /// Reads all films of the instrument into a copy of the library. Where that would overwrite an upload
    /// that has not been saved, asks first.
    void upload();
    /// Writes the selected films (0) or all films (1) to the instrument, then reads them back and asks about
    /// each difference. The film in row k is written as film k + 1.
    void download(int index);
    /// "Z": the instrument's own films again.
    void resetToDefaults();
    /// Asks whether an upload that has not been saved under another name is to be, and saves it. False when
    /// it was to be saved and was not.
    bool askUnsaved();

    [[nodiscard]] bool running() const { return running_; }
    /// What the last download could not do, for the bottom line until the next transfer.
    [[nodiscard]] const LibraryNotice& lasting() const { return lasting_; }

private:
    class Run;

    FilmTransferParts parts_;
    bool running_ = false;
    LibraryNotice lasting_;
};

} // namespace drx9
