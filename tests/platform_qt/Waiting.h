#pragma once

#include "platform/Clock.h"
#include "platform/EventPump.h"

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

} // namespace drx9::testing_qt
