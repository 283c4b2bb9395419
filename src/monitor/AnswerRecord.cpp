#include "monitor/AnswerRecord.h"

#include <algorithm>

namespace drx9 {

namespace {
/// How long (s) a failed request goes on being said.
constexpr double kFailureStands = 10;
/// A pause longer than this between two readings is no usual interval (a dialog, a lost link).
constexpr double kLongestUsualInterval = 5.0;
constexpr double kLeastStaleAge = 0.75; // s
} // namespace

void AnswerRecord::noteReading(Commands::ReadResult result, const std::string& failure) {
    failure_ = failure;
    if (result != Commands::ReadResult::Done) {
        return;
    }
    const double now = clock_.monotonic();
    const double interval = now - lastGoodReading_;
    if (hasReading() && interval < kLongestUsualInterval) {
        usualInterval_ += (interval - usualInterval_) / 4;
    }
    lastGoodReading_ = now;
    lastGoodTime_ = clock_.local();
}

void AnswerRecord::noteExchange(const char* command) {
    // The exchange's own outcome: the status may be that of a command that was kept for after it.
    const std::string text = commStatusText(link_.outcome());
    if (!text.empty()) {
        failure_ = std::string(command) + ": " + text;
    }
}

void AnswerRecord::noteRequest(const char* command) {
    noteExchange(command);
    if (link_.outcome() != comm::kOk) {
        requestFailure_ = failure_;
        requestFailureUntil_ = clock_.monotonic() + kFailureStands;
    }
}

void AnswerRecord::noteFailure(const std::string& failure) {
    if (failure_.empty()) {
        failure_ = failure;
    }
}

void AnswerRecord::publish() {
    const bool stands = clock_.monotonic() < requestFailureUntil_;
    lastExchange_ = stands ? requestFailure_ : failure_.empty() ? "OK" : failure_;
}

bool AnswerRecord::stale(double now) const {
    return hasReading() && now - lastGoodReading_ >= std::max(kLeastStaleAge, 2 * usualInterval_);
}

} // namespace drx9
