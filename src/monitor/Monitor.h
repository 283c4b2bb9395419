#pragma once

#include "link/ActionQueue.h"
#include "link/Commands.h"
#include "link/Discovery.h"
#include "link/Link.h"
#include "monitor/AnswerRecord.h"
#include "monitor/DataLog.h"
#include "monitor/FilmChoice.h"
#include "monitor/InstrumentRefresh.h"
#include "monitor/LinkKeeper.h"
#include "monitor/MonitorWindow.h"
#include "monitor/PollTimer.h"
#include "monitor/Readouts.h"
#include "monitor/RequestDesk.h"
#include "monitor/RunRecord.h"
#include "monitor/RunState.h"
#include "monitor/Settings.h"
#include "platform/Clock.h"
#include "platform/Desktop.h"
#include "platform/Progress.h"
#include "util/ProgramName.h"

#include <cstdint>
#include <exception>
#include <functional>
#include <string>

namespace drx9 {

/// What the monitor works with; everything is made once at the program's start and outlives it.
struct MonitorParts {
    Settings& settings;
    Films& films;
    Link& link;
    Commands& commands;
    Discovery& discovery;
    ActionQueue& actions;
    DataLog& log;
    Readouts& readouts;
    PollTimer& timer;
    GraphSet graphs;
    Progress& progress;
    SleepInhibitor& sleep;
    MessageBoxes& boxes;
    const Clock& clock;
    /// Load and save Monitor.ini; saving gives the reason of a failure, empty on success.
    std::function<void()> LoadSettings;
    std::function<std::string()> SaveSettings;
    /// Reports what a step of closing throws; closing goes on.
    std::function<void(const std::exception&)> fault;
};

/// The running program without its windows: start-up and shutdown, run mode and the acquisition cycle. All
/// operations run on the user-interface thread; those that talk to the instrument pump events and hold an
/// ActionQueue::Scope, so that no tick, menu action or close request starts inside them.
class Monitor : private RunHost {
public:
    explicit Monitor(const MonitorParts& parts);
    void setWindow(MonitorWindow& window) { window_ = &window; }

    // Start and end.

    /// Start-up: settings, graphs, window, link, instrument. Pumps. False when the program must end at once
    /// because it is exiting already.
    bool Form_Load();
    /// Saves the settings, ends a run's log, closes the other windows. Never cancelled; a failure to save is
    /// told in a box, except at the session's end. Call when idle only.
    void Form_QueryUnload(bool sessionEnds = false);
    /// The window system has gone, and the process with it as soon as this returns: writes the end of a run's
    /// log and the settings. Sends nothing and touches no window.
    void lastWords();

    // Run mode.

    [[nodiscard]] RunState RunMode() const override { return runMode_; }
    void setRunMode(RunState mode);
    /// Refreshes the window from the instrument. Pumps.
    void InitForm();
    /// The start values of a run: empty charts, elapsed time 0, and "T". Its status. Pumps.
    std::uint16_t ZeroAll() override;

    // The cycle.

    void tmrUpdate_Timer();

    // The operator's requests; each only raises its flag.

    void cmdStartStop_Click();
    void cmdZero_Click();
    void cmdShutter_Click();
    /// `index` is the chosen entry of the film list, from 0.
    void cboFilms_Click(int index);
    /// Carries out what waits before a window opens that holds the timer; what the link cannot take is
    /// dropped and said. Pumps.
    void carryOutBeforeWindow();
    /// The view menu's sensor items, 1 rate, 2 thickness, 3 frequency: the fields change with their labels,
    /// also while nothing is read.
    void sensorItemClicked(std::int16_t item);

    // Windows that work the instrument themselves.

    /// A find by the operator has connected.
    void linkFound();
    /// A window has begun to hold the timer.
    void holdsChanged() { changed(); }
    /// The communications window closes: opens the link again where `reopen`, without a box, and goes to the
    /// state Idle. With the `sameLink` as when it opened, attempts to open a lost link go on. Pumps.
    void linkSetupClosed(bool reopen, bool sameLink);
    void systemSent(bool accepted);
    void filmUnconfirmed();

    // What the window shows.

    /// A message in words: another instrument after a loss, graph settings that were not saved. Empty when
    /// none.
    struct Message {
        std::string text;
        std::string brief;
    };
    struct Shown {
        std::string title = kProgramName;
        bool controlsVisible = false; ///< on line at the last refresh
        bool started = false;         ///< the first refresh is done
        bool systemKnown = false; ///< the record of Simulate and Etch was read from or sent to the instrument
        Message notice;           ///< stays until the next run starts
    };
    [[nodiscard]] const Shown& shown() const { return shown_; }
    [[nodiscard]] bool locked() const { return runMode_ == RunState::Running; } ///< setup menus and film list
    [[nodiscard]] const FilmChoice& films() const { return choice_; }
    [[nodiscard]] const RequestDesk& requests() const { return desk_; }
    [[nodiscard]] std::string shutterCaption() const;
    [[nodiscard]] const Readings& readings() const { return readings_; }
    /// Sensors read and shown: in a run those that it began with.
    [[nodiscard]] int sensorCount() const;

    // Freshness and faults, for notices and the status bar.

    [[nodiscard]] const AnswerRecord& answers() const { return answers_; }
    /// The link was lost since it was last on line and is being opened again from the tick.
    [[nodiscard]] bool reconnecting() const { return keeper_.lost(); }
    void tell(const std::string& text, const std::string& brief);
    [[nodiscard]] const LocalTime& runStart() const { return run_.startTime(); }

private:
    class TimerRule;

    void toggleRun() override;
    void filmChanged() override;
    void shutterQueried() override { changed(); }

    void poll();
    Commands::ReadResult ReadDRX();
    void storeReading();
    void takeStopWithoutLink();
    void reopen();
    void reopened();
    void showOffLine();
    void takeRefresh(InstrumentRefresh::Result result);
    void changeMode(RunState mode, bool refresh);
    void startRun();
    void refreshReadouts();
    void step(const std::function<void()>& action) const;
    std::string saveSettings();
    void changed();

    MonitorParts parts_;
    MonitorWindow* window_ = nullptr;
    RunRecord run_;
    AnswerRecord answers_;
    LinkKeeper keeper_;
    FilmChoice choice_;
    RequestDesk desk_;
    InstrumentRefresh refresh_;
    Readings readings_;
    RunState runMode_ = RunState::Starting;
    Shown shown_;
    bool loaded_ = false;      ///< the settings were read
    bool refreshOwed_ = false; ///< a refresh was cut, or could not be made: the next tick that can makes it
    bool stepLost_ = false;    ///< the last refresh had answers out of step
};

} // namespace drx9
