#include "platform/qt/QtEventPump.h"

#include "fakes/CriticalMessages.h"
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
        int loops; ///< event loops above the sleep that are told of
    } cases[] = {
        {"woken before", [&] { pump.wake(); }, 0},
        {"woken by an event", [&] { after(20, [&] { pump.wake(); }); }, 0},
        {"any event", [&] { after(20, [] {}); }, 0},
        {"posted", [&] { pump.post([&] { pump.post([] {}); }); }, 0},
        {"woken from Qt's own queue", [&] { queue([&] { pump.wake(); }); }, 0},
        {"a nested sleep in Qt's own queue", [&] { queue([&] { sleep(0.02); }); }, 0},
        {"woken while a dialog stands on it", [&] { queue([&] { dialog([&] { pump.wake(); }); }); }, 1},
        {"a sleep in a dialog on it", [&] { queue([&] { dialog([&] { sleep(0.02); }); }); }, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const CriticalMessages::Expected told;
        c.arrange();
        EXPECT_LT(sleep(3), 1.0);
        EXPECT_EQ(told.count(), c.loops);
        while (sleep(0.02) < 0.02) { // what the case has left
        }
    }
    // A wake-up counts for one sleep, and a deadline that passes under a dialog still ends the sleep.
    EXPECT_GT(sleep(0.05), 0.045);
    const CriticalMessages::Expected told;
    queue([&] { dialog([] {}); });
    EXPECT_LT(sleep(0.05), 1.0);
    EXPECT_EQ(told.count(), 1);
}

TEST_F(QtEventPumpTest, SleepsInsideADialogAreAllowed) {
    double slept = 0;
    queue([&] { dialog([&] { slept = sleep(0.05); }); });
    QCoreApplication::processEvents(); // the dialog stands under the sleep, not above it
    EXPECT_GT(slept, 0.045);
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

TEST_F(QtEventPumpTest, ALateTickIsFollowedByOneAtOnceAndTheBeatStartsAnew) {
    QtTicker ticker(clock, 50);
    std::vector<double> ticks;
    bool waitingEventRan = false;
    int depth = 0;
    const double start = now();
    ticker.setTick([&] {
        EXPECT_EQ(depth++, 0) << "a tick inside a tick";
        ticks.push_back(now() - start);
        if (ticks.size() == 1) { // runs over the beats at 100 and 150 ms, pumping
            wait([] { return false; }, 0.125);
            queue([&] { waitingEventRan = true; });
        }
        if (ticks.size() == 2) {
            EXPECT_TRUE(waitingEventRan) << "the late tick left no room for others";
        }
        if (ticks.size() == 3) { // started anew in mid-beat
            wait([] { return false; }, 0.02);
            ticker.stop();
            ticker.start();
        }
        --depth;
    });
    ticker.start();
    EXPECT_TRUE(wait([&] { return ticks.size() == 4; }));
    ticker.stop();
    ASSERT_EQ(ticks.size(), 4u);
    EXPECT_NEAR(ticks[1], 0.175, 0.02) << "one tick is owed";
    EXPECT_NEAR(ticks[2] - ticks[1], 0.05, 0.02) << "and only one";
    EXPECT_NEAR(ticks[3] - ticks[2], 0.07, 0.02);
    wait([] { return false; }, 0.12);
    EXPECT_EQ(ticks.size(), 4u) << "ticked after stop";
}

TEST_F(QtEventPumpTest, BeatsThatSomethingElseHeldUpAreNotMadeUpFor) {
    QtTicker ticker(clock, 50);
    int ticks = 0;
    ticker.setTick([&] { ++ticks; });
    ticker.start();
    for (const double end = now() + 0.18; now() < end;) { // the event loop does not come round
    }
    wait([] { return false; }, 0.03);
    EXPECT_EQ(ticks, 1);
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
