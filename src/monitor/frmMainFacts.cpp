// What the main window's panels show, pulled from the status board.
#include "monitor/frmMain.h"

#include <QStackedLayout>

#include <algorithm>

namespace drx9 {

namespace {
StatusLine::Text shown(const StatusText& text) {
    return {QString::fromStdString(text.text), QString::fromStdString(text.brief), text.tone};
}
} // namespace

void frmMain::showTitle(const std::string& title) {
    if (shownTitle_ != title) {
        shownTitle_ = title;
        setWindowTitle(QString::fromStdString(title));
    }
}

MainMenus::Facts frmMain::menuFacts(const PanelFacts& facts) const {
    return {.locked = facts.running,
            .graphItem = parts_.readouts.checkedGraphItem(),
            .sensorItem = parts_.readouts.checkedSensorItem()};
}

RunBar::Facts frmMain::barFacts(const PanelFacts& facts) {
    return {.started = facts.started,
            .onLine = facts.onLine,
            .running = facts.running,
            .films = facts.films,
            .filmIndex = facts.filmIndex,
            .filmName = QString::fromStdString(facts.filmName),
            .filmMark = QString::fromStdString(facts.filmMark),
            .held = facts.held,
            .shutterCaption = facts.shutterCaption,
            .zeroDown = facts.requests.zero,
            .shutterDown = facts.requests.shutter,
            .startStopDown = facts.requests.startStop};
}

ReadoutPanel::Facts frmMain::readoutFacts(const PanelFacts& facts) const {
    return {.texts = parts_.readouts.texts(),
            .labels = parts_.readouts.labels(),
            .sensorCount = facts.sensorCount,
            .crystalMarks = facts.crystalMarks,
            .gaugeShare = facts.gaugeShare};
}

ReadoutPanel::Looks frmMain::readoutLooks(const StatusFacts& facts) const {
    return {.running = facts.runMode == RunState::Running,
            .stale = facts.hasReading && facts.stale,
            .failed = parts_.readouts.failed(),
            .age = QString::fromStdString(readingAgeMark(facts)),
            .finalReached = parts_.readouts.finalReached() && facts.onLine};
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

void frmMain::showCharts(int sensors) {
    const int wanted = std::max<int>(1, parts_.readouts.checkedGraphItem());
    if (charts_->currentIndex() != wanted - 1) {
        charts_->setCurrentIndex(wanted - 1);
    }
    for (int number = 1; number <= 4; ++number) {
        parts_.charts.chart(number).setSensorCount(sensors);
    }
}

} // namespace drx9
