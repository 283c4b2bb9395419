#include "monitor/Monitor.h"

#include "monitor/Texts.h"
#include "util/Text.h"

#include <utility>

namespace drx9 {

Monitor::Monitor(const MonitorParts& parts)
    : parts_(parts)
    , run_({parts.settings.log, parts.log, parts.graphs, parts.sleep, parts.clock})
    , answers_(parts.link, parts.clock)
    , keeper_(parts.link, parts.discovery, parts.actions, parts.clock)
    , choice_(parts.films, parts.link, parts.discovery, parts.settings.link, parts.timer, parts.clock)
    , desk_({parts.commands, parts.link, parts.films, choice_, answers_, keeper_, parts.actions, parts.clock})
    , refresh_({parts.commands, parts.link, parts.films, parts.settings.system, answers_, parts.actions,
                parts.progress}) {}

// ---- start and end

bool Monitor::Form_Load() {
    if (runMode_ == RunState::Exiting) {
        return false;
    }
    const ActionQueue::Scope scope(parts_.actions);
    parts_.LoadSettings();
    loaded_ = true;
    parts_.readouts.setDisplay(parts_.settings.Display);
    parts_.readouts.setGraph(parts_.settings.Graph);
    run_.initCharts();
    window_->setHourglass(true);
    window_->showWindow();
    setRunMode(RunState::Starting);
    // A failure leaves the communications menu enabled, as modes 0 and 1 do.
    parts_.discovery.Comm_Open(Messages::Blocking, [this] { return parts_.actions.closing(); });
    setRunMode(RunState::Idle);
    if (stepLost_) {
        InitForm(); // there is nothing yet that could be kept
    }
    window_->setHourglass(false);
    return true;
}

void Monitor::Form_QueryUnload(bool sessionEnds) {
    std::string notSaved;
    step([&] { notSaved = saveSettings(); });
    step([this] { setRunMode(RunState::Exiting); });
    if (!notSaved.empty() && !sessionEnds) {
        parts_.boxes.show(filled(monitorText::kSettingsNotSaved, {notSaved}), kProgramName,
                          MessageIcon::Exclamation);
    }
    step([this] { window_->closeOtherWindows(); });
}

std::string Monitor::saveSettings() {
    if (!loaded_) {
        return {}; // nothing has been read yet that could be written back
    }
    parts_.settings.Display = parts_.readouts.Display();
    parts_.settings.Graph = parts_.readouts.Graph();
    return parts_.SaveSettings();
}

void Monitor::lastWords() {
    if (runMode_ == RunState::Exiting) {
        return;
    }
    try {
        if (std::exchange(runMode_, RunState::Exiting) == RunState::Running) {
            run_.end(choice_.currentName());
        }
        saveSettings();
    } catch (const std::exception&) {
        // Nobody is left to be told.
    }
}

/// One step of closing: what it throws must not keep the next from being made.
void Monitor::step(const std::function<void()>& action) const {
    try {
        action();
    } catch (const std::exception& error) {
        parts_.fault(error);
    }
}

// ---- run mode

void Monitor::setRunMode(RunState mode) {
    changeMode(mode, true);
}

/// The timer of the run mode, set when the rest of the change is done.
class Monitor::TimerRule {
public:
    explicit TimerRule(Monitor& monitor)
        : monitor_(monitor) {}
    ~TimerRule() {
        // A lost link is opened again from the tick, so the tick goes on while it is lost.
        const bool polls = monitor_.runMode_ == RunState::Idle || monitor_.runMode_ == RunState::Running;
        const bool onLine = monitor_.parts_.link.CommOK() || monitor_.keeper_.lost();
        monitor_.parts_.timer.setWanted(polls && onLine);
    }
    TimerRule(const TimerRule&) = delete;
    TimerRule& operator=(const TimerRule&) = delete;

private:
    Monitor& monitor_;
};

void Monitor::changeMode(RunState mode, bool refresh) {
    if (runMode_ == RunState::Exiting) {
        return;
    }
    const ActionQueue::Scope scope(parts_.actions);
    if (runMode_ == RunState::Running) {
        run_.end(choice_.currentName());
    }
    runMode_ = mode;
    {
        const TimerRule rule(*this); // also when the refresh throws: polling goes on
        if (mode == RunState::Idle && refresh) {
            InitForm();
        }
    }
    if (mode == RunState::Running) {
        startRun();
    }
    changed();
}

void Monitor::startRun() {
    shown_.notice = {};
    desk_.runStarts();
    run_.begin(parts_.link.sensorCount());
    changed(); // STOP shows before the exchanges below
    ZeroAll();
    answers_.noteExchange("T", parts_.commands.Comm_ZeroTime());
    run_.startLog(choice_.currentName());
}

std::uint16_t Monitor::ZeroAll() {
    run_.clear();
    readings_.startTime = parts_.clock.monotonic();
    const std::uint16_t status = parts_.commands.Comm_ZeroTime();
    answers_.noteExchange("T", status);
    return status;
}

void Monitor::toggleRun() {
    setRunMode(runMode_ == RunState::Idle ? RunState::Running : RunState::Idle);
}

// ---- what the window shows of the instrument

void Monitor::InitForm() {
    const ActionQueue::Scope scope(parts_.actions);
    refreshOwed_ = stepLost_ = false;
    shown_.controlsVisible = parts_.link.CommOK();
    shown_.started = true;
    if (!shown_.controlsVisible) {
        showOffLine();
        return;
    }
    keeper_.noteOnLine();
    answers_.begin();
    shown_.title =
        std::string(kProgramName) + " - [Ver. " + utf8FromAnsi(trimmed(parts_.link.Comm_VersionText())) + "]";
    changed();
    // What the exchange before was answered says nothing of these: a film read under another status than 0 is
    // refused, and nobody would read the list again.
    parts_.link.setCommStatus(comm::kOk);
    takeRefresh(refresh_.run());
    answers_.publish();
    // A record that one exchange could not read is told by systemKnown(). Whether the link lives the next
    // reading finds out: left as it is, the status would open the link again, refresh again, and never come
    // to a reading.
    parts_.link.setCommStatus(comm::kOk);
    changed();
}

void Monitor::showOffLine() {
    choice_.clearList();
    shown_.title = std::string(kProgramName) + " - [Off Line]";
    if (!parts_.discovery.failure().empty()) {
        answers_.say(parts_.discovery.failure());
    }
    changed();
}

void Monitor::takeRefresh(InstrumentRefresh::Result result) {
    if (result.end == InstrumentRefresh::End::OutOfStep) {
        stepLost_ = true;
        shown_.systemKnown = false;
        answers_.noteFailure(monitorText::kRefreshOutOfStep);
        return;
    }
    shown_.systemKnown = result.recordAsked ? result.recordRead : shown_.systemKnown;
    if (result.end == InstrumentRefresh::End::Cut) {
        refreshOwed_ = true;
        return;
    }
    const int asked = desk_.waiting().film ? choice_.index() : -1; // a choice that waits outlives the refresh
    if (choice_.setList(std::move(result.films), asked)) {
        desk_.raiseFilm();
    }
}

void Monitor::refreshReadouts() {
    parts_.readouts.refresh(runMode_, answers_.hasReading() ? &readings_ : nullptr, choice_.current(),
                            sensorCount());
    changed();
}

void Monitor::filmChanged() {
    refreshReadouts();
}

int Monitor::sensorCount() const {
    return runMode_ == RunState::Running ? run_.sensors() : parts_.link.sensorCount();
}

// ---- the cycle

void Monitor::tmrUpdate_Timer() {
    if (parts_.actions.busy() || parts_.actions.waiting() || runMode_ == RunState::Exiting) {
        return;
    }
    const ActionQueue::Scope scope(parts_.actions);
    switch (keeper_.judge(runMode_)) {
    case LinkKeeper::Tick::Poll:
        poll();
        break;
    case LinkKeeper::Tick::Reopen:
        reopen();
        break;
    case LinkKeeper::Tick::Nothing:
        break;
    }
    changed();
}

void Monitor::poll() {
    if (refreshOwed_ && runMode_ == RunState::Idle) {
        InitForm(); // readings follow from the next tick on
        return;
    }
    answers_.begin();
    const Commands::ReadResult result = ReadDRX();
    keeper_.readingEnded(result);
    if (result == Commands::ReadResult::LinkDead) {
        takeStopWithoutLink();
    } else if (!parts_.actions.waiting()) {
        desk_.carryOut(*this);
    }
    keeper_.tickEnded();
    answers_.publish();
}

Commands::ReadResult Monitor::ReadDRX() {
    const auto result =
        parts_.commands.Comm_GetData(readings_, sensorCount(), [this] { return parts_.actions.waiting(); });
    const bool held = parts_.timer.heldSince(answers_.lastGoodReading()) > 0;
    answers_.noteReading(result, parts_.commands.readFailure(), held || run_.gapPending());
    if (result == Commands::ReadResult::Done) {
        storeReading();
    } else if (result != Commands::ReadResult::Abandoned) {
        run_.noteGap();
    }
    return result;
}

void Monitor::storeReading() {
    run_.store(readings_, sensorCount(), runMode_ == RunState::Running);
    refreshReadouts();
}

/// A stop does not wait for a link that is gone. The refresh is owed until the link is back.
void Monitor::takeStopWithoutLink() {
    if (desk_.takeStop(runMode_)) {
        refreshOwed_ = true;
        changeMode(RunState::Idle, false);
    }
}

void Monitor::reopen() {
    if (keeper_.beginLoss()) {
        run_.noteGap();
        choice_.noteLoss();
        changed();
    }
    takeStopWithoutLink();
    switch (keeper_.attempt()) {
    case LinkKeeper::Attempt::Opened:
        answers_.say(monitorText::kOk);
        reopened();
        break;
    case LinkKeeper::Attempt::Failed:
        if (!parts_.discovery.failure().empty()) {
            answers_.say(parts_.discovery.failure());
        }
        break;
    case LinkKeeper::Attempt::NotDue:
        break;
    }
}

void Monitor::reopened() {
    if (runMode_ == RunState::Running) {
        if (!keeper_.sameVersion()) {
            tell(filled(monitorText::kOtherInstrument, {utf8FromAnsi(trimmed(parts_.link.CommVersion()))}),
                 monitorText::kOtherInstrumentBrief);
        }
        return;
    }
    if (keeper_.repeated()) {
        return; // a link that answers was opened again for nothing: its films are known
    }
    if (choice_.takeRepeat()) {
        desk_.raiseFilm();
    }
    refreshOwed_ = true;
    changeMode(RunState::Idle, !parts_.actions.waiting()); // what waits goes first
}

// ---- the operator's requests

void Monitor::cmdStartStop_Click() {
    desk_.raiseStartStop();
    changed();
}

void Monitor::cmdZero_Click() {
    desk_.raiseZero();
    changed();
}

void Monitor::cmdShutter_Click() {
    desk_.raiseShutter();
    changed();
}

void Monitor::cboFilms_Click(int index) {
    choice_.choose(index);
    desk_.raiseFilm();
    changed();
}

void Monitor::carryOutBeforeWindow() {
    const ActionQueue::Scope scope(parts_.actions);
    if (parts_.link.CommOK() && keeper_.fine()) {
        answers_.begin();
        desk_.carryOut(*this, true);
        answers_.publish();
    }
    desk_.dropWaiting();
    changed();
}

void Monitor::sensorItemClicked(std::int16_t item) {
    parts_.readouts.sensorItemClicked(item);
    refreshReadouts();
}

// ---- windows that work the instrument themselves

void Monitor::tell(const std::string& text, const std::string& brief) {
    shown_.notice = {text, brief};
    changed();
}

void Monitor::linkFound() {
    answers_.say(monitorText::kOk); // what the loss meant has ended with the opening itself
    shown_.systemKnown = false;     // another instrument may answer; closing the window reads its record
    changed();
}

void Monitor::linkSetupClosed(bool reopen, bool sameLink) {
    if (runMode_ == RunState::Exiting) {
        return;
    }
    const ActionQueue::Scope scope(parts_.actions);
    if (reopen) {
        parts_.discovery.Comm_Open(Messages::Silent, [this] { return parts_.actions.closing(); });
    }
    choice_.forgetLoss(); // behind this window nothing is sent by itself
    if (!sameLink) {
        shown_.systemKnown = false;
        keeper_.startOver();
    } else if (!parts_.link.CommOK() && keeper_.wasOnLine()) {
        keeper_.beginLoss();
    }
    setRunMode(RunState::Idle);
}

void Monitor::systemSent(bool accepted) {
    shown_.systemKnown = accepted;
    changed();
}

void Monitor::filmUnconfirmed() {
    choice_.unconfirm();
    changed();
}

// ---- captions

std::string Monitor::shutterCaption() const {
    return desk_.shutterState() > 0 ? "Close Shutter" : "Open Shutter";
}

void Monitor::changed() {
    if (window_ != nullptr) {
        window_->changed();
    }
}

} // namespace drx9
