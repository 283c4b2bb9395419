#include "platform/qt/QtEventPump.h"

#include "platform/qt/QtTicker.h"
#include "platform_qt/Waiting.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QEventLoop>

#include <gtest/gtest.h>

#include <vector>

using namespace drx9;
using namespace drx9::testing_qt;

namespace {

class QtEventPumpTest : public WaitingTest {
protected:
    /// Seconds that one sleep took.
    double sleep(double seconds) {
        const double start = now();
        pump.sleepUntil(start + seconds);
        return now() - start;
    }
    static void after(int ms, std::function<void()> action) {
        QTimer::singleShot(ms, Qt::PreciseTimer, qApp, std::move(action));
    }
    /// Runs the action from Qt's own queue, which the dispatcher empties before it blocks.
    static void queue(std::function<void()> action) {
        QMetaObject::invokeMethod(qApp, std::move(action), Qt::QueuedConnection);
    }
    /// Stands until 150 ms have passed; 30 ms into it `meanwhile` runs.
    static void dialog(std::function<void()> meanwhile) {
        QEventLoop loop;
        after(30, std::move(meanwhile));
        after(150, [&] { loop.quit(); });
        loop.exec();
    }
};

TEST_F(QtEventPumpTest, WaitsOutADeadlinePreciselyAndWithoutSpinning) {
    for (const double seconds : {1.0, 0.05, 0.2}) { // an earlier one after a later one, and a later one again
        SCOPED_TRACE(seconds);
        const double deadline = now() + seconds;
        EXPECT_LT(cpuOfSleeping(seconds), 0.05);
        EXPECT_LT(now() - deadline, 0.05);
    }
}

TEST_F(QtEventPumpTest, EndsASleepEarly) {
    const struct {
        const char* name;
        std::function<void()> arrange;
    } cases[] = {
        {"woken before", [&] { pump.wake(); }},
        {"woken by an event", [&] { after(20, [&] { pump.wake(); }); }},
        {"any event", [&] { after(20, [] {}); }},
        {"posted", [&] { pump.post([&] { pump.post([] {}); }); }},
        {"woken from Qt's own queue", [&] { queue([&] { pump.wake(); }); }},
        {"a nested sleep in Qt's own queue", [&] { queue([&] { sleep(0.02); }); }},
        {"woken while a dialog stands on the sleep", [&] { queue([&] { dialog([&] { pump.wake(); }); }); }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        c.arrange();
        EXPECT_LT(sleep(3), 1.0);
        while (sleep(0.02) < 0.02) { // what the case has left
        }
    }
    // A wake-up counts for one sleep, and a deadline that passes under a dialog still ends the sleep.
    EXPECT_GT(sleep(0.05), 0.045);
    queue([&] { dialog([] {}); });
    EXPECT_LT(sleep(0.05), 1.0);
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
    EXPECT_TRUE(wait([&] { return order.size() == 4; }));
    EXPECT_EQ(order, (std::vector<int>{1, 2, 3, 4}));
}

TEST_F(QtEventPumpTest, TickerDropsTheBeatsThatATickRunsOver) {
    QtTicker ticker(clock, 50);
    std::vector<double> ticks;
    int depth = 0;
    const double start = now();
    ticker.setTick([&] {
        EXPECT_EQ(depth++, 0) << "a tick inside a tick";
        ticks.push_back(now() - start);
        if (ticks.size() == 1) // runs over the beats at 100 and 150 ms, pumping
            wait([] { return false; }, 0.125);
        if (ticks.size() == 2) { // the beat starts anew
            ticker.stop();
            ticker.start();
        }
        --depth;
    });
    ticker.start();
    EXPECT_TRUE(wait([&] { return ticks.size() == 3; }));
    ticker.stop();
    ASSERT_EQ(ticks.size(), 3u);
    EXPECT_NEAR(ticks[1], 0.22, 0.03) << "a nested sleep keeps its own deadline, and no beat is made up for";
    EXPECT_NEAR(ticks[2] - ticks[1], 0.07, 0.03);
    wait([] { return false; }, 0.12);
    EXPECT_EQ(ticks.size(), 3u) << "ticked after stop";
}

TEST(QtClockTest, LocalTimeIsTheSystemsOwnAlsoFromWhatIsKept) {
    const QtClock clock;
    for (int i = 0; i < 2; ++i) {
        const QDateTime before = QDateTime::currentDateTime();
        const LocalTime t = clock.local();
        const QDateTime shown(QDate(t.year, t.month, t.day),
                              QTime(t.hour, t.minute, t.second, t.millisecond));
        EXPECT_TRUE(before <= shown && before.msecsTo(shown) < 1000);
    }
}

} // namespace
