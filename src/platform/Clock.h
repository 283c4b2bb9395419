#pragma once

#include "util/LocalTime.h"

namespace drx9 {

class Clock {
public:
    virtual ~Clock() = default;
    /// Seconds since an arbitrary point; never goes back, runs on over midnight, clock changes, and while the
    /// machine sleeps.
    [[nodiscard]] virtual double monotonic() const = 0;
    [[nodiscard]] virtual LocalTime local() const = 0;
};

} // namespace drx9
