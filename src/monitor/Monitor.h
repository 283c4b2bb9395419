#pragma once

#include "link/ActionQueue.h"
#include "link/Commands.h"
#include "link/Discovery.h"
#include "link/Link.h"
#include "monitor/AnswerRecord.h"
#include "monitor/FilmChoice.h"
#include "monitor/InstrumentState.h"
#include "monitor/LinkKeeper.h"
#include "monitor/MainWindowAccess.h"
#include "monitor/MonitorWindow.h"
#include "monitor/PollTimer.h"
#include "monitor/Readouts.h"
#include "monitor/RequestDesk.h"
#include "monitor/RunRecord.h"
#include "monitor/RunState.h"
#include "monitor/StandingMessage.h"
#include "platform/Clock.h"

#include <cstdint>

namespace drx9 {

/// What the monitor works with; everything is made once at the program's start and outlives it.
struct MonitorParts {
    Link& link;
    Commands& commands;
    const Discovery& discovery;
    ActionQueue& actions;
    PollTimer& timer;
    Readings& readings;
    Readouts& readouts;
    RunRecord& run;
    AnswerRecord& answers;
    LinkKeeper& keeper;
    FilmChoice& choice;
    RequestDesk& desk;
    InstrumentState& instrument;
    StandingMessage& message;
    MonitorWindow& window;
    const Clock& clock;
};

/// Run mode and acquisition cycle. All operations run on the user-interface thread; those that talk to the
/// instrument pump events and hold an ActionQueue::Scope, so that no tick, menu action or close request
/// starts inside them.
class Monitor : public RunControl, private RunHost {
public:
    explicit Monitor(const MonitorParts& parts)
        : parts_(parts) {}

    // Run mode.

    [[nodiscard]] RunState RunMode() const override { return runMode_; }
    /// Idle refreshes the window from the instrument; Running starts a run. Pumps.
    void setRunMode(RunState mode);
    /// The run mode becomes Exiting and a run's log gets its end. Sends nothing and touches no window.
    void exitAtOnce();
    /// The start values of a run: empty charts, elapsed time 0, and "T". Its status. Pumps.
    std::uint16_t ZeroAll() override;
    /// Sensors read and shown: in a run those that it began with.
    [[nodiscard]] int sensorCount() const;

    // The cycle.

    void tmrUpdate_Timer();

    // The operator's requests.

    void cmdStartStop_Click() override;
    void cmdZero_Click() override;
    void cmdShutter_Click() override;
    void cboFilms_Click(int index) override;
    void graphItemClicked(std::int16_t item) override;
    void sensorItemClicked(std::int16_t item) override;
    [[nodiscard]] bool carryOutBeforeWindow() override;

private:
    class TimerRule;

    void toggleRun() override;
    void filmChanged() override;
    void shutterQueried() override;

    void changeMode(RunState mode, bool refresh);
    void startRun();
    void poll();
    Commands::ReadResult ReadDRX();
    void roundReading();
    void storeReading();
    void takeStopWithoutLink();
    void reopen();
    void reopened();
    void refreshReadouts();

    MonitorParts parts_;
    RunState runMode_ = RunState::Starting;
};

} // namespace drx9
