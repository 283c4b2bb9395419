#include "monitor/MonitorFixture.h"

#include <algorithm>

namespace drx9 {
namespace {

using Texts = std::vector<std::string>;

class MonitorTest : public MonitorFixture {
protected:
    void startRun() {
        bringUp();
        monitor.cmdStartStop_Click();
        tick();
    }
};

/// Position of the first event that begins with `text`; the number of events when there is none.
std::size_t position(const EventList& events, const std::string& text) {
    const auto found = std::find_if(events.begin(), events.end(),
                                    [&](const std::string& event) { return event.rfind(text, 0) == 0; });
    return static_cast<std::size_t>(found - events.begin());
}

// ---- start-up

TEST_F(MonitorTest, StartsInTheGivenOrder) {
    ASSERT_TRUE(monitor.Form_Load());
    const EventList expected = {"window", "@",   "J",   "A1?", "A2?", "A3?", "A4?",     "A5?",
                                "A6?",    "A7?", "A8?", "A9?", "B?",  "C?",  "timer on"};
    EXPECT_EQ(events, expected);
    EXPECT_EQ(monitor.shown().title, "DRX9 Comm - [Ver. 4.08]");
    EXPECT_EQ(progress.percents, (std::vector<int>{11, 22, 33, 44, 56, 67, 78, 89, 100}));
    EXPECT_EQ(progress.texts, Texts{"Reading DRX-9 Films"});
    EXPECT_EQ(monitor.films().names().size(), 9U);
    EXPECT_EQ(monitor.films().index(), 0);
    EXPECT_EQ(settings.system.FreqMax, 6.0);
    EXPECT_EQ(window.hourglass, (std::vector<bool>{true, false}));
    // The first film counts as a selection: the list and the instrument agree after the first tick.
    EXPECT_EQ(requestsOfTick(), (Texts{"D1", "A1?", "U?"}));
}

TEST_F(MonitorTest, ComesUpOffLine) {
    socket.refusal = "Connection refused";
    ASSERT_TRUE(monitor.Form_Load());
    EXPECT_EQ(monitor.shown().title, "DRX9 Comm - [Off Line]");
    EXPECT_FALSE(monitor.shown().controlsVisible);
    EXPECT_FALSE(monitor.locked());
    EXPECT_FALSE(ticker.on);
    tick();
    EXPECT_TRUE(socket.wire.commands().empty()) << "never on line: nothing is opened again";
}

// ---- requests

struct RequestCase {
    const char* name;
    int shutter;    ///< state of the instrument's shutter before
    bool running;   ///< a run is in progress
    Texts clicks;   ///< "start", "zero", "shutter", "film3"
    Texts commands; ///< of the tick that carries them out, the reading left out
    RunState mode;  ///< afterwards
    std::string shutterCaption;
};

class RequestTest : public MonitorFixture, public testing::WithParamInterface<RequestCase> {};

TEST_P(RequestTest, SendsItsCommandsInOrder) {
    const RequestCase& c = GetParam();
    shutter = c.shutter;
    bringUp();
    if (c.running) {
        monitor.cmdStartStop_Click();
        tick();
    }
    for (const std::string& click : c.clicks) {
        click == "start"     ? monitor.cmdStartStop_Click()
        : click == "zero"    ? monitor.cmdZero_Click()
        : click == "shutter" ? monitor.cmdShutter_Click()
                             : monitor.cboFilms_Click(2);
    }
    EXPECT_EQ(requestsOfTick(), c.commands);
    EXPECT_EQ(monitor.RunMode(), c.mode);
    EXPECT_EQ(monitor.shutterCaption(), c.shutterCaption);
    EXPECT_EQ(monitor.locked(), c.mode == RunState::Running);
    EXPECT_EQ(sleep.held, c.mode == RunState::Running ? 1 : 0);
}

const Texts kRefresh = {"U?", "A1?", "A2?", "A3?", "A4?", "A5?", "A6?", "A7?", "A8?", "A9?", "B?", "C?"};

INSTANTIATE_TEST_SUITE_P(
    Requests, RequestTest,
    testing::Values(
        RequestCase{"nothing", 0, false, {}, {"U?"}, RunState::Idle, "Open Shutter"},
        RequestCase{"start", 0, false, {"start"}, {"U?", "T", "T"}, RunState::Running, "Open Shutter"},
        RequestCase{"twice_is_once",
                    0,
                    false,
                    {"start", "start"},
                    {"U?", "T", "T"},
                    RunState::Running,
                    "Open Shutter"},
        RequestCase{"stop", 0, true, {"start"}, kRefresh, RunState::Idle, "Open Shutter"},
        RequestCase{"zero", 0, false, {"zero"}, {"S", "T", "T", "U?"}, RunState::Idle, "Open Shutter"},
        RequestCase{"shutter_starts_a_run",
                    0,
                    false,
                    {"shutter"},
                    {"U1", "U?", "T", "T"},
                    RunState::Running,
                    "Close Shutter"},
        RequestCase{
            "shutter_closes_in_a_run", 1, true, {"shutter"}, {"U0", "U?"}, RunState::Running, "Open Shutter"},
        RequestCase{
            "shutter_opens_in_a_run", 0, true, {"shutter"}, {"U1", "U?"}, RunState::Running, "Close Shutter"},
        RequestCase{"third_film", 0, false, {"film3"}, {"D3", "A3?", "U?"}, RunState::Idle, "Open Shutter"},
        RequestCase{"all_at_once",
                    0,
                    false,
                    {"shutter", "zero", "film3"},
                    {"D3", "A3?", "S", "T", "T", "U1", "U?", "T", "T"},
                    RunState::Running,
                    "Close Shutter"}),
    [](const auto& given) { return std::string(given.param.name); });

TEST_F(MonitorTest, FailedShutterQueryReadsClosedAndUnknown) {
    bringUp();
    special["U?"] = ""; // the status 1 that the query then returns must not read as open
    tick();
    EXPECT_EQ(monitor.requests().shutterState(), RequestDesk::kShutterUnknown);
    EXPECT_EQ(monitor.shutterCaption(), "Open Shutter");
    special["U?"] = replyPacket('B', ""); // a refusal keeps the link
    tick();                               // opens the link again
    tick();
    monitor.cmdShutter_Click();
    EXPECT_EQ(requestsOfTick().front(), "U0") << "unknown is not 0: the request closes";
}

TEST_F(MonitorTest, OneBadAnswerAtTheEndOfARunChangesNeitherFilmNorList) {
    struct Case {
        const char* command;
        std::string answer; ///< empty: none
        std::size_t listed;
        int selected;
    };
    const Case cases[] = {
        {"A2?", replyPacket('A', "x").substr(0, 4) + "zz", 1, -1}, // the film in use is not read
        {"A3?", "", 2, -1},
        {"A5?", replyPacket('B', ""), 4, 2},
        {"U?", replyPacket('B', ""), 9, 2},
        {"U?", "", 9, 2}};
    bringUp();
    monitor.cboFilms_Click(2);
    tick();
    for (const Case& given : cases) {
        SCOPED_TRACE(given.command);
        monitor.cmdStartStop_Click();
        tick();
        ASSERT_EQ(monitor.RunMode(), RunState::Running);
        special[given.command] = given.answer;
        if (given.listed < 9) {
            boxes.expectNonBlocking("Get Film Error: ");
        }
        monitor.cmdStartStop_Click();
        tick();
        special.erase(given.command);
        ASSERT_EQ(monitor.RunMode(), RunState::Idle);
        EXPECT_EQ(monitor.films().names().size(), given.listed);
        EXPECT_FALSE(progress.shown);
        EXPECT_EQ(monitor.films().index(), given.selected);
        EXPECT_EQ(monitor.films().mark().empty(), given.selected >= 0);
        EXPECT_EQ(monitor.films().nameBesideList(), given.selected < 0 ? "FILM_3" : "");
        EXPECT_FALSE(monitor.requests().waiting().film) << "the instrument keeps its film";
        EXPECT_EQ(monitor.films().currentName(), "FILM_3  ");
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
    EXPECT_FALSE(monitor.shown().systemKnown);
    EXPECT_FALSE(monitor.answers().stale(clock.monotonic()));
    EXPECT_EQ(socket.connects, 1);
}

TEST_F(MonitorTest, AFilmChoiceOutlivesARefresh) {
    bringUp();
    onCommand["A6?"] = [this] { monitor.cboFilms_Click(1); }; // chosen while the list is read
    monitor.setRunMode(RunState::Idle);
    EXPECT_EQ(monitor.films().index(), 1);
    EXPECT_EQ(requestsOfTick().front(), "D2");
}

// ---- a run and its log

TEST_F(MonitorTest, RunStartsWithZeroThenLogAndEndsWithLogThenRefresh) {
    startRun();
    EXPECT_EQ(logText(), "Start:   Date: 5/17/2024   Time: 10:30:00   Film: FILM_1  \r\n\r\n"
                         "Time\tAvgThk\tAvgRate\tThk1\tRate1\tFreq1\tThk2...\r\n\r\n");
    EXPECT_LT(position(events, "ReInit"), position(events, "T"));
    const std::string started = logText();
    events.clear();
    tickAfter(2);
    EXPECT_EQ(logText().substr(started.size()).substr(0, 5), "2.02\t");
    int refreshes = 0;
    onCommand["A1?"] = [&] {
        ++refreshes;
        EXPECT_NE(logText().find("\r\nEnd:     Date: "), std::string::npos) << "before the refresh";
        EXPECT_EQ(monitor.RunMode(), RunState::Idle);
        tick(); // never inside the change
    };
    monitor.cmdStartStop_Click();
    tick();
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
    monitor.Form_QueryUnload();
    EXPECT_EQ(events, (EventList{"windows closed"}));
    EXPECT_EQ(monitor.RunMode(), RunState::Exiting);
    EXPECT_TRUE(logEnded());
    EXPECT_FALSE(ticker.on);
    EXPECT_FALSE(monitor.Form_Load()) << "exiting";
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
    averageRate.shownMax = 42; // changed on the chart by hand
    for (int i = 0; i < kReadings; ++i) {
        clock.advance(1);
        rate = i;
        tick();
    }
    const auto& points = averageRate.series[0];
    EXPECT_EQ(points.size(), static_cast<std::size_t>(kReadings) - 1)
        << "the newest point is drawn a reading later";
    for (std::size_t i = 1; i < points.size(); ++i) {
        ASSERT_GT(points[i].x, points[i - 1].x) << i;
        ASSERT_EQ(points[i].y, points[i - 1].y + 1) << i;
    }
    EXPECT_EQ(rates.series[1].size(), points.size());
    EXPECT_EQ(rates.series[2].size(), 0U) << "two sensors";
    EXPECT_EQ(averageRate.YMax(), 42);
    EXPECT_GE(averageRate.XMin() + averageRate.Xwide(), points.back().x);
    EXPECT_LT(averageRate.XMin() + averageRate.Xwide(), points.back().x + 75);
}

// ---- the lost link

TEST_F(MonitorTest, LinkStatusDecidesWhatATickDoes) {
    const struct {
        const char* name;
        std::uint16_t status;
        RunState mode;
        bool polls, reconnects;
    } cases[] = {
        {"ok", 0, RunState::Idle, true, false},
        {"timeout", 1, RunState::Idle, false, true},
        {"no data", 2, RunState::Idle, false, true},
        {"not ready", 3, RunState::Idle, true, false},
        {"bad data", 5, RunState::Idle, true, false},
        {"checksum", 7, RunState::Idle, true, false},
        {"port", 8, RunState::Idle, false, true},
        {"busy", 9, RunState::Idle, false, false},
        {"lost", 10, RunState::Idle, false, true},
        {"lost at start", 10, RunState::Starting, false, false},
        {"lost in a run", 10, RunState::Running, false, true},
    };
    bringUp();
    for (const auto& c : cases) {
        monitor.setRunMode(c.mode);
        clock.advance(10);
        socket.wire.forget();
        const int connects = socket.connects;
        link.setCommStatus(c.status);
        tick();
        const auto& sent = socket.wire.commands();
        EXPECT_EQ(std::count(sent.begin(), sent.end(), "P1"), c.polls ? 1 : 0) << c.name;
        EXPECT_EQ(socket.connects - connects, c.reconnects ? 1 : 0) << c.name;
        EXPECT_EQ(link.CommStatus(), c.status == 9                  ? 9
                                     : c.mode == RunState::Starting ? c.status
                                                                    : 0)
            << c.name;
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
    const struct {
        double at; ///< s from the first refusal
        int connects;
        bool refreshed;
    } cases[] = {{0.9, 1, false}, {1.1, 2, true}, {60, 2, false}, {63, 3, false}};
    const double start = clock.monotonic();
    for (const auto& c : cases) {
        events.clear();
        while (clock.monotonic() < start + c.at) {
            tickAfter(0.25);
        }
        EXPECT_EQ(socket.connects, c.connects) << c.at;
        EXPECT_EQ(position(events, "A5?") < events.size(), c.refreshed) << c.at;
    }
}

TEST_F(MonitorTest, RunGoesOnOverALossWithAGapAndOneBox) {
    bringUp();
    monitor.cmdStartStop_Click();
    for (int i = 0; i < 4; ++i) {
        tickAfter(0.25);
    }
    const std::size_t drawn = averageRate.series[0].size();
    silent = true;
    socket.drop();
    socket.refusal = "Connection refused";
    const double lost = clock.monotonic();
    const int connects = socket.connects;
    while (clock.monotonic() < lost + 20) {
        tickAfter(0.25);
    }
    EXPECT_GE(socket.connects - connects, 8);
    EXPECT_LE(socket.connects - connects, 14);
    EXPECT_EQ(averageRate.series[0].size(), drawn) << "nothing was read";
    EXPECT_TRUE(monitor.reconnecting());
    EXPECT_TRUE(monitor.answers().stale(clock.monotonic()));
    monitor.cmdShutter_Click();
    silent = false;
    socket.refusal.clear();
    version = "DRX-9 Ver 4.12";
    const double back = clock.monotonic();
    while (monitor.answers().stale(clock.monotonic()) && clock.monotonic() < back + 5) {
        tickAfter(0.25);
    }
    EXPECT_LE(clock.monotonic() - back, 2.3);
    EXPECT_EQ(monitor.RunMode(), RunState::Running);
    EXPECT_EQ(shutter, 1) << "the request waited";
    EXPECT_NE(monitor.shown().notice.text.find("DRX-9 Ver 4.12"), std::string::npos);
    tickAfter(0.25);
    EXPECT_EQ(averageRate.gaps, 1);
}

TEST_F(MonitorTest, IdleProgramRefreshesItselfAfterALoss) {
    bringUp();
    silent = true;
    boxes.expectNonBlocking("Instrument not found.");
    tick(); // two time-outs: the reading fails, without a box
    EXPECT_EQ(link.CommStatus(), 1);
    EXPECT_EQ(socket.wire.commands(), (Texts{"P1", "L1"}));
    tick();
    EXPECT_FALSE(link.CommOK());
    EXPECT_EQ(boxes.nonBlockingText(), "Instrument not found.");
    silent = false;
    clock.advance(2);
    socket.wire.forget();
    tick();
    EXPECT_EQ(boxes.nonBlockingText(), "");
    EXPECT_EQ(socket.wire.commands()[2], "A1?") << "the window is refreshed";
    EXPECT_FALSE(monitor.reconnecting());
}

} // namespace
} // namespace drx9
