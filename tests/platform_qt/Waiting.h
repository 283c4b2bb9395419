#pragma once

#include "platform/Clock.h"
#include "platform/EventPump.h"

#include <ctime>

namespace drx9::testing_qt {

/// Sleeps in the pump until the condition holds; false when it does not within `limit` seconds.
template<class Condition>
bool waitFor(EventPump& pump, const Clock& clock, Condition condition, double limit = 5.0) {
    const double deadline = clock.monotonic() + limit;
    while (!condition()) {
        if (clock.monotonic() >= deadline)
            return false;
        pump.sleepUntil(deadline);
    }
    return true;
}

/// CPU seconds that sleeping for so long costs: nearly none, all of it where something is left that fires.
inline double cpuOfSleeping(EventPump& pump, const Clock& clock, double seconds) {
    const std::clock_t start = std::clock();
    waitFor(
        pump, clock, [] { return false; }, seconds);
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

} // namespace drx9::testing_qt
