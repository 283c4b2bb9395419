// The acquisition cycle: the tick, the reading, and a lost link.
#include "monitor/Monitor.h"

#include "util/Text.h"

namespace drx9 {

namespace {
/// Least time between two attempts to open a lost link again: seven ticks, so that polling resumes within 2 s
/// of the instrument's return, the exchanges of the attempt included. Half a tick off, lest timer jitter skip
/// one.
constexpr double kReconnectInterval = 7 * 0.25 - 0.125;
/// Ticks in a row that found the last exchange refused before the link is opened anew.
constexpr int kRefusalsBeforeReconnect = 4;

/// The instrument answered, but refused or answered garbled: it lives.
bool livingAnswer(std::uint16_t status) {
    return status >= comm::kNotReady && status <= comm::kChecksum;
}
} // namespace

void Monitor::tmrUpdate_Timer() {
    if (parts_.actions.busy() || parts_.actions.waiting() || runMode_ == kExiting) {
        return;
    }
    const ActionQueue::Scope scope(parts_.actions);
    if (!parts_.link.CommOK()) {
        if (wasOnLine_ && (runMode_ == kIdle || runMode_ == kRunning)) {
            reconnect();
        }
        changed();
        return;
    }
    wasOnLine_ = true;
    answers_.begin();
    if (readyToPoll()) {
        ReadDRX();
        if (!parts_.actions.waiting() && linkFine()) {
            takeRequests();
        }
        answers_.publish();
    }
    changed();
}

bool Monitor::readyToPoll() {
    const std::uint16_t status = parts_.link.CommStatus();
    if (status == comm::kOk) {
        refusals_ = 0;
        return true;
    }
    if (livingAnswer(status) && ++refusals_ < kRefusalsBeforeReconnect) {
        parts_.link.setCommStatus(comm::kOk);
        return true;
    }
    if (status != comm::kBusy && runMode_ != kStarting) {
        reconnect(); // what it found is polled from the next tick on
    }
    return false;
}

bool Monitor::linkFine() {
    if (livingAnswer(parts_.link.CommStatus())) {
        parts_.link.setCommStatus(comm::kOk);
    }
    return parts_.link.CommStatus() == comm::kOk;
}

void Monitor::reconnect() {
    const double now = parts_.clock.monotonic();
    if (lastAttempt_ >= 0 && now - lastAttempt_ < kReconnectInterval) {
        return;
    }
    lastAttempt_ = now;
    if (!reconnecting_) {
        reconnecting_ = true;
        gapPending_ = true;
        versionAtLoss_ = parts_.link.CommVersion();
        changed();
    }
    if (!parts_.discovery.Comm_Open(Discovery::Messages::NonBlocking)) {
        answers_.say(parts_.discovery.failure());
        return;
    }
    reconnecting_ = false;
    refusals_ = 0;
    answers_.say("OK");
    if (runMode_ == kIdle) {
        setRunMode(kIdle);
    } else if (parts_.link.CommVersion() != versionAtLoss_) {
        notice_ = "Another instrument answers now: " + utf8FromAnsi(trimmed(parts_.link.CommVersion()));
    }
}

void Monitor::ReadDRX() {
    const auto result = parts_.commands.Comm_GetData(readings_, [this] { return parts_.actions.waiting(); });
    answers_.noteReading(result, parts_.commands.readFailure());
    if (result != Commands::ReadResult::Done) {
        const bool lost =
            result == Commands::ReadResult::LinkDead || result == Commands::ReadResult::OutOfStep;
        gapPending_ = gapPending_ || lost;
        return;
    }
    points_.store(readings_, parts_.link.sensorCount(), gapPending_);
    gapPending_ = false;
    refreshReadouts();
    if (runMode_ != kRunning) {
        return;
    }
    charts_.UpdateGraph(points_, parts_.link.sensorCount());
    const DataLogSettings& log = parts_.settings.log;
    const double elapsed = points_.row(points_.currentPoint()).elapsed;
    if (log.Type != kLogNone && log.Start <= elapsed && elapsed <= log.End && log.Start != log.End) {
        parts_.log.UpdateDataLog(readings_, elapsed, parts_.link.sensorCount());
    }
    points_.advance();
}

void Monitor::refreshReadouts() {
    parts_.readouts.refresh(runMode_, readings_, currentFilm(), parts_.link.sensorCount());
    changed();
}

} // namespace drx9
