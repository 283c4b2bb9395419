#pragma once

#include "link/Commands.h"
#include "platform/Clock.h"

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
    void noteReading(Commands::ReadResult result, const std::string& failure);
    /// The link's last exchange was that of `command`.
    void noteExchange(const char* command);
    /// The same for a request of the operator, whose failure stands for a while, or the bar would only flash
    /// it.
    void noteRequest(const char* command);
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
    /// Usual time between two readings (s), over the last few.
    [[nodiscard]] double usualInterval() const { return usualInterval_; }
    /// No good reading for twice the usual time, at least 0.75 s.
    [[nodiscard]] bool stale(double now) const;
    /// Last failed exchange of the last tick in words: "Timeout", "P3: Timeout"; "OK" when none failed.
    [[nodiscard]] const std::string& lastExchange() const { return lastExchange_; }

private:
    const Link& link_;
    const Clock& clock_;
    double lastGoodReading_ = -1;
    LocalTime lastGoodTime_;
    double usualInterval_ = 0.25;
    std::string failure_; ///< last failed exchange of the tick or refresh in hand
    std::string requestFailure_;
    double requestFailureUntil_ = -1;
    std::string lastExchange_ = "OK";
};

} // namespace drx9
