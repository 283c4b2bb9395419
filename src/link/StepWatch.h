#pragma once

namespace drx9 {

/// Tells whether commands and answers have stayed in step since begin(). The wire numbers neither: an answer
/// that comes twice, or late, is taken for the next command's, whose own is then one too many.
class StepWatch {
public:
    /// Watches from behind the next send on: what is dropped before that belongs to earlier commands.
    void begin() { begins_ = true; }

    /// An answer came after its time-out.
    [[nodiscard]] bool late() const { return late_; }
    /// An answer came that no command had asked for. The last answer once more does not count.
    [[nodiscard]] bool surplus() const { return surplus_; }
    /// The last answer came once more, after two in a row had been alike and others had followed them. It is
    /// one too many by itself; or the second of the two was, all behind it have moved by one, and this is the
    /// last command's own.
    [[nodiscard]] bool doubtful() const { return doubtful_; }
    /// Two answers in a row were alike, and others have followed them.
    [[nodiscard]] bool mayHaveMoved() const { return mayHaveMoved_; }
    /// Nobody can tell which answer belongs to which command.
    [[nodiscard]] bool broken() const { return late_ || surplus_; }

    // Told by the link.

    void noteSend() {
        if (begins_) {
            begins_ = late_ = surplus_ = alike_ = mayHaveMoved_ = doubtful_ = false;
        }
    }
    void noteLate() { late_ = true; }
    void noteSurplus() { surplus_ = true; }
    void noteAnswer(bool likeTheOneBefore) {
        mayHaveMoved_ = mayHaveMoved_ || (alike_ && !likeTheOneBefore);
        alike_ = alike_ || likeTheOneBefore;
    }
    void noteCopy() { doubtful_ = doubtful_ || mayHaveMoved_; }

private:
    bool begins_ = false;
    bool late_ = false;
    bool surplus_ = false;
    bool alike_ = false;        ///< two answers in a row
    bool mayHaveMoved_ = false; ///< another one came behind two alike
    bool doubtful_ = false;
};

} // namespace drx9
