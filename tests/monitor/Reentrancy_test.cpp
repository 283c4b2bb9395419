// Puts each kind of event into each pump of each operation that waits.
#include "monitor/MonitorFixture.h"

#include <map>

namespace drx9 {
namespace {

struct Operation {
    const char* name;
    void (*prepare)(Monitor&);
};

struct Event {
    const char* name;
    void (*happen)(class ReentrancyTest&);
};

class ReentrancyTest : public MonitorFixture {
public:
    ReentrancyTest()
        : MonitorFixture(2) {}
    void TestBody() override {}
    using MonitorFixture::actions;
    using MonitorFixture::boxes;
    using MonitorFixture::bringUp;
    using MonitorFixture::clock;
    using MonitorFixture::link;
    using MonitorFixture::monitor;
    using MonitorFixture::pump;
    using MonitorFixture::shutter;
    using MonitorFixture::socket;
    using MonitorFixture::tick;

    bool actionRan = false;
    bool actionRanInside = false;

    void menuAction() {
        actions.runWhenIdle([this] {
            actionRan = true;
            actionRanInside = actionRanInside || actions.busy() || link.exchanging();
        });
    }
    void close() {
        monitor->announceClose();
        actions.runWhenIdle([this] {
            actionRanInside = actionRanInside || actions.busy() || link.exchanging();
            monitor->Form_QueryUnload();
        });
    }
};

const Operation kOperations[] = {
    {"tick", [](Monitor&) {}},
    {"start", [](Monitor& m) { m.cmdStartStop_Click(); }},
    {"zero", [](Monitor& m) { m.cmdZero_Click(); }},
    {"film", [](Monitor& m) { m.cboFilms_Click(1); }},
    {"shutter", [](Monitor& m) { m.cmdShutter_Click(); }},
};

const Event kEvents[] = {
    {"tick", [](ReentrancyTest& t) { t.tick(); }},
    {"start", [](ReentrancyTest& t) { t.monitor->cmdStartStop_Click(); }},
    {"zero", [](ReentrancyTest& t) { t.monitor->cmdZero_Click(); }},
    {"shutter", [](ReentrancyTest& t) { t.monitor->cmdShutter_Click(); }},
    {"film", [](ReentrancyTest& t) { t.monitor->cboFilms_Click(3); }},
    {"menu", [](ReentrancyTest& t) { t.menuAction(); }},
    {"close", [](ReentrancyTest& t) { t.close(); }},
    {"command", [](ReentrancyTest& t) { t.link.Comm_Send("M"); }},
    {"dead port", [](ReentrancyTest& t) { t.socket.drop(); }},
};

void run(ReentrancyTest& t, const Operation& operation, bool stop) {
    operation.prepare(*t.monitor);
    t.tick();
    if (stop) {
        t.monitor->cmdStartStop_Click();
        t.tick();
    }
}

int pumpsOf(const Operation& operation, bool stop) {
    ReentrancyTest t;
    t.bringUp();
    const int before = t.pump.pumps();
    run(t, operation, stop);
    return t.pump.pumps() - before;
}

/// Lets what waits be carried out.
void settle(ReentrancyTest& t) {
    for (int i = 0; i < 12; ++i) {
        t.pump.runPosted();
        t.clock.advance(0.5);
        t.tick();
    }
    t.pump.runPosted();
}

void expectSane(ReentrancyTest& t, const Event& event) {
    const std::string name = event.name;
    EXPECT_NE(t.link.CommStatus(), comm::kBusy);
    EXPECT_FALSE(t.actions.busy());
    EXPECT_FALSE(t.actions.waiting());
    EXPECT_FALSE(t.actionRanInside) << "an action ran inside an operation";
    EXPECT_EQ(t.monitor->RunMode() == kExiting, name == "close");
    if (name == "menu") {
        EXPECT_TRUE(t.actionRan);
    }
    if (name != "close") {
        EXPECT_TRUE(t.link.CommOK());
        const Monitor::Requests& waiting = t.monitor->requests();
        EXPECT_FALSE(waiting.film || waiting.zero || waiting.shutter || waiting.startStop);
        EXPECT_FALSE(t.monitor->stale(t.clock.monotonic()));
    }
}

TEST(Reentrancy, EachEventInEachPumpOfEachOperation) {
    for (const Operation& operation : kOperations) {
        const bool stop = std::string(operation.name) == "start";
        const int pumps = pumpsOf(operation, stop);
        ASSERT_GT(pumps, 5) << operation.name;
        for (const Event& event : kEvents) {
            for (int n = 1; n <= pumps; ++n) {
                SCOPED_TRACE(std::string(operation.name) + ", " + event.name + " at pump " +
                             std::to_string(n));
                ReentrancyTest t;
                t.bringUp();
                t.boxes.allow("Get Film Error: "); // a port that dies, a film that is asked for meanwhile
                t.pump.atPump(n, [&] { event.happen(t); });
                run(t, operation, stop);
                settle(t);
                expectSane(t, event);
                if (testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
}

TEST(Reentrancy, EachEventInEachPumpOfTheStart) {
    int pumps = 0;
    {
        ReentrancyTest t;
        t.monitor->Form_Load();
        pumps = t.pump.pumps();
    }
    for (const Event& event : kEvents) {
        for (int n = 1; n <= pumps; ++n) {
            SCOPED_TRACE(std::string(event.name) + " at pump " + std::to_string(n));
            ReentrancyTest t;
            t.boxes.allow("Instrument not found."); // a port that dies while it is asked for its version
            t.boxes.allow("Get Film Error: ");
            t.pump.atPump(n, [&] { event.happen(t); });
            t.monitor->Form_Load();
            settle(t);
            EXPECT_NE(t.link.CommStatus(), comm::kBusy);
            EXPECT_FALSE(t.actionRanInside);
            EXPECT_EQ(t.monitor->RunMode() == kExiting, std::string(event.name) == "close");
        }
    }
}

} // namespace
} // namespace drx9
