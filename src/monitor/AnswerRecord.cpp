#include "monitor/AnswerRecord.h"

#include "monitor/Texts.h"

#include <algorithm>
#include <numeric>

namespace drx9 {

namespace {
constexpr double kLeastStaleAge = 0.75;   // s
constexpr double kIntervalWhenNew = 0.25; // s
} // namespace

void AnswerRecord::noteReading(const Commands::ReadOutcome& reading, bool disturbed) {
    failure_ = reading.failure;
    strays_ = reading.end == Commands::ReadResult::OutOfStep ? strays_ + 1
              : reading.end == Commands::ReadResult::Done    ? 0
                                                             : strays_;
    if (reading.end != Commands::ReadResult::Done) {
        return;
    }
    const double now = clock_.monotonic();
    if (hasReading() && !disturbed) {
        periods_[periodCount_++ % kPeriods] = now - lastGoodReading_;
    }
    lastGoodReading_ = now;
    lastGoodTime_ = clock_.local();
}

void AnswerRecord::noteExchange(const char* command, std::uint16_t status) {
    const std::string text = commStatusText(status);
    if (!text.empty()) {
        failure_ = std::string(command) + ": " + text;
    }
}

void AnswerRecord::noteFailure(const std::string& failure) {
    if (failure_.empty()) {
        failure_ = failure;
    }
}

void AnswerRecord::publish() {
    lastExchange_ = failure_.empty() ? monitorText::kOk : failure_;
}

double AnswerRecord::usualInterval() const {
    const std::size_t count = std::min(periodCount_, kPeriods);
    return count == 0 ? kIntervalWhenNew
                      : std::accumulate(periods_.begin(), periods_.end(), 0.0) / static_cast<double>(count);
}

bool AnswerRecord::stale(double now) const {
    if (!hasReading()) {
        return false;
    }
    const bool answered = now - link_.lastReplyTime() < kLeastStaleAge;
    const bool inHand = periodCount_ == 0 && answered;
    return !inHand && now - lastGoodReading_ >= std::max(kLeastStaleAge, 2 * usualInterval());
}

} // namespace drx9
