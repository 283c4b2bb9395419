#pragma once

#include "platform/Clock.h"

namespace drx9 {

/// A clock that stands until a test (or the fake event pump's sleep) moves it. The wall clock runs along with
/// it.
class FakeClock : public Clock {
public:
    [[nodiscard]] double monotonic() const override { return now_; }
    [[nodiscard]] LocalTime local() const override;

    void advance(double seconds) { now_ += seconds; }
    /// No effect when `time` has passed already.
    void advanceTo(double time);
    /// Sets the wall clock alone, as an operator or a time server does.
    void setLocal(const LocalTime& time);

private:
    double now_ = 1000;
    double localSetAt_ = 1000;
    LocalTime local_{2024, 5, 17, 10, 30, 0, 0};
};

} // namespace drx9
