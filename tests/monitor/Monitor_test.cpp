#include "monitor/MonitorFixture.h"

#include <algorithm>

namespace drx9 {
namespace {

using Texts = std::vector<std::string>;

class MonitorTest : public MonitorFixture {};

// ---- start-up

TEST_F(MonitorTest, StartsInTheGivenOrder) {
    ASSERT_TRUE(core.lifecycle.Form_Load());
    const EventList expected = {"window", "@",   "J",   "A1?", "A2?", "A3?", "A4?",     "A5?",
                                "A6?",    "A7?", "A8?", "A9?", "B?",  "C?",  "timer on"};
    EXPECT_EQ(events, expected);
    EXPECT_EQ(core.instrument.title(), "DRX9 Comm - [Ver. 4.08]");
    EXPECT_EQ(progress.percents.size(), 9U);
    EXPECT_EQ(core.choice.names().size(), 9U);
    EXPECT_EQ(core.choice.index(), 0);
    EXPECT_EQ(settings.system.FreqMax, 6.0);
    EXPECT_EQ(window.hourglass, (std::vector<bool>{true, false}));
    // The first film counts as a selection: the list and the instrument agree after the first tick.
    EXPECT_EQ(requestsOfTick(), (Texts{"D1", "A1?", "U?"}));
}

// ---- requests

struct RequestCase {
    const char* name;
    int shutter;    ///< state of the instrument's shutter before
    bool running;   ///< a run is in progress
    Texts clicks;   ///< "start", "zero", "shutter", "film3"
    Texts commands; ///< of the tick that carries them out, the reading left out
    RunState mode;  ///< afterwards
};

class RequestTest : public MonitorFixture, public testing::WithParamInterface<RequestCase> {};

TEST_P(RequestTest, SendsItsCommandsInOrder) {
    const RequestCase& c = GetParam();
    shutter = c.shutter;
    bringUp();
    if (c.running) {
        clickAndTick("start");
    }
    for (const std::string& what : c.clicks) {
        click(what);
    }
    EXPECT_EQ(requestsOfTick(), c.commands);
    EXPECT_EQ(monitor.RunMode(), c.mode);
    EXPECT_EQ(core.status.panels().shutterCaption, shutter == 1 ? "Close Shutter" : "Open Shutter");
    EXPECT_EQ(core.status.panels().running, c.mode == RunState::Running);
    EXPECT_EQ(sleep.held, c.mode == RunState::Running ? 1 : 0);
}

const Texts kRefresh = {"U?", "A1?", "A2?", "A3?", "A4?", "A5?", "A6?", "A7?", "A8?", "A9?", "B?", "C?"};
const Texts kAllAtOnce = {"D3", "A3?", "S", "T", "T", "U1", "U?", "T", "T"};
constexpr RunState kIdle = RunState::Idle;
constexpr RunState kRuns = RunState::Running;

INSTANTIATE_TEST_SUITE_P(
    Requests, RequestTest,
    testing::Values(RequestCase{"twice_is_once", 0, false, {"start", "start"}, {"U?", "T", "T"}, kRuns},
                    RequestCase{"stop", 0, true, {"start"}, kRefresh, kIdle},
                    RequestCase{"zero", 0, false, {"zero"}, {"S", "T", "T", "U?"}, kIdle},
                    RequestCase{"shutter_starts_a_run", 0, false, {"shutter"}, {"U1", "U?", "T", "T"}, kRuns},
                    RequestCase{"shutter_closes_in_a_run", 1, true, {"shutter"}, {"U0", "U?"}, kRuns},
                    RequestCase{"shutter_opens_in_a_run", 0, true, {"shutter"}, {"U1", "U?"}, kRuns},
                    RequestCase{"all_at_once", 0, false, {"shutter", "zero", "film"}, kAllAtOnce, kRuns}),
    [](const auto& given) { return std::string(given.param.name); });

TEST_F(MonitorTest, FailedShutterQueryReadsClosedAndUnknown) {
    bringUp();
    special["U?"] = ""; // the status 1 that the query then returns must not read as open
    tick();
    EXPECT_EQ(core.desk.shutterState(), RequestDesk::kShutterUnknown);
    EXPECT_EQ(core.status.panels().shutterCaption, "Open Shutter");
    special["U?"] = replyPacket('B', ""); // a refusal keeps the link
    tick();                               // opens the link again
    tick();
    monitor.cmdShutter_Click();
    EXPECT_EQ(requestsOfTick().front(), "U0") << "unknown is not 0: the request closes";
}

TEST_F(MonitorTest, OneBadAnswerAtTheEndOfARunChangesNeitherFilmNorList) {
    // A command, its bad answer ("" for none), the films in the list then, and the selected one.
    const std::tuple<const char*, std::string, std::size_t, int> cases[] = {
        {"A2?", replyPacket('A', "x").substr(0, 4) + "zz", 1, -1}, // the film in use is not read
        {"A3?", "", 2, -1},
        {"A5?", replyPacket('B', ""), 4, 2},
        {"U?", replyPacket('B', ""), 9, 2},
        {"U?", "", 9, 2}};
    bringUp();
    clickAndTick("film");
    for (const auto& [command, badAnswer, listed, selected] : cases) {
        SCOPED_TRACE(command);
        clickAndTick("start");
        ASSERT_EQ(monitor.RunMode(), RunState::Running);
        special[command] = badAnswer;
        if (listed < 9) {
            boxes.expectNonBlocking("Get Film Error: ");
        }
        clickAndTick("start");
        special.erase(command);
        ASSERT_EQ(monitor.RunMode(), RunState::Idle);
        EXPECT_EQ(core.choice.names().size(), listed);
        EXPECT_FALSE(progress.shown);
        EXPECT_EQ(core.choice.index(), selected);
        EXPECT_EQ(core.choice.mark().empty(), selected >= 0);
        EXPECT_EQ(core.choice.nameBesideList(), selected < 0 ? "FILM_3" : "");
        EXPECT_FALSE(core.desk.waiting().film) << "the instrument keeps its film";
        EXPECT_EQ(core.choice.currentName(), "FILM_3  ");
        tickAfter(2);
        tickAfter(2);
    }
}

TEST_F(MonitorTest, ARecordThatIsNeverAnsweredDoesNotKeepTheProgramFromPolling) {
    special["C?"] = "";
    bringUp();
    for (int i = 0; i < 4; ++i) {
        tickAfter(2);
    }
    EXPECT_FALSE(core.instrument.systemKnown());
    EXPECT_FALSE(core.answers.stale(clock.monotonic()));
    EXPECT_EQ(socket.connects, 1);
}

TEST_F(MonitorTest, WhatIsOnlySetIsNotSaidOfTheLinkThatWasTried) {
    bringUp();
    EXPECT_TRUE(core.instrument.systemKnown());
    settings.link.CommType = LinkType::Serial;
    EXPECT_EQ(core.status.facts().link.CommType, LinkType::Ethernet);
    link.setCommOK(false);
    core.linkSetup.linkSetupClosed(false, false);
    EXPECT_FALSE(core.instrument.systemKnown()) << "the record is another instrument's";
}

TEST_F(MonitorTest, AFilmChoiceOutlivesARefresh) {
    bringUp();
    onCommand["A6?"] = [this] { monitor.cboFilms_Click(1); }; // chosen while the list is read
    monitor.setRunMode(RunState::Idle);
    EXPECT_EQ(core.choice.index(), 1);
    EXPECT_EQ(requestsOfTick().front(), "D2");
}

// ---- a run and its log

TEST_F(MonitorTest, RunStartsWithZeroThenLogAndEndsWithLogThenRefresh) {
    startRun();
    EXPECT_EQ(logText(), "Start:   Date: 5/17/2024   Time: 10:30:00   Film: FILM_1  \r\n\r\n"
                         "Time\tAvgThk\tAvgRate\tThk1\tRate1\tFreq1\tThk2...\r\n\r\n");
    const std::string started = logText();
    events.clear();
    rate = 1.00496; // the sensors' is rounded to 0.001 once, for log and readout alike
    tickAfter(2);
    EXPECT_EQ(logText().substr(started.size()).substr(0, 27), "2.02\t1.250\t1.00\t1.250\t1.01\t");
    EXPECT_EQ(core.readouts.texts()[Readouts::FirstSensor], "1.01");
    int refreshes = 0;
    onCommand["A1?"] = [&] {
        ++refreshes;
        EXPECT_NE(logText().find("\r\nEnd:     Date: "), std::string::npos) << "before the refresh";
        EXPECT_EQ(monitor.RunMode(), RunState::Idle);
        tick(); // never inside the change
    };
    clickAndTick("start");
    EXPECT_EQ(refreshes, 1);
}

class ClosingInARun : public MonitorTest, public testing::WithParamInterface<bool> {};
INSTANTIATE_TEST_SUITE_P(Settings, ClosingInARun, testing::Bool(),
                         [](const auto& writable) { return writable.param ? "Saved" : "WriteProtected"; });

TEST_P(ClosingInARun, SavesFirstAndEndsTheLog) {
    startRun();
    events.clear();
    const auto logEnded = [&] { return logText().find("\r\nEnd:     Date: ") != std::string::npos; };
    files.find("/app/Monitor.ini")->writeProtected = !GetParam();
    if (!GetParam()) {
        boxes.expectShow("Settings not saved: The file is write-protected",
                         [&] { EXPECT_TRUE(logEnded()) << "the log first"; });
    }
    core.lifecycle.Form_QueryUnload();
    EXPECT_EQ(events, (EventList{"windows closed"}));
    EXPECT_EQ(monitor.RunMode(), RunState::Exiting);
    EXPECT_TRUE(logEnded());
    EXPECT_FALSE(ticker.on);
    EXPECT_FALSE(core.lifecycle.Form_Load()) << "exiting";
    if (GetParam()) {
        EXPECT_LT(files.find("/app/Monitor.ini")->modified, files.find("/app/drx9.txt")->modified);
    }
}

TEST_F(MonitorTest, ALogInTroubleIsSaidAndEndsWhenTheTroubleDoes) {
    startRun();
    tickAfter(2);
    const std::string before = logText();
    files.find("/app/drx9.txt")->writeProtected = true;
    tickAfter(2);
    EXPECT_EQ(gravestNotice(core.status.facts()).brief, "Log not written");
    EXPECT_NE(staLog(core.status.facts()).text.find("1 line not written"), std::string::npos);
    files.rename("/app/drx9.txt", "/app/old.txt"); // as another program does: a new file is begun
    tickAfter(2);
    EXPECT_EQ(gravestNotice(core.status.facts()).brief, "");
    EXPECT_EQ(files.text("/app/old.txt"), before);
    EXPECT_EQ(logText().substr(0, 3), "6.0");
    EXPECT_EQ(log.linesWritten() + log.linesLost(), 3);
}

TEST_F(MonitorTest, ChartsFollowTheStoreOverItsWrap) {
    startRun();
    const int kReadings = 1203;
    averageRate.model.setYView({0, 42}); // changed on the chart by hand
    rates.graph.setXwide(0);
    for (int i = 0; i < kReadings; ++i) {
        clock.advance(1);
        rate = i;
        tick();
    }
    const RunPoints& points = averageRate.run;
    ASSERT_EQ(points.rows(), static_cast<std::size_t>(kReadings) - 1)
        << "the newest point is drawn a reading later";
    const std::size_t column = averageRate.model.column(0);
    for (std::size_t i = 1; i < points.rows(); ++i) {
        ASSERT_GT(points.time(i), points.time(i - 1)) << i;
        ASSERT_EQ(points.value(column, i), points.value(column, i - 1) + 1) << i;
    }
    EXPECT_EQ(rates.run.count(rates.model.column(1)), points.rows());
    EXPECT_EQ(rates.run.count(rates.model.column(2)), 0U) << "two sensors";
    EXPECT_EQ(averageRate.graph.YMax(), 42);
    const double shownTo = averageRate.graph.XMin() + averageRate.graph.Xwide();
    EXPECT_GE(shownTo, points.time(points.rows() - 1));
    EXPECT_LT(shownTo, points.time(points.rows() - 1) + 75);
    EXPECT_NEAR(rates.graph.XMin() + 0.5, points.time(points.rows() - 1), 0.75) << "it shows 1 s";
    EXPECT_EQ(rates.graph.Xwide(), 0);
}

// ---- the lost link

TEST_F(MonitorTest, LinkStatusDecidesWhatATickDoes) {
    // The status in a run mode: whether a tick polls, and whether it opens the link again.
    const std::tuple<const char*, std::uint16_t, RunState, bool, bool> cases[] = {
        {"ok", 0, RunState::Idle, true, false},
        {"timeout", 1, RunState::Idle, false, true},
        {"checksum", 7, RunState::Idle, true, false},
        {"port", 8, RunState::Idle, false, true},
        {"busy", 9, RunState::Idle, false, false},
        {"lost", 10, RunState::Idle, false, true},
        {"lost at start", 10, RunState::Starting, false, false},
        {"lost in a run", 10, RunState::Running, false, true},
    };
    bringUp();
    for (const auto& [name, status, mode, polls, reconnects] : cases) {
        monitor.setRunMode(mode);
        clock.advance(10);
        socket.wire.forget();
        const int connects = socket.connects;
        link.setCommStatus(status);
        tick();
        const auto& sent = socket.wire.commands();
        EXPECT_EQ(std::count(sent.begin(), sent.end(), "P1"), polls ? 1 : 0) << name;
        EXPECT_EQ(socket.connects - connects, reconnects ? 1 : 0) << name;
        EXPECT_EQ(link.CommStatus(), polls || reconnects ? 0 : status) << name;
        link.setCommStatus(0);
    }
}

TEST_F(MonitorTest, FourTicksWithoutAnAcceptedAnswerReopenAndThenOnceAMinute) {
    bringUp();
    special["U?"] = replyPacket('D', "");
    for (int i = 1; i <= 6; ++i) {
        tick();
    }
    EXPECT_EQ(socket.connects, 1) << "the readings are accepted";
    for (const char* command : {"P1", "P2", "M", "O", "L1", "L2", "N1", "N2"}) {
        special[command] = replyPacket('D', "");
    }
    // Seconds from the first refusal, connections until then, and whether the window was refreshed.
    const std::tuple<double, int, bool> cases[] = {
        {0.9, 1, false}, {1.1, 2, true}, {60, 2, false}, {63, 3, false}};
    const double start = clock.monotonic();
    for (const auto& [at, connects, refreshed] : cases) {
        events.clear();
        while (clock.monotonic() < start + at) {
            tickAfter(0.25);
        }
        EXPECT_EQ(socket.connects, connects) << at;
        EXPECT_EQ(std::count(events.begin(), events.end(), "A5?") > 0, refreshed) << at;
    }
}

TEST_F(MonitorTest, RunGoesOnOverALossWithAGapAndOneBox) {
    bringUp();
    monitor.cmdStartStop_Click();
    for (int i = 0; i < 4; ++i) {
        tickAfter(0.25);
    }
    const std::size_t drawn = averageRate.run.rows();
    loseLink();
    const double lost = clock.monotonic();
    const int connects = socket.connects;
    while (clock.monotonic() < lost + 20) {
        tickAfter(0.25);
    }
    EXPECT_GE(socket.connects - connects, 8);
    EXPECT_LE(socket.connects - connects, 14);
    EXPECT_EQ(averageRate.run.rows(), drawn) << "nothing was read";
    EXPECT_TRUE(core.keeper.lost());
    EXPECT_TRUE(core.answers.stale(clock.monotonic()));
    monitor.cmdShutter_Click();
    returnLink();
    version = "DRX-9 Ver 4.12";
    const double back = clock.monotonic();
    while (core.answers.stale(clock.monotonic()) && clock.monotonic() < back + 5) {
        tickAfter(0.25);
    }
    EXPECT_LE(clock.monotonic() - back, 2.3);
    EXPECT_EQ(monitor.RunMode(), RunState::Running);
    EXPECT_EQ(shutter, 1) << "the request waited";
    EXPECT_NE(core.message.text().find("DRX-9 Ver 4.12"), std::string::npos);
    tickAfter(0.25);
    EXPECT_TRUE(averageRate.run.gapBefore(drawn + 1)); // behind the newest point of before
}

} // namespace
} // namespace drx9
