#include "monitor/StatusBoard.h"

namespace drx9 {

StatusFacts StatusBoard::facts() const {
    const Monitor& monitor = parts_.monitor;
    StatusFacts facts;
    facts.runMode = monitor.RunMode();
    facts.controlsVisible = monitor.shown().controlsVisible;
    facts.started = monitor.shown().started;
    facts.pauseReason = parts_.timer.holdReason();
    facts.link = facts.started ? parts_.discovery.tried() : parts_.settings.link;
    facts.message = monitor.shown().notice.text;
    facts.messageBrief = monitor.shown().notice.brief;
    facts.runStart = monitor.runStart();
    facts.systemKnown = monitor.shown().systemKnown;
    facts.simulate = parts_.settings.system.Simulate != 0;
    facts.etch = parts_.settings.system.EtchMode != 0;
    for (int sensor = 1; sensor <= kMaxSensors; ++sensor) {
        facts.crystals[static_cast<std::size_t>(sensor - 1)] = parts_.readouts.crystalMarked(sensor);
    }
    facts.elapsed = monitor.readings().elapsed;
    addAnswers(facts);
    addRequests(facts);
    addLog(facts);
    return facts;
}

void StatusBoard::addAnswers(StatusFacts& facts) const {
    const AnswerRecord& answers = parts_.monitor.answers();
    const double now = parts_.clock.monotonic();
    facts.hasReading = answers.hasReading();
    facts.stale = answers.stale(now) || parts_.monitor.reconnecting();
    facts.readingAge = now - answers.lastGoodReading();
    facts.replyAge = now - parts_.link.lastReplyTime();
    facts.strays = answers.straysInARow();
    facts.lastReading = answers.lastGoodReadingTime();
    const bool known = facts.controlsVisible || !parts_.discovery.failure().empty();
    facts.lastExchange = known ? answers.lastExchange() : commStatusText(parts_.link.CommStatus());
}

void StatusBoard::addRequests(StatusFacts& facts) const {
    const RequestDesk& desk = parts_.monitor.requests();
    facts.shutter = desk.shutterState();
    facts.requests = desk.waiting();
    facts.requestFailed = desk.report().text();
    facts.requestNotice = desk.report().notice();
}

void StatusBoard::addLog(StatusFacts& facts) const {
    facts.log = parts_.settings.log;
    facts.logPath = parts_.log.fullPath();
    facts.logError = parts_.log.lastError();
    facts.logCutError = parts_.log.cutError();
    facts.logging = parts_.log.isWriting();
    facts.logLines = parts_.log.linesWritten();
    facts.logLost = parts_.log.linesLost();
}

} // namespace drx9
