#include "monitor/DataLogSpan.h"

#include <algorithm>
#include <limits>

namespace drx9 {

namespace {

template<typename Integer>
Integer clamped(std::int64_t value) {
    return static_cast<Integer>(std::clamp<std::int64_t>(value, std::numeric_limits<Integer>::min(),
                                                         std::numeric_limits<Integer>::max()));
}

} // namespace

SpanFields splitSeconds(std::int32_t seconds) {
    return {seconds / 3600, seconds % 3600 / 60, seconds % 60};
}

std::int32_t joinSeconds(const SpanFields& fields) {
    return clamped<std::int32_t>(std::int64_t{fields.hours} * 3600 + std::int64_t{fields.minutes} * 60 +
                                 fields.seconds);
}

SpanFields DataLogSpan::interval() const {
    return {0, settings_.Interval / 60, settings_.Interval % 60};
}

bool DataLogSpan::setStart(const SpanFields& fields) {
    settings_.Start = joinSeconds(fields);
    const bool pushes = settings_.End < settings_.Start;
    settings_.End = std::max(settings_.End, settings_.Start);
    return pushes;
}

bool DataLogSpan::setEnd(const SpanFields& fields) {
    settings_.End = joinSeconds(fields);
    const bool pushes = settings_.End < settings_.Start;
    settings_.Start = std::min(settings_.Start, settings_.End);
    return pushes;
}

void DataLogSpan::setInterval(std::int32_t minutes, std::int32_t seconds) {
    settings_.Interval = clamped<std::int16_t>(std::int64_t{minutes} * 60 + seconds);
}

} // namespace drx9
