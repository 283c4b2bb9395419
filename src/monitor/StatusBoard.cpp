#include "monitor/StatusBoard.h"

#include "monitor/Texts.h"
#include "util/Numbers.h"
#include "util/Text.h"

namespace drx9 {

StatusFacts StatusBoard::facts() const {
    StatusFacts facts;
    facts.runMode = parts_.monitor.RunMode();
    facts.onLine = parts_.instrument.onLine();
    facts.started = parts_.instrument.started();
    facts.pauseReason = parts_.timer.holdReason();
    facts.link = facts.started ? parts_.discovery.tried() : parts_.settings.link;
    facts.linkOpen = parts_.link.isOpen() || facts.link.CommType != parts_.settings.link.CommType;
    facts.message = parts_.message.text();
    facts.messageBrief = parts_.message.brief();
    facts.runStart = parts_.run.startTime();
    facts.systemKnown = parts_.instrument.systemKnown();
    facts.simulate = parts_.settings.system.Simulate != 0;
    facts.etch = parts_.settings.system.EtchMode != 0;
    for (int sensor = 1; sensor <= kMaxSensors; ++sensor) {
        facts.crystals[static_cast<std::size_t>(sensor - 1)] = parts_.readouts.crystalMarked(sensor);
    }
    facts.elapsed = parts_.readings.elapsed;
    addAnswers(facts);
    addRequests(facts);
    addLog(facts);
    return facts;
}

void StatusBoard::addAnswers(StatusFacts& facts) const {
    const AnswerRecord& answers = parts_.answers;
    const double now = parts_.clock.monotonic();
    facts.hasReading = answers.hasReading();
    facts.stale = answers.stale(now) || parts_.keeper.lost();
    facts.readingAge = now - answers.lastGoodReading();
    facts.replyAge = now - parts_.link.lastReplyTime();
    facts.strays = answers.straysInARow();
    facts.lastReading = answers.lastGoodReadingTime();
    const bool known = facts.onLine || !parts_.discovery.failure().empty();
    const std::uint16_t status = parts_.link.CommStatus();
    // What a window that holds the polling sends comes to no reading.
    const bool others = parts_.timer.held() && answers.lastExchange() == monitorText::kOk &&
                        status != comm::kOk && status != comm::kBusy;
    facts.lastExchange = known && !others ? answers.lastExchange() : commStatusText(status);
}

void StatusBoard::addRequests(StatusFacts& facts) const {
    const RequestDesk& desk = parts_.desk;
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

PanelFacts StatusBoard::panels() const {
    PanelFacts facts;
    facts.title = parts_.instrument.title();
    facts.started = parts_.instrument.started();
    facts.onLine = parts_.instrument.onLine();
    facts.running = parts_.monitor.RunMode() == RunState::Running;
    facts.films = parts_.choice.names();
    facts.filmIndex = parts_.choice.index();
    facts.filmName = parts_.choice.nameBesideList();
    facts.requests = parts_.desk.waiting();
    // A choice that waits cannot be confirmed yet: no mark.
    if (!facts.requests.film || parts_.keeper.lost()) {
        facts.filmMark = parts_.choice.mark();
    }
    facts.held = parts_.timer.held();
    facts.shutterCaption = shutterCaption(parts_.desk.shutterState());
    facts.sensorCount = parts_.monitor.sensorCount();
    for (std::size_t sensor = 0; sensor < facts.crystalMarks.size(); ++sensor) {
        facts.crystalMarks[sensor] = crystalMark(sensor);
    }
    facts.gaugeShare = gaugeShare();
    return facts;
}

/// `sensor` from 0.
std::string StatusBoard::crystalMark(std::size_t sensor) const {
    if (!parts_.readouts.crystalMarked(static_cast<int>(sensor) + 1)) {
        return {};
    }
    const SystemParameters& system = parts_.settings.system;
    return filled(monitorText::kCrystalLimits, {plainNumber(parts_.readings.frequency[sensor]),
                                                plainNumber(system.FreqMin), plainNumber(system.FreqMax)});
}

double StatusBoard::gaugeShare() const {
    const FilmRecord* film = parts_.choice.current();
    if (film == nullptr || !parts_.answers.hasReading() || film->EndThick <= 0) {
        return 0;
    }
    return parts_.readings.averageThickness / film->EndThick;
}

} // namespace drx9
