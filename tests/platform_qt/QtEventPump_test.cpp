#include "platform/qt/QtEventPump.h"

#include "fakes/CriticalMessages.h"
#include "platform/qt/QtTicker.h"
#include "platform_qt/Waiting.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QEventLoop>

#include <gtest/gtest.h>

#include <string>
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
    /// Stands for 100 ms; 20 ms into it `meanwhile` runs.
    static void dialog(std::function<void()> meanwhile) {
        QEventLoop loop;
        after(20, std::move(meanwhile));
        after(100, [&] { loop.quit(); });
        loop.exec();
    }
};

TEST_F(QtEventPumpTest, WaitsOutADeadlinePreciselyAndWithoutSpinning) {
    for (const double seconds : {0.3, 0.05, 0.1}) { // an earlier one after a later one, and a later one again
        SCOPED_TRACE(seconds);
        double late = 1;
        for (int attempt = 0; attempt < 20 && late >= 0.05; ++attempt) { // the machine may be busy
            const double deadline = now() + seconds;
            EXPECT_LT(cpuOfSleeping(seconds), 0.05);
            late = now() - deadline;
        }
        EXPECT_LT(late, 0.05);
    }
}

TEST_F(QtEventPumpTest, EndsASleepEarly) {
    // What ends the sleep, and the event loops above it that are told of.
    const std::tuple<const char*, std::function<void()>, int> cases[] = {
        {"woken before", [&] { pump.wake(); }, 0},
        {"woken by an event", [&] { after(20, [&] { pump.wake(); }); }, 0},
        {"posted", [&] { pump.post([&] { pump.post([] {}); }); }, 0},
        {"woken from Qt's own queue", [&] { queue([&] { pump.wake(); }); }, 0},
        {"a nested sleep in Qt's own queue", [&] { queue([&] { sleep(0.02); }); }, 0},
        {"woken while a dialog stands on it", [&] { queue([&] { dialog([&] { pump.wake(); }); }); }, 1},
        {"a sleep in a dialog on it", [&] { queue([&] { dialog([&] { sleep(0.02); }); }); }, 1},
    };
    for (const auto& [name, arrange, loops] : cases) {
        SCOPED_TRACE(name);
        const CriticalMessages::Expected told;
        arrange();
        EXPECT_LT(sleep(20), 10.0);
        EXPECT_EQ(told.count(), loops);
        while (sleep(0.02) < 0.02) { // what the case has left
        }
    }
    // A wake-up counts for one sleep, and a deadline that passes under a dialog still ends the sleep.
    EXPECT_GT(sleep(0.05), 0.045);
    const CriticalMessages::Expected told;
    queue([&] { dialog([] {}); });
    EXPECT_LT(sleep(0.05), 10.0);
    EXPECT_EQ(told.count(), 1);
    double slept = 0;
    queue([&] { dialog([&] { slept = sleep(0.05); }); });
    QCoreApplication::processEvents(); // the dialog is under the sleep, not above it
    EXPECT_GT(slept, 0.045);
    EXPECT_EQ(told.count(), 1);
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

// The order of what comes is told, not its time: timers that a busy machine delays still fire in their order.

TEST_F(QtEventPumpTest, ALateTickIsFollowedByOneAtOnceAndTheBeatStartsAnew) {
    QtTicker ticker(clock, 50);
    std::vector<std::string> order;
    int ticks = 0;
    int depth = 0;
    const auto note = [&order](const char* what) { return [&order, what] { order.emplace_back(what); }; };
    ticker.setTick([&] {
        EXPECT_EQ(depth++, 0) << "a tick inside a tick";
        order.push_back("tick " + std::to_string(++ticks));
        if (ticks == 1) { // runs over the beats at 100 and 150 ms, pumping
            wait([] { return false; }, 0.125);
            queue(note("waiting event"));
            after(20, note("20 ms later"));
        } else if (ticks == 2) {
            after(40, note("40 ms later"));
        } else { // started again in mid-beat
            wait([] { return false; }, 0.02);
            ticker.stop();
            if (ticks == 3) {
                after(40, note("40 ms later"));
                ticker.start();
            }
        }
        --depth;
    });
    ticker.start();
    EXPECT_TRUE(wait([&] { return ticks == 4; }));
    wait([] { return false; }, 0.12);
    EXPECT_EQ(order, (std::vector<std::string>{"tick 1", "waiting event", "tick 2", "20 ms later",
                                               "40 ms later", "tick 3", "40 ms later", "tick 4"}));
}

TEST_F(QtEventPumpTest, BeatsThatSomethingElseHeldUpAreNotMadeUpFor) {
    QtTicker ticker(clock, 50);
    int ticks = 0;
    int later = 0;
    ticker.setTick([&] {
        if (++ticks == 1) {
            after(40, [&] { later = ticks; });
        }
    });
    ticker.start();
    for (const double end = now() + 0.18; now() < end;) { // the event loop does not come round
    }
    EXPECT_TRUE(wait([&] { return later > 0; }));
    EXPECT_EQ(later, 1);
}

TEST(QtClockTest, LocalTimeIsTheSystemsOwnAlsoFromWhatIsKept) {
    const QtClock clock;
    for (int i = 0; i < 2; ++i) {
        const QDateTime before = QDateTime::currentDateTime();
        const LocalTime t = clock.local();
        const QDateTime shown(QDate(t.year, t.month, t.day),
                              QTime(t.hour, t.minute, t.second, t.millisecond));
        EXPECT_TRUE(before <= shown && before.msecsTo(shown) < 10000);
    }
}

} // namespace
