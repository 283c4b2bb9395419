#pragma once

#include "link/ActionQueue.h"
#include "link/Commands.h"
#include "link/Discovery.h"
#include "link/Link.h"
#include "monitor/AnswerRecord.h"
#include "monitor/ChartFeed.h"
#include "monitor/DataLog.h"
#include "monitor/MonitorWindow.h"
#include "monitor/PointStore.h"
#include "monitor/PollTimer.h"
#include "monitor/Readouts.h"
#include "monitor/RunModes.h"
#include "monitor/Settings.h"
#include "platform/Clock.h"
#include "platform/Desktop.h"
#include "platform/Progress.h"
#include "util/ProgramName.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

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
    const Clock& clock;
    EventPump& pump;
    /// Loads and saves Monitor.ini.
    std::function<void()> LoadSettings;
    std::function<void()> SaveSettings;
};

/// The running program without its windows: start-up and shutdown, run mode, the acquisition cycle, the
/// operator's requests. All operations run on the user-interface thread; those that talk to the instrument
/// pump events and hold an ActionQueue::Scope, so that no tick, menu action or close request starts inside
/// them.
class Monitor {
public:
    static constexpr std::int16_t kShutterUnknown = -999; ///< the shutter query failed

    /// Requests that wait for the next tick.
    struct Requests {
        bool startStop = false;
        bool zero = false;
        bool shutter = false;
        bool film = false;
    };

    explicit Monitor(const MonitorParts& parts);
    void setWindow(MonitorWindow& window) { window_ = &window; }

    // Start and end.

    /// Start-up: settings, graphs, window, link, instrument. Pumps. False when the program must end at once
    /// because it is exiting already.
    bool Form_Load();
    /// Saves the settings, ends a run's log, closes the other windows. Never cancelled. Call when idle only.
    void Form_QueryUnload();
    /// Tells a long refresh of the window to end early because the program is about to close.
    void announceClose() { closing_ = true; }

    // Run mode.

    [[nodiscard]] std::int16_t RunMode() const { return runMode_; }
    void setRunMode(std::int16_t mode);
    /// Refreshes the window from the instrument. Pumps.
    void InitForm();
    void ZeroAll();

    // The cycle.

    void tmrUpdate_Timer();

    // The operator's requests; each only raises its flag.

    void cmdStartStop_Click();
    void cmdZero_Click();
    void cmdShutter_Click();
    /// `index` is the chosen entry of the film list, from 0.
    void cboFilms_Click(int index);
    [[nodiscard]] const Requests& requests() const { return requests_; }
    /// The view menu's sensor items, 1 rate, 2 thickness, 3 frequency: the fields change with their labels,
    /// also while nothing is read.
    void sensorItemClicked(std::int16_t item);

    // What the window shows.

    [[nodiscard]] const std::string& title() const { return title_; }
    [[nodiscard]] bool controlsVisible() const { return controlsVisible_; } ///< on line at the last refresh
    [[nodiscard]] bool started() const { return started_; }                 ///< the first refresh is done
    [[nodiscard]] bool locked() const { return locked_; }                   ///< setup menus and film list
    [[nodiscard]] bool commMenuEnabled() const { return !locked_; }
    [[nodiscard]] const std::vector<std::string>& filmNames() const { return filmNames_; } ///< UTF-8
    [[nodiscard]] int filmIndex() const { return filmIndex_; }                             ///< -1 none
    [[nodiscard]] std::int16_t shutterState() const { return shutterState_; }
    [[nodiscard]] std::string shutterCaption() const;
    [[nodiscard]] std::string startStopCaption() const;
    [[nodiscard]] const Readings& readings() const { return readings_; }
    /// The film last selected on the instrument; null when there is none yet.
    [[nodiscard]] const FilmRecord* currentFilm() const;
    /// Name of the instrument's current film, 8 characters (bytes); blanks when there is none.
    [[nodiscard]] std::string currentFilmName() const;

    // Freshness and faults, for notices and the status bar.

    [[nodiscard]] const AnswerRecord& answers() const { return answers_; }
    /// The link was lost since it was last on line and is being opened again from the tick.
    [[nodiscard]] bool reconnecting() const { return reconnecting_; }
    /// A message in words that stays until the next run starts: another instrument after a loss; empty when
    /// none.
    [[nodiscard]] const std::string& notice() const { return notice_; }
    /// The record shown in Simulate and Etch of the status bar was read from or sent to the instrument.
    [[nodiscard]] bool systemKnown() const { return systemKnown_; }
    [[nodiscard]] const LocalTime& runStart() const { return runStart_; }

    [[nodiscard]] MonitorParts& parts() { return parts_; }

private:
    void ReadDRX();
    void takeRequests();
    void takeFilmRequest();
    void takeZeroRequest();
    void takeShutterRequest();
    void queryShutter();
    void takeStartStopRequest();
    void startRun();
    bool readFilms(); ///< false when a film could not be read: the list ends before it
    void selectFilmAfterRefresh(int asked, bool whole);
    void enterMode(std::int16_t mode);
    [[nodiscard]] bool linkFine();
    [[nodiscard]] bool readyToPoll();
    void reconnect();
    void refreshReadouts();
    void changed();

    MonitorParts parts_;
    MonitorWindow* window_ = nullptr;
    PointStore points_;
    ChartFeed charts_;
    AnswerRecord answers_;
    Readings readings_;
    Requests requests_;
    std::int16_t runMode_ = kStarting;
    std::int16_t shutterState_ = 0;
    int currentFilm_ = -1; ///< number of the film last selected on the instrument, -1 none yet
    std::string title_ = kProgramName;
    std::vector<std::string> filmNames_;
    int filmIndex_ = -1;
    bool controlsVisible_ = false;
    bool started_ = false;
    bool locked_ = false;
    bool closing_ = false;
    bool wasOnLine_ = false;
    bool reconnecting_ = false;
    bool gapPending_ = false;
    bool systemKnown_ = false;
    int refusals_ = 0;
    double lastAttempt_ = -1;
    LocalTime runStart_;
    std::string versionAtLoss_;
    std::string notice_;
};

} // namespace drx9
