// What becomes of the operator's requests when the instrument does not take them, and of the film in use when
// the link is lost.
#include "monitor/MonitorFixture.h"

#include <algorithm>
#include <stdexcept>

namespace drx9 {
namespace {

using Texts = std::vector<std::string>;

/// Something other than readings, refreshes and openings.
bool actsOnTheProcess(const std::string& command) {
    return command[0] == 'S' || command[0] == 'T' || command[0] == 'D' ||
           (command[0] == 'U' && command != "U?");
}

class RequestsTest : public MonitorFixture {
protected:
    RequestsTest() { boxes.allow("Instrument not found."); }

    /// Ticks for so long; the commands of that time that act on the process.
    Texts actsDuring(double seconds) {
        events.clear();
        for (const double end = clock.monotonic() + seconds; clock.monotonic() < end;) {
            tickAfter(0.25);
        }
        Texts acts;
        std::copy_if(events.begin(), events.end(), std::back_inserter(acts), actsOnTheProcess);
        return acts;
    }
    [[nodiscard]] const RequestReport& report() const { return core.desk.report(); }
};

TEST_F(RequestsTest, ARequestIsCarriedOutOnceAndItsFailureTold) {
    const std::string refused = replyPacket('E', "");
    const struct {
        const char* click;
        const char* command; ///< that is not accepted
        std::string answer;
        Texts acts; ///< of the next ten seconds, over whatever the failure brings about
        const char* told;
    } cases[] = {
        {"zero", "S", "", {"S", "T", "T"}, "Zero: no reply"},
        {"zero", "T", refused, {"S", "T", "T"}, "Zero: Bad Mode"},
        {"film", "D3", "", {"D3"}, "Film: no reply"},
        {"film", "D3", refused, {"D3"}, "Film: Bad Mode"},
        {"shutter", "U1", refused, {"U1"}, "Shutter: Bad Mode"},
        {"shutter", "U1", "", {"U1"}, "Shutter: no reply"}, // and the shutter stays closed: no run starts
        {"zero", "", "", {"S", "T", "T"}, ""},
    };
    bringUp();
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.click) + " " + c.command);
        actsDuring(12); // what an earlier loss repeats is over
        special[c.command] = c.answer;
        onCommand[c.command] = [this, &c] {
            pump.atTime(clock.monotonic() + 0.5, [this, &c] { special.erase(c.command); });
        };
        click(c.click);
        tick();
        const std::string told = report().text();
        EXPECT_EQ(told, c.told);
        EXPECT_EQ(report().notice(), *c.told == 0 ? "" : told + ". Press again if needed.");
        const Texts& sent = socket.wire.commands();
        Texts acts;
        std::copy_if(sent.begin(), sent.end(), std::back_inserter(acts), actsOnTheProcess);
        EXPECT_EQ(acts, c.acts);
        special.erase(c.command);
        const Texts later = actsDuring(10);
        for (const std::string& act : later) {
            EXPECT_EQ(act, "D1") << "nothing but the confirmed film after a loss";
        }
        EXPECT_EQ(monitor.RunMode(), RunState::Idle);
        EXPECT_EQ(report().notice(), "") << "ten seconds";
        socket.wire.forget();
        onCommand.clear();
        monitor.cboFilms_Click(0);
        actsDuring(1);
        EXPECT_EQ(report().text(), "") << "until the next request";
        socket.wire.forget();
    }
}

TEST_F(RequestsTest, AStartBehindAnUnansweredOpeningFollowsTheShutter) {
    using Case = std::tuple<const char*, int, double, bool>;
    for (const auto& [name, afterwards, secondsLost, starts] :
         {Case{"opened", 1, 0, true}, {"closed", 0, 0, false}, {"long gone", 1, 4, false}}) {
        SCOPED_TRACE(name);
        bringUp();
        special["U1"] = "";
        clickAndTick("shutter");
        EXPECT_EQ(monitor.RunMode(), RunState::Idle);
        shutter = afterwards;
        if (secondsLost > 0) {
            loseLink();
            actsDuring(secondsLost);
            returnLink();
        }
        special.erase("U1");
        actsDuring(4);
        EXPECT_EQ(monitor.RunMode(), starts ? RunState::Running : RunState::Idle);
        monitor.setRunMode(RunState::Idle);
        shutter = 0;
        tick();
    }
}

TEST_F(RequestsTest, StopAloneDoesNotWaitForTheLink) {
    startRun();
    tickAfter(0.25);
    for (const bool connected : {true, false}) {
        ASSERT_EQ(monitor.RunMode(), RunState::Running);
        silent = true;
        if (!connected) {
            loseLink();
            tick();
        }
        monitor.cmdStartStop_Click();
        monitor.cmdZero_Click();
        events.clear();
        tick();
        EXPECT_EQ(monitor.RunMode(), RunState::Idle);
        EXPECT_NE(logText().find("\r\nEnd:     Date: "), std::string::npos);
        EXPECT_EQ(std::count(events.begin(), events.end(), "U?"), 0);
        EXPECT_FALSE(core.status.panels().running);
        EXPECT_TRUE(ticker.on) << "attempts go on";
        EXPECT_TRUE(core.desk.waiting().zero) << "only the stop does not wait";
        returnLink();
        const Texts acts = actsDuring(4);
        EXPECT_EQ(std::count(acts.begin(), acts.end(), "S"), 1);
        EXPECT_NE(std::find(events.begin(), events.end(), "A9?"), events.end()) << "the refresh was owed";
        clickAndTick("start");
        tickAfter(0.25);
    }
}

TEST_F(RequestsTest, AConfirmedFilmGoesOutOnceAfterALossInIdle) {
    const struct {
        const char* name;
        bool running;
        bool confirmed; ///< before the loss
        double gone;
        const char* version; ///< afterwards
        Texts acts;
        bool marked;
    } cases[] = {
        {"idle", false, true, 5, "DRX-9 Ver 4.08", {"D3"}, false},
        {"another instrument", false, true, 5, "DRX-9 Ver 4.12", {}, true},
        {"run, short", true, true, 0.5, "DRX-9 Ver 4.08", {}, false},
        {"run, long", true, true, 5, "DRX-9 Ver 4.08", {}, true},
        {"never confirmed", false, false, 5, "DRX-9 Ver 4.08", {}, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        version = "DRX-9 Ver 4.08";
        bringUp();
        special["D3"] = replyPacket(c.confirmed ? 'A' : 'B', "");
        clickAndTick("film");
        EXPECT_EQ(core.choice.mark().empty(), c.confirmed);
        if (c.running) {
            clickAndTick("start");
        }
        loseLink();
        actsDuring(c.gone);
        returnLink();
        version = c.version;
        special["A3?"] = replyPacket('A', "FILM_3  2.7 100 1 6 4 1 3");
        EXPECT_EQ(actsDuring(6), c.acts);
        EXPECT_EQ(core.choice.mark().empty(), !c.marked);
        monitor.setRunMode(RunState::Idle);
    }
    special["D3"] = ""; // not accepted: the loss that this causes repeats nothing
    monitor.cboFilms_Click(2);
    EXPECT_EQ(actsDuring(8), Texts{"D3"});
    EXPECT_FALSE(core.choice.mark().empty());
}

TEST_F(RequestsTest, AFilmStaysConfirmedWithTheInstrumentHoweverItsBridgeIsSpelled) {
    bringUp();
    settings.link.CommType = LinkType::Usb;
    for (const auto& [now, marked] : {std::pair("AB12", false), {"ab12", false}, {"AB13", true}}) {
        settings.link.USBSerNum = "AB12";
        core.choice.selected(1, true);
        settings.link.USBSerNum = now;
        core.choice.linkOpening();
        EXPECT_EQ(!core.choice.mark().empty(), marked) << now;
    }
}

TEST_F(RequestsTest, AFilmBeforeTheFirstReadingShowsNoReading) {
    ASSERT_TRUE(core.lifecycle.Form_Load());
    special["P1"] = special["P2"] = ""; // the reading fails, and so does the next
    onCommand["D1"] = [] { FAIL() << "the link is dead"; };
    tick();
    onCommand.clear();
    monitor.carryOutBeforeWindow();
    EXPECT_EQ(core.readouts.texts()[Readouts::AverageRate], "");
}

// ---- what waits

TEST_F(RequestsTest, AWaitingActionCutsARefreshAndAReconnectBetweenExchanges) {
    const struct {
        const char* at; ///< command in whose exchange the action comes
        ActionQueue::For purpose;
        Texts rest;                             ///< commands behind it, until the action has run
        const char* version = "DRX-9 Ver 4.08"; ///< of who answers then
    } cases[] = {
        {"A4?", ActionQueue::For::Other, {}},
        {"A4?", ActionQueue::For::System, {"B?", "C?"}},
        {"A9?", ActionQueue::For::Other, {}, "DRX-9 Ver 4.07"},
        {"@", ActionQueue::For::Other, {"J"}, "DRX-9 Ver 4.06"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.at);
        bringUp();
        const bool known = c.version == std::exchange(version, c.version);
        socket.drop();
        link.setCommStatus(comm::kLost);
        bool ran = false;
        onCommand[c.at] = [&] {
            onCommand.clear();
            actions.runWhenIdle([&] { ran = true; }, c.purpose);
        };
        tickAfter(2);
        const auto at = std::find(events.begin(), events.end(), c.at);
        ASSERT_NE(at, events.end());
        Texts rest(at + 1, events.end());
        std::erase(rest, "timer on");
        EXPECT_EQ(rest, c.rest);
        EXPECT_TRUE(link.CommOK());
        EXPECT_EQ(core.films[1].FilmNum, known ? 1 : 0) << "another instrument's films are not known";
        EXPECT_EQ(core.choice.names().size(), 9U) << "the list that stood before";
        pump.runPosted();
        EXPECT_TRUE(ran);
        events.clear();
        tickAfter(0.25);
        EXPECT_EQ(std::count(events.begin(), events.end(), "A9?"), 1) << "made anew as a whole";
        EXPECT_EQ(std::count(events.begin(), events.end(), "C?"), 1);
        tickAfter(0.25);
        EXPECT_FALSE(core.answers.stale(clock.monotonic()));
        monitor.setRunMode(RunState::Starting);
    }
}

TEST_F(RequestsTest, ACloseLetsNoFurtherRequestBegin) {
    bringUp();
    onCommand["D3"] = [this] {
        actions.runWhenIdle([this] { core.lifecycle.Form_QueryUnload(); }, ActionQueue::For::Close);
    };
    monitor.cboFilms_Click(2);
    monitor.cmdShutter_Click();
    EXPECT_EQ(requestsOfTick(), (Texts{"D3", "A3?"}));
    pump.runPosted();
    EXPECT_EQ(monitor.RunMode(), RunState::Exiting);
    EXPECT_EQ(shutter, 0);
}

TEST_F(RequestsTest, RequestsAreCarriedOutOrDroppedBeforeAWindowHoldsTheTimer) {
    bringUp();
    monitor.cmdZero_Click();
    monitor.carryOutBeforeWindow();
    EXPECT_FALSE(core.desk.waiting().zero);
    EXPECT_EQ(report().text(), "");
    link.setCommStatus(comm::kLost);
    monitor.cmdZero_Click();
    socket.wire.forget();
    monitor.carryOutBeforeWindow();
    EXPECT_TRUE(socket.wire.commands().empty());
    EXPECT_FALSE(core.desk.waiting().zero) << "must not come true when the window closes";
    EXPECT_EQ(report().text(), "Zero: not sent");
}

// ---- out of step

TEST_F(RequestsTest, ReadingsOutOfStepAreSaidAndOpenTheLinkAgain) {
    bringUp();
    tick();
    onCommand["M"] = [this] { socket.wire.arrive(replyPacket('A', "77")); }; // one that nobody asked for
    for (int i = 1; i <= 4; ++i) {
        tickAfter(0.25);
        EXPECT_EQ(core.answers.straysInARow(), i);
    }
    const std::string notice = gravestNotice(core.status.facts()).text;
    EXPECT_EQ(notice.rfind("Answers out of step: no readings since 10:30:", 0), 0U) << notice;
    EXPECT_EQ(socket.connects, 1);
    tickAfter(0.25);
    EXPECT_EQ(socket.connects, 2);
    onCommand.clear();
    tickAfter(0.25);
    tickAfter(0.25);
    EXPECT_EQ(core.answers.straysInARow(), 0);
}

TEST_F(RequestsTest, ARefreshOutOfStepKeepsTheListAndReadsNoRecord) {
    bringUp();
    special["B?"] = replyPacket('A', "1 1 1 1 1 1 1 1 1 1 1");
    onCommand["A5?"] = [this] { socket.wire.arrive(replyPacket('A', "OTHER     1 1 1 1 1 1 1")); };
    onCommand["A6?"] = [this] { special["A6?"] = replyPacket('A', "CHANGED   1 1 1 1 1 1 1"); };
    monitor.setRunMode(RunState::Idle);
    EXPECT_EQ(core.choice.names().at(5), "FILM_6");
    EXPECT_FALSE(core.instrument.systemKnown());
    EXPECT_NE(settings.system.Simulate, 1);
    EXPECT_EQ(core.answers.lastExchange(), "Films and parameters not read: answers out of step");
}

TEST_F(RequestsTest, AnAnswerThatWasLateForTheLostLinkIsNoVersion) {
    bringUp();
    special["U?"] = "";
    tick(); // times out
    socket.drop();
    onCommand["@"] = [this] {
        socket.wire.arrive(replyPacket('A', "0"), 0.001);
    }; // before the version itself
    tickAfter(2);
    EXPECT_FALSE(link.CommOK());
    EXPECT_EQ(core.discovery.failure(), "Answers out of step");
    onCommand.clear();
    special.erase("U?");
    tickAfter(2);
    EXPECT_EQ(core.instrument.title(), "DRX9 Comm - [Ver. 4.08]");
}

TEST_F(RequestsTest, AnotherInstrumentWithFewerFilmsGetsNoFilmUnasked) {
    version = "DRX-9 Ver 4.12";
    bringUp();
    monitor.cboFilms_Click(11);
    tick();
    loseLink();
    tickAfter(2);
    returnLink();
    version = "DRX-9 Ver 4.08";
    EXPECT_EQ(actsDuring(4), Texts{});
    EXPECT_EQ(core.choice.index(), -1);
    EXPECT_FALSE(core.choice.mark().empty());
}

TEST_F(RequestsTest, AFaultInARefreshLeavesPollingOn) {
    bringUp();
    onCommand["A3?"] = [] { throw std::runtime_error("fault"); };
    EXPECT_THROW(monitor.setRunMode(RunState::Idle), std::runtime_error);
    EXPECT_TRUE(ticker.on);
    onCommand.clear();
    tickAfter(2);
    tickAfter(2);
    EXPECT_FALSE(core.answers.stale(clock.monotonic()));
}

TEST_F(RequestsTest, ACloseBeforeTheStartWritesNoSettings) {
    const std::string before = files.text("/app/Monitor.ini");
    core.lifecycle.Form_QueryUnload();
    EXPECT_EQ(files.text("/app/Monitor.ini"), before);
    EXPECT_EQ(monitor.RunMode(), RunState::Exiting);
    monitor.setRunMode(RunState::Idle);
    EXPECT_EQ(monitor.RunMode(), RunState::Exiting) << "for good";
}

TEST_F(RequestsTest, ARunKeepsTheSensorsThatItBeganWith) {
    startRun();
    loseLink();
    tickAfter(2);
    returnLink();
    sensors = 4;
    tickAfter(2);
    events.clear();
    tickAfter(0.25);
    EXPECT_EQ(link.sensorCount(), 4);
    EXPECT_EQ(std::count(events.begin(), events.end(), "P3"), 0);
}

} // namespace
} // namespace drx9
