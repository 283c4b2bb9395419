#pragma once

#include "platform/Desktop.h"

#include <string>
#include <vector>

namespace drx9 {

/// The update timer: runs when it is wanted and no window holds it. Holds are counted, so that closing one
/// window never restarts the timer under another.
class PollTimer {
public:
    static constexpr int kIntervalMs = 250;

    /// Keeps the timer stopped while it lives.
    class Hold {
    public:
        /// `reason` is shown to the operator: "System Parameters is open".
        Hold(PollTimer& timer, std::string reason);
        ~Hold();
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;

    private:
        PollTimer& timer_;
        std::string reason_;
    };

    explicit PollTimer(Ticker& ticker)
        : ticker_(ticker) {}

    void setWanted(bool wanted);
    [[nodiscard]] bool wanted() const { return wanted_; }
    [[nodiscard]] bool held() const { return !holds_.empty(); }
    /// Reason of the newest hold; empty when there is none.
    [[nodiscard]] std::string holdReason() const { return holds_.empty() ? std::string() : holds_.back(); }

private:
    void apply();

    Ticker& ticker_;
    bool wanted_ = false;
    std::vector<std::string> holds_;
};

} // namespace drx9
