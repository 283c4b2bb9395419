#pragma once

#include "link/Commands.h"
#include "platform/Clock.h"

#include <array>
#include <cstdint>
#include <string>

namespace drx9 {

/// How the instrument answers: how fresh the readings are, and which exchange failed last, in words.
///
/// The monitor tells it of each exchange of a tick or a refresh, and publishes the outcome when that ends, so
/// that the status bar never flickers between the exchanges of one tick.
class AnswerRecord {
public:
    AnswerRecord(const Link& link, const Clock& clock)
        : link_(link)
        , clock_(clock) {}

    // Told by the monitor.

    /// A tick or a refresh begins: nothing of it has failed yet.
    void begin() { failure_.clear(); }
    /// A reading has ended. `disturbed`: a window held the polling, or the link was lost, since the last one.
    void noteReading(const Commands::ReadOutcome& reading, bool disturbed);
    /// The exchange of `command` has ended with this status.
    void noteExchange(const char* command, std::uint16_t status);
    /// Something that no single exchange tells; an exchange's own failure goes first.
    void noteFailure(const std::string& failure);
    void publish();
    /// Shows the text until the next publish().
    void say(const std::string& text) { lastExchange_ = text; }

    // Asked by who shows it. Times are monotonic.

    [[nodiscard]] bool hasReading() const { return lastGoodReading_ >= 0; }
    [[nodiscard]] double lastGoodReading() const { return lastGoodReading_; }
    /// Wall-clock time of the last good reading.
    [[nodiscard]] const LocalTime& lastGoodReadingTime() const { return lastGoodTime_; }
    /// Usual time between two readings (s): the mean of the last four periods that nothing disturbed.
    [[nodiscard]] double usualInterval() const;
    /// No good reading for twice the usual time, at least 0.75 s. Before the first period is known, a reading
    /// that is being answered is never late.
    [[nodiscard]] bool stale(double now) const;
    /// Readings in a row that were left out because their answers were out of step.
    [[nodiscard]] int straysInARow() const { return strays_; }
    /// Last failed exchange of the last tick in words: "Timeout", "P3: Timeout"; "OK" when none failed.
    [[nodiscard]] const std::string& lastExchange() const { return lastExchange_; }

private:
    static constexpr std::size_t kPeriods = 4;

    const Link& link_;
    const Clock& clock_;
    double lastGoodReading_ = -1;
    LocalTime lastGoodTime_;
    std::array<double, kPeriods> periods_{}; ///< s, the last ones in turn
    std::size_t periodCount_ = 0;            ///< since the program's start
    int strays_ = 0;
    std::string failure_; ///< last failed exchange of the tick or refresh in hand
    std::string lastExchange_ = "OK";
};

} // namespace drx9
