#pragma once

#include "platform/qt/QtClock.h"
#include "platform/qt/QtEventPump.h"

#include <gtest/gtest.h>

#include <ctime>
#include <string>

namespace drx9::testing_qt {

/// The real clock and event pump, and ways to wait on them.
class WaitingTest : public testing::Test {
protected:
    [[nodiscard]] double now() const { return clock.monotonic(); }
    /// Sleeps in the pump until the condition holds; false when it does not within `limit` seconds.
    template<class Condition>
    bool wait(Condition condition, double limit = 30.0) {
        const double deadline = now() + limit;
        while (!condition() && now() < deadline) {
            pump.sleepUntil(deadline);
        }
        return condition();
    }
    /// CPU seconds that sleeping for so long costs: nearly none, all of it where something is left that
    /// fires.
    double cpuOfSleeping(double seconds) {
        const std::clock_t start = std::clock();
        wait([] { return false; }, seconds);
        return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    }

    QtClock clock;
    QtEventPump pump{clock};
};

/// Each byte once, in order.
inline std::string allBytes() {
    std::string all;
    for (int byte = 0; byte < 256; ++byte) {
        all += static_cast<char>(byte);
    }
    return all;
}

} // namespace drx9::testing_qt
