#include "monitor/Monitor.h"

#include "monitor/Texts.h"
#include "util/Numbers.h"
#include "util/Text.h"

#include <string>
#include <utility>

namespace drx9 {

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
        const bool onLine = monitor_.parts_.link.CommOK() || monitor_.parts_.keeper.lost();
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
        parts_.run.end(parts_.choice.currentName());
    }
    runMode_ = mode;
    {
        const TimerRule rule(*this); // also when the refresh throws: polling goes on
        if (mode == RunState::Idle && refresh) {
            parts_.instrument.InitForm();
        }
    }
    if (mode == RunState::Running) {
        startRun();
    }
    parts_.window.changed();
}

void Monitor::startRun() {
    parts_.message.clear();
    parts_.desk.runStarts();
    parts_.run.begin(parts_.link.sensorCount());
    parts_.window.changed(); // STOP shows before the exchanges below
    ZeroAll();
    parts_.answers.noteExchange("T", parts_.commands.Comm_ZeroTime());
    parts_.run.startLog(parts_.choice.currentName());
}

std::uint16_t Monitor::ZeroAll() {
    parts_.run.clear();
    parts_.readings.startTime = parts_.clock.monotonic();
    const std::uint16_t status = parts_.commands.Comm_ZeroTime();
    parts_.answers.noteExchange("T", status);
    return status;
}

void Monitor::exitAtOnce() {
    if (std::exchange(runMode_, RunState::Exiting) == RunState::Running) {
        parts_.run.end(parts_.choice.currentName());
    }
}

void Monitor::toggleRun() {
    setRunMode(runMode_ == RunState::Idle ? RunState::Running : RunState::Idle);
}

void Monitor::refreshReadouts() {
    parts_.readouts.refresh(runMode_, parts_.answers.hasReading() ? &parts_.readings : nullptr,
                            parts_.choice.current(), sensorCount());
    parts_.window.changed();
}

void Monitor::filmChanged() {
    refreshReadouts();
}

void Monitor::shutterQueried() {
    parts_.window.changed();
}

int Monitor::sensorCount() const {
    return runMode_ == RunState::Running ? parts_.run.sensors() : parts_.link.sensorCount();
}

// ---- the cycle

void Monitor::tmrUpdate_Timer() {
    if (parts_.actions.busy() || parts_.actions.waiting() || runMode_ == RunState::Exiting) {
        return;
    }
    const ActionQueue::Scope scope(parts_.actions);
    switch (parts_.keeper.judge(runMode_)) {
    case LinkKeeper::Tick::Poll:
        poll();
        break;
    case LinkKeeper::Tick::Reopen:
        reopen();
        break;
    case LinkKeeper::Tick::Nothing:
        break;
    }
    parts_.window.changed();
}

void Monitor::poll() {
    if (parts_.instrument.owed() && runMode_ == RunState::Idle) {
        parts_.instrument.InitForm(); // readings follow from the next tick on
        return;
    }
    parts_.answers.begin();
    const Commands::ReadResult result = ReadDRX();
    parts_.keeper.readingEnded(result);
    if (result == Commands::ReadResult::LinkDead) {
        takeStopWithoutLink();
    } else if (!parts_.actions.waiting()) {
        parts_.desk.carryOut(*this);
    }
    parts_.keeper.tickEnded();
    parts_.answers.publish();
}

Commands::ReadResult Monitor::ReadDRX() {
    const Commands::ReadOutcome reading = parts_.commands.Comm_GetData(
        parts_.readings, sensorCount(), [this] { return parts_.actions.waiting(); });
    const bool held = parts_.timer.heldSince(parts_.answers.lastGoodReading()) > 0;
    parts_.answers.noteReading(reading, held || parts_.run.gapPending());
    if (reading.end == Commands::ReadResult::Done) {
        storeReading();
    } else if (reading.end != Commands::ReadResult::Abandoned) {
        parts_.run.noteGap();
    }
    return reading.end;
}

/// To 0.001: points, charts, readouts and log share the rounded values.
void Monitor::roundReading() {
    parts_.readings.elapsed = toThousandths(parts_.readings.elapsed);
    for (double& rate : parts_.readings.rate) {
        rate = toThousandths(rate);
    }
}

void Monitor::storeReading() {
    roundReading();
    parts_.run.store(parts_.readings, sensorCount(), runMode_ == RunState::Running);
    refreshReadouts();
}

/// A stop does not wait for a link that is gone. The refresh is owed until the link is back.
void Monitor::takeStopWithoutLink() {
    if (parts_.desk.takeStop(runMode_)) {
        parts_.instrument.owe();
        changeMode(RunState::Idle, false);
    }
}

void Monitor::reopen() {
    if (parts_.keeper.beginLoss()) {
        parts_.run.noteGap();
        parts_.choice.noteLoss();
        parts_.window.changed();
    }
    takeStopWithoutLink();
    switch (parts_.keeper.attempt()) {
    case LinkKeeper::Attempt::Opened:
        parts_.answers.say(monitorText::kOk);
        reopened();
        break;
    case LinkKeeper::Attempt::Failed:
        if (!parts_.discovery.failure().empty()) {
            parts_.answers.say(parts_.discovery.failure());
        }
        break;
    case LinkKeeper::Attempt::NotDue:
        break;
    }
}

void Monitor::reopened() {
    if (runMode_ == RunState::Running) {
        if (!parts_.keeper.sameVersion()) {
            const std::string version = utf8FromAnsi(trimmed(parts_.link.CommVersion()));
            parts_.message.tell(filled(monitorText::kOtherInstrument, {version}),
                                monitorText::kOtherInstrumentBrief);
        }
        return;
    }
    if (parts_.keeper.repeated()) {
        return; // a link that answers was opened again for nothing: its films are known
    }
    if (parts_.choice.takeRepeat()) {
        parts_.desk.raiseFilm();
    }
    parts_.instrument.owe();
    changeMode(RunState::Idle, !parts_.actions.waiting()); // what waits goes first
}

// ---- the operator's requests

void Monitor::cmdStartStop_Click() {
    parts_.desk.raiseStartStop();
    parts_.window.changed();
}

void Monitor::cmdZero_Click() {
    parts_.desk.raiseZero();
    parts_.window.changed();
}

void Monitor::cmdShutter_Click() {
    parts_.desk.raiseShutter();
    parts_.window.changed();
}

void Monitor::cboFilms_Click(int index) {
    parts_.choice.choose(index);
    parts_.desk.raiseFilm();
    parts_.window.changed();
}

bool Monitor::carryOutBeforeWindow() {
    {
        const ActionQueue::Scope scope(parts_.actions);
        if (parts_.link.CommOK() && parts_.keeper.fine()) {
            parts_.answers.begin();
            parts_.desk.carryOut(*this, true);
            parts_.answers.publish();
        }
        parts_.desk.dropWaiting();
        parts_.window.changed();
    }
    return runMode_ != RunState::Running && !parts_.actions.closing();
}

void Monitor::graphItemClicked(std::int16_t item) {
    parts_.readouts.graphItemClicked(item);
    parts_.window.changed();
}

void Monitor::sensorItemClicked(std::int16_t item) {
    parts_.readouts.sensorItemClicked(item);
    refreshReadouts();
}

} // namespace drx9
