#pragma once

#include "core/Core.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeEventPump.h"
#include "fakes/FakeLinks.h"
#include "fakes/FakeMessageBoxes.h"
#include "fakes/MemoryFilePort.h"
#include "graphs/ChartBench.h"
#include "link/Crc.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace drx9 {

/// What happened, in order, told by the fakes below; wire commands appear as themselves.
using EventList = std::vector<std::string>;

struct FakeTicker : Ticker {
    bool on = false;
    EventList* events = nullptr;
    void start() override {
        on = true;
        events->emplace_back("timer on");
    }
    void stop() override { on = false; }
    [[nodiscard]] bool running() const override { return on; }
};

struct FakeProgress : Progress {
    std::vector<int> percents;
    std::vector<std::string> texts;
    bool shown = false;
    EventPump* pump = nullptr;
    void ProgressShow(const std::string& text, ProgressOwner) override {
        texts.push_back(text);
        shown = true;
        pump->processPending();
    }
    void setProgress(std::int16_t percent) override { percents.push_back(percent); }
    void ProgressHide() override { shown = false; }
};

struct FakeSleepInhibitor : SleepInhibitor {
    int held = 0;
    void hold(const std::string&) override { ++held; }
    void release() override { --held; }
};

struct FakeWindow : MonitorWindow {
    EventList* events = nullptr;
    EventPump* pump = nullptr;
    std::vector<bool> hourglass;
    void showWindow() override {
        events->emplace_back("window");
        pump->processPending();
    }
    void setHourglass(bool on) override { hourglass.push_back(on); }
    void changed() override {}
    void closeOtherWindows() override { events->emplace_back("windows closed"); }
};

/// The whole program without windows, on a fake Ethernet instrument of `sensors` sensors whose frequencies
/// move.
class MonitorFixture : public testing::Test {
public:
    MonitorFixture();

    /// Brings the program up on line and carries out the first film selection; forgets what happened so far.
    void bringUp();
    void tick() { monitor.tmrUpdate_Timer(); }
    void tickAfter(double seconds) {
        clock.advance(seconds);
        tick();
    }
    /// "zero", "shutter", "start" (or stop), "film": the third one.
    void click(const std::string& what);
    void startRun() {
        bringUp();
        clickAndTick("start");
    }
    void clickAndTick(const std::string& what) {
        click(what);
        tick();
    }
    void loseLink();
    void returnLink();
    /// One tick's commands without those of the reading ("P1" ... "O").
    std::vector<std::string> requestsOfTick();
    [[nodiscard]] std::string logText() const;
    /// What the instrument answers; overridden by `special`.
    std::string answer(const std::string& command);

    EventList events;
    FakeClock clock;
    FakeEventPump pump{clock};
    FakeMessageBoxes boxes;
    FakeSerial serial{pump};
    FakeSocket socket{pump};
    FakeUsb usb{pump};
    MemoryFilePort files;
    FakeTicker ticker;
    ChartBench averageRate{GraphKind::cAvgGraph}, rates{GraphKind::cChanGraph};
    ChartBench averageThickness{GraphKind::cAvgThkGraph}, thicknesses{GraphKind::cChanThkGraph};
    FakeProgress progress;
    FakeSleepInhibitor sleep;
    FakeWindow window;
    Core core;
    Settings& settings{core.settings};
    ActionQueue& actions{core.actions};
    Link& link{core.link};
    DataLog& log{core.log};
    PollTimer& timer{core.timer};
    Monitor& monitor{core.monitor};

    // The instrument.
    int sensors = 2;
    int shutter = 0;
    bool silent = false; ///< answers nothing
    std::string version = "DRX-9 Ver 4.08";
    double thickness = 1.25;
    double rate = 2;
    std::map<std::string, std::string> special; ///< raw answers by command; an empty one is silence

    std::map<std::string, std::function<void()>> onCommand; ///< runs when the instrument gets the command

private:
    double frequency_ = 5900000;
};

} // namespace drx9
