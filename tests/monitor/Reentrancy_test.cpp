// Puts each kind of event into each pump of each operation that waits.
#include "monitor/MonitorFixture.h"

namespace drx9 {
namespace {

/// The program with something that happens in one of its waits.
struct Scene : MonitorFixture {
    void TestBody() override {}

    bool actionRan = false;
    bool actionRanInside = false;

    void whenIdle(const std::function<void()>& action, ActionQueue::For purpose = ActionQueue::For::Other) {
        actions.runWhenIdle(
            [this, action] {
                actionRan = true;
                actionRanInside = actionRanInside || actions.busy() || link.exchanging();
                action();
            },
            purpose);
    }
    /// A beat of the timer; it sends nothing while something is under way.
    void beat() {
        const std::size_t sent = socket.wire.packets().size();
        const bool busy = actions.busy();
        tick();
        EXPECT_TRUE(!busy || socket.wire.packets().size() == sent) << "a tick inside an operation";
    }
    void close() {
        whenIdle([this] { core.lifecycle.Form_QueryUnload(); }, ActionQueue::For::Close);
    }
};

struct Deed {
    const char* name;
    void (*run)(Scene&);
};

const Deed kOperations[] = {
    {"program start", [](Scene& t) { t.core.lifecycle.Form_Load(); }},
    {"tick", [](Scene& t) { t.tick(); }},
    {"start and stop", [](Scene& t) { t.clickAndTick("start"), t.clickAndTick("start"); }},
    {"zero", [](Scene& t) { t.clickAndTick("zero"); }},
    {"film", [](Scene& t) { t.clickAndTick("film"); }},
    {"shutter", [](Scene& t) { t.clickAndTick("shutter"); }},
};

const Deed kEvents[] = {
    {"tick", [](Scene& t) { t.beat(); }},
    {"start", [](Scene& t) { t.click("start"); }},
    {"zero", [](Scene& t) { t.click("zero"); }},
    {"shutter", [](Scene& t) { t.click("shutter"); }},
    {"film", [](Scene& t) { t.monitor.cboFilms_Click(3); }},
    {"menu", [](Scene& t) { t.whenIdle([] {}); }},
    {"close", [](Scene& t) { t.close(); }},
    {"command", [](Scene& t) { t.link.Comm_Send("M"); }},
    {"dead port", [](Scene& t) { t.socket.drop(); }},
};

bool isStart(const Deed& operation) {
    return &operation == kOperations;
}

/// Carries out the operation, with the event in its n-th pump; how many pumps it took.
int play(Scene& t, const Deed& operation, int n, const Deed& event) {
    if (!isStart(operation)) {
        t.bringUp();
    }
    const int before = t.pump.pumps();
    t.pump.atPump(n, [&] { event.run(t); });
    operation.run(t);
    return t.pump.pumps() - before;
}

/// Lets what waits be carried out.
void settle(Scene& t) {
    for (int i = 0; i < 12; ++i) {
        t.pump.runPosted();
        t.clock.advance(0.5);
        t.tick();
    }
    t.pump.runPosted();
}

void expectSane(Scene& t, const std::string& event, bool start) {
    EXPECT_NE(t.link.CommStatus(), comm::kBusy);
    EXPECT_FALSE(t.actions.busy());
    EXPECT_FALSE(t.actions.waiting());
    EXPECT_FALSE(t.actionRanInside) << "an action ran inside an operation";
    EXPECT_EQ(t.actionRan, event == "menu" || event == "close");
    EXPECT_EQ(t.monitor.RunMode() == RunState::Exiting, event == "close");
    if (event == "close" ||
        (start && event == "dead port")) { // off line from the start: nothing more is tried
        return;
    }
    EXPECT_TRUE(t.link.CommOK());
    const Requests& waiting = t.core.desk.waiting();
    EXPECT_FALSE(waiting.film || waiting.zero || waiting.shutter || waiting.startStop);
    EXPECT_FALSE(t.core.answers.stale(t.clock.monotonic()));
}

TEST(Reentrancy, EachEventInEachPumpOfEachOperation) {
    for (const Deed& operation : kOperations) {
        Scene alone;
        const int pumps = play(alone, operation, 1, {"nothing", [](Scene&) {}});
        ASSERT_GT(pumps, 5) << operation.name;
        for (const Deed& event : kEvents) {
            for (int n = 1; n <= pumps && !testing::Test::HasFailure(); ++n) {
                SCOPED_TRACE(std::string(operation.name) + ", " + event.name + " at pump " +
                             std::to_string(n));
                Scene t;
                t.boxes.allow("Instrument not found."); // a port that dies while it is asked for its version
                t.boxes.allow("Get Film Error: ");      // or a film that is asked for meanwhile
                play(t, operation, n, event);
                settle(t);
                expectSane(t, event.name, isStart(operation));
            }
        }
    }
}

} // namespace
} // namespace drx9
