#pragma once

#include "monitor/Settings.h"

#include <cstdint>

namespace drx9 {

/// A number of seconds as the spinners show it.
struct SpanFields {
    std::int32_t hours = 0;
    std::int32_t minutes = 0;
    std::int32_t seconds = 0;

    bool operator==(const SpanFields&) const = default;
};

SpanFields splitSeconds(std::int32_t seconds);
/// Clamped to the 32-bit range.
std::int32_t joinSeconds(const SpanFields& fields);

/// What the data log window does with its spinners: the logged span, whose ends push each other, and the
/// interval. Filling the window reads here only; nothing is pushed by it. Changes go to the settings at once.
class DataLogSpan {
public:
    static constexpr std::int32_t kMostHours = 596522; ///< the end stays a 32-bit number of seconds
    static constexpr std::int32_t kMostIntervalMinutes = 545;

    explicit DataLogSpan(DataLogSettings& settings)
        : settings_(settings) {}

    [[nodiscard]] SpanFields start() const { return splitSeconds(settings_.Start); }
    [[nodiscard]] SpanFields end() const { return splitSeconds(settings_.End); }
    /// Minutes and seconds only: `hours` is 0, minutes go beyond 59.
    [[nodiscard]] SpanFields interval() const;

    /// True when the end was before the new start and has been set equal to it: show its spinners again.
    bool setStart(const SpanFields& fields);
    /// True when the start was after the new end and has been set equal to it: show its spinners again.
    bool setEnd(const SpanFields& fields);
    void setInterval(std::int32_t minutes, std::int32_t seconds);

private:
    DataLogSettings& settings_;
};

} // namespace drx9
