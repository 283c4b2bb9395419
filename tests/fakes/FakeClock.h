#pragma once

#include "platform/Clock.h"

#include <algorithm>
#include <cmath>

namespace drx9 {

/// A clock that stands until a test (or the fake event pump's sleep) moves it. The wall clock runs along with
/// it, over midnight, but not over the end of a month.
class FakeClock : public Clock {
public:
    [[nodiscard]] double monotonic() const override { return now_; }
    [[nodiscard]] LocalTime local() const override {
        const auto ms = std::llround((secondsSinceMidnight(local_) + now_ - localSetAt_) * 1000);
        const auto part = [ms](int unit, int most) { return static_cast<int>(ms / unit % most); };
        return {local_.year,         local_.month,     local_.day + part(86'400'000, 31),
                part(3'600'000, 24), part(60'000, 60), part(1000, 60),
                part(1, 1000)};
    }

    void advance(double seconds) { now_ += seconds; }
    /// No effect when `time` has passed already.
    void advanceTo(double time) { now_ = std::max(now_, time); }
    /// Sets the wall clock alone, as an operator or a time server does.
    void setLocal(const LocalTime& time) {
        local_ = time;
        localSetAt_ = now_;
    }

private:
    double now_ = 1000;
    double localSetAt_ = 1000;
    LocalTime local_{2024, 5, 17, 10, 30, 0, 0};
};

} // namespace drx9
