#include "platform/qt/QtEventPump.h"

#include "platform/qt/QtClock.h"
#include "platform/qt/QtTicker.h"
#include "platform_qt/Waiting.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QEventLoop>

#include <gtest/gtest.h>

#include <ctime>
#include <stdexcept>
#include <vector>

using namespace drx9;
using drx9::testing_qt::waitFor;

namespace {

class QtEventPumpTest : public ::testing::Test {
protected:
    double now() const { return clock.monotonic(); }
    /// Seconds that the action took.
    template<class Action>
    double timed(Action action) const {
        const double start = now();
        action();
        return now() - start;
    }
    static void after(int ms, std::function<void()> action) {
        QTimer::singleShot(ms, Qt::PreciseTimer, qApp, std::move(action));
    }
    void SetUp() override { pump.processPending(); }

    QtClock clock;
    QtEventPump pump{clock};
};

TEST_F(QtEventPumpTest, WaitsOutASecondPreciselyAndWithoutSpinning) {
    const double deadline = now() + 1.0;
    const std::clock_t cpu = std::clock();
    while (now() < deadline)
        pump.sleepUntil(deadline);
    EXPECT_LT(static_cast<double>(std::clock() - cpu) / CLOCKS_PER_SEC, 0.02);
    EXPECT_LT(now() - deadline, 0.050);
}

TEST_F(QtEventPumpTest, AnEarlierDeadlineAfterALaterOneIsKept) {
    pump.post([] {});
    pump.sleepUntil(now() + 60); // leaves a timer standing for the far deadline
    EXPECT_NEAR(timed([&] { pump.sleepUntil(now() + 0.05); }), 0.05, 0.04);
    // And a deadline later than a standing timer is not cut short for good.
    pump.post([] {});
    pump.sleepUntil(now() + 0.03);
    EXPECT_NEAR(timed([&] {
                    const double deadline = now() + 0.1;
                    while (now() < deadline)
                        pump.sleepUntil(deadline);
                }),
                0.1, 0.04);
}

TEST_F(QtEventPumpTest, EndsASleepEarly) {
    const struct {
        const char* name;
        std::function<void()> arrange;
    } cases[] = {
        {"woken before", [&] { pump.wake(); }},
        {"woken by an event", [&] { after(20, [&] { pump.wake(); }); }},
        {"any event", [&] { after(20, [] {}); }},
        {"posted before", [&] { pump.post([] {}); }},
        {"posted from a posted action", [&] { pump.post([&] { pump.post([] {}); }); }},
        {"woken from Qt's own queue",
         [&] {
             QMetaObject::invokeMethod(
                 qApp, [&] { pump.wake(); }, Qt::QueuedConnection);
         }},
        {"a nested pump in Qt's own queue",
         [&] {
             const auto nested = [&] { pump.sleepUntil(now() + 0.02); };
             QMetaObject::invokeMethod(qApp, nested, Qt::QueuedConnection);
         }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        c.arrange();
        EXPECT_LT(timed([&] { pump.sleepUntil(now() + 3); }), 1.0);
        pump.processPending();
    }
}

TEST_F(QtEventPumpTest, AWakeCountsForOneSleep) {
    pump.wake();
    pump.sleepUntil(now() + 3);
    EXPECT_GT(timed([&] { pump.sleepUntil(now() + 0.05); }), 0.045);
}

/// An outer sleep whose queue holds a dialog: while that stands, what the outer one waits for happens.
TEST_F(QtEventPumpTest, ADialogInASleepSwallowsNeitherWakeNorDeadline) {
    for (const bool wakes : {true, false}) {
        SCOPED_TRACE(wakes ? "wake" : "deadline");
        QEventLoop dialog;
        const auto exec = [&] {
            after(150, [&] { dialog.quit(); });
            if (wakes)
                after(30, [&] { pump.wake(); });
            dialog.exec();
        };
        QMetaObject::invokeMethod(qApp, exec, Qt::QueuedConnection);
        EXPECT_LT(timed([&] { pump.sleepUntil(now() + (wakes ? 5.0 : 0.05)); }), 1.0);
    }
}

TEST_F(QtEventPumpTest, ANestedSleepKeepsItsOwnDeadline) {
    double inner = 0;
    after(10, [&] {
        inner = timed([&] {
            const double deadline = now() + 0.1;
            while (now() < deadline)
                pump.sleepUntil(deadline);
        });
    });
    EXPECT_LT(timed([&] { pump.sleepUntil(now() + 0.05); }), 0.5);
    EXPECT_NEAR(inner, 0.1, 0.04);
}

TEST_F(QtEventPumpTest, RunsPostedActionsInOrderAlsoFromWithin) {
    std::vector<int> order;
    pump.post([&] {
        order.push_back(1);
        pump.post([&] { order.push_back(4); });
        pump.processPending(); // runs 2 and 3 here, in their turn
    });
    pump.post([&] { order.push_back(2); });
    pump.post([&] { order.push_back(3); });
    EXPECT_TRUE(order.empty());
    waitFor(
        pump, clock, [&] { return order.size() == 4; }, 1.0);
    EXPECT_EQ(order, (std::vector<int>{1, 2, 3, 4}));
}

TEST_F(QtEventPumpTest, ProcessPendingNeverWaits) {
    EXPECT_LT(timed([&] { pump.processPending(); }), 0.05);
    EXPECT_LT(timed([&] { pump.sleepUntil(now() - 1); }), 0.05);
}

TEST_F(QtEventPumpTest, TickerDropsTheBeatsThatATickRunsOver) {
    QtTicker ticker(clock, 50);
    std::vector<double> ticks;
    int depth = 0;
    const double start = now();
    ticker.setTick([&] {
        EXPECT_EQ(depth++, 0) << "a tick inside a tick";
        ticks.push_back(now() - start);
        if (ticks.size() == 1) { // runs over the beats at 100 and 150 ms, pumping
            const double deadline = now() + 0.125;
            while (now() < deadline)
                pump.sleepUntil(deadline);
        }
        --depth;
    });
    ticker.start();
    ticker.start();
    waitFor(
        pump, clock, [&] { return ticks.size() == 3; }, 2.0);
    ticker.stop();
    EXPECT_FALSE(ticker.running());
    ASSERT_EQ(ticks.size(), 3u);
    EXPECT_NEAR(ticks[0], 0.05, 0.02);
    EXPECT_NEAR(ticks[1], 0.20, 0.02);
    EXPECT_NEAR(ticks[2], 0.25, 0.02);
    const double deadline = now() + 0.12;
    while (now() < deadline)
        pump.sleepUntil(deadline);
    EXPECT_EQ(ticks.size(), 3u) << "ticked after stop";
}

TEST_F(QtEventPumpTest, TickerMayStopAndStartInsideATick) {
    QtTicker ticker(clock, 20);
    int ticks = 0;
    ticker.setTick([&] {
        ++ticks;
        ticker.stop();
        if (ticks < 3)
            ticker.start();
    });
    ticker.start();
    waitFor(
        pump, clock, [&] { return ticks == 3; }, 1.0);
    EXPECT_FALSE(ticker.running());
    EXPECT_EQ(ticks, 3);
}

TEST(QtClockTest, LocalTimeIsTheSystemsOwn) {
    const QtClock clock;
    for (int i = 0; i < 2; ++i) { // the second one comes from what the first one kept
        const QDateTime before = QDateTime::currentDateTime();
        const LocalTime t = clock.local();
        const QDateTime shown(QDate(t.year, t.month, t.day),
                              QTime(t.hour, t.minute, t.second, t.millisecond));
        EXPECT_LE(before, shown);
        EXPECT_LT(before.msecsTo(shown), 1000);
    }
}

} // namespace
