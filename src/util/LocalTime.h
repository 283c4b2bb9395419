#pragma once

namespace drx9 {

/// Local wall-clock time, for texts and for the log's interval. Never used to measure a duration of a run.
struct LocalTime {
    int year = 1970;
    int month = 1; ///< 1..12
    int day = 1;   ///< 1..31
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
};

/// Seconds since midnight, to milliseconds.
constexpr double secondsSinceMidnight(const LocalTime& time) {
    return time.hour * 3600.0 + time.minute * 60.0 + time.second + time.millisecond / 1000.0;
}

} // namespace drx9
