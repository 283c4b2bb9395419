// What the main window's panels show, pulled from the monitor.
#include "monitor/frmMain.h"

#include "monitor/Texts.h"
#include "util/Numbers.h"
#include "util/Text.h"

#include <QStackedLayout>

#include <algorithm>

namespace drx9 {

namespace {
MarkLabel::Tone toneOf(StatusText::Tone tone) {
    switch (tone) {
    case StatusText::Tone::Warn:
        return MarkLabel::Tone::Warn;
    case StatusText::Tone::Alarm:
        return MarkLabel::Tone::Alarm;
    default:
        return MarkLabel::Tone::Plain;
    }
}

StatusLine::Text shown(const StatusText& text) {
    return {QString::fromStdString(text.text), QString::fromStdString(text.brief), toneOf(text.tone)};
}
} // namespace

void frmMain::showTitle() {
    if (shownTitle_ != monitor_.shown().title) {
        shownTitle_ = monitor_.shown().title;
        setWindowTitle(QString::fromStdString(shownTitle_));
    }
}

MainMenus::Facts frmMain::menuFacts() const {
    return {.locked = monitor_.locked(),
            .graphItem = readouts_.checkedGraphItem(),
            .sensorItem = readouts_.checkedSensorItem()};
}

RunBar::Facts frmMain::barFacts() const {
    const Requests& requests = monitor_.requests().waiting();
    return {.started = monitor_.shown().started,
            .onLine = monitor_.shown().controlsVisible,
            .running = monitor_.RunMode() == RunState::Running,
            .filmsLocked = monitor_.locked(),
            .films = monitor_.films().names(),
            .filmIndex = monitor_.films().index(),
            .filmName = QString::fromStdString(monitor_.films().nameBesideList()),
            // A choice that waits cannot be confirmed yet: no mark.
            .filmMark = QString::fromStdString(
                requests.film && !monitor_.reconnecting() ? std::string() : monitor_.films().mark()),
            .held = parts_.timer.held(),
            .shutterCaption = monitor_.shutterCaption(),
            .zeroDown = requests.zero,
            .shutterDown = requests.shutter,
            .startStopDown = requests.startStop};
}

ReadoutPanel::Facts frmMain::readoutFacts() const {
    ReadoutPanel::Facts facts{.texts = readouts_.texts(), .labels = readouts_.labels()};
    facts.sensorCount = monitor_.sensorCount();
    for (int sensor = 1; sensor <= kMaxSensors; ++sensor) {
        if (readouts_.crystalMarked(sensor)) {
            facts.crystalMark[static_cast<std::size_t>(sensor - 1)] = crystalMark(sensor);
        }
    }
    facts.gaugeShare = gaugeShare();
    return facts;
}

QString frmMain::crystalMark(int sensor) const {
    const SystemParameters& system = parts_.system;
    const double frequency = monitor_.readings().frequency[static_cast<std::size_t>(sensor - 1)];
    const std::string text =
        filled(monitorText::kCrystalLimits,
               {plainNumber(frequency), plainNumber(system.FreqMin), plainNumber(system.FreqMax)});
    return QString::fromStdString(text);
}

double frmMain::gaugeShare() const {
    const FilmRecord* film = monitor_.films().current();
    if (film == nullptr || !monitor_.answers().hasReading()) {
        return 0;
    }
    const double final = film->EndThick;
    return final > 0 ? monitor_.readings().averageThickness / final : 0;
}

ReadoutPanel::Looks frmMain::readoutLooks(const StatusFacts& facts) const {
    return {.running = facts.runMode == RunState::Running,
            .stale = facts.hasReading && facts.stale,
            .failed = readouts_.failed(),
            .age = QString::fromStdString(readingAgeMark(facts)),
            .finalReached = readouts_.finalReached() && facts.controlsVisible};
}

StatusLine::Facts frmMain::statusLineFacts(const StatusFacts& facts) {
    StatusLine::Facts line;
    line[StatusLine::Link] = shown(staLink(facts));
    line[StatusLine::Reply] = shown(staReply(facts));
    line[StatusLine::Run] = shown(staRun(facts));
    line[StatusLine::Request] = shown(staRequest(facts));
    line[StatusLine::Shutter] = shown(staShutter(facts));
    line[StatusLine::Mode] = shown(staMode(facts));
    line[StatusLine::Log] = shown(staLog(facts));
    return line;
}

void frmMain::showCharts() {
    const int wanted = std::max<int>(1, readouts_.checkedGraphItem());
    if (charts_->currentIndex() != wanted - 1) {
        charts_->setCurrentIndex(wanted - 1);
    }
    const int sensors = monitor_.sensorCount();
    for (int number = 1; number <= 4; ++number) {
        parts_.charts.chart(number).setSensorCount(sensors);
    }
}

} // namespace drx9
