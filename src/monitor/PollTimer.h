#pragma once

#include "platform/Clock.h"
#include "platform/Desktop.h"

#include <cstddef>
#include <deque>
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

    PollTimer(Ticker& ticker, const Clock& clock)
        : ticker_(ticker)
        , clock_(clock) {}

    void setWanted(bool wanted);
    [[nodiscard]] bool held() const { return !holds_.empty(); }
    /// Seconds since `time` (monotonic) in which a window held the timer; exact for the last few holds.
    [[nodiscard]] double heldSince(double time) const;
    /// Reason of the newest hold; empty when there is none.
    [[nodiscard]] std::string holdReason() const { return holds_.empty() ? std::string() : holds_.back(); }

private:
    /// One stretch of time without polling.
    struct Pause {
        double from = 0;
        double to = 0;
    };
    static constexpr std::size_t kPausesKept = 16;

    void apply();
    void beginPause();
    void endPause();

    Ticker& ticker_;
    const Clock& clock_;
    bool wanted_ = false;
    std::deque<Pause> pauses_; ///< the last one still grows while held
    std::vector<std::string> holds_;
};

} // namespace drx9
