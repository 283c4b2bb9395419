// What the main window pulls from the monitor. Each value is compared before it is set: this runs many times
// a second.
#include "monitor/frmMain.h"

#include "util/DisplayFormats.h"
#include "util/Numbers.h"
#include "controls/Gauge.h"
#include "controls/MarkLabel.h"
#include "controls/NoticePlate.h"
#include "controls/Readout.h"
#include "controls/SensorLabel.h"
#include "controls/StartStopButton.h"
#include "controls/Theme.h"

#include <QAction>
#include <QComboBox>
#include <QPushButton>
#include <QStackedLayout>

namespace drx9 {

namespace {
void setVisibleIfDiffers(QWidget* widget, bool visible) {
    if (widget->isHidden() == visible) {
        widget->setVisible(visible);
    }
}

void setChecked(QAction* item, bool checked) {
    if (item->isChecked() != checked) {
        item->setChecked(checked);
    }
}

void setTextIfDiffers(QPushButton* button, const std::string& text) {
    const QString shown = QString::fromStdString(text);
    if (button->text() != shown) {
        button->setText(shown);
    }
}

/// There is no such sensor: nothing that could grow old.
bool isOff(const std::string& text) {
    return text == "OFF";
}

void setDownIfDiffers(QPushButton* button, bool waiting, bool& wasWaiting) {
    if (waiting != wasWaiting) { // between the two the mouse alone rules
        button->setDown(waiting);
        wasWaiting = waiting;
    }
}
} // namespace

void frmMain::showTitleAndFilms() {
    if (shownTitle_ != monitor_.title()) {
        shownTitle_ = monitor_.title();
        setWindowTitle(QString::fromStdString(shownTitle_));
    }
    if (shownFilms_ != monitor_.filmNames()) {
        shownFilms_ = monitor_.filmNames();
        cboFilms_->clear();
        for (const std::string& name : shownFilms_) {
            cboFilms_->addItem(QString::fromStdString(name));
        }
    }
    if (cboFilms_->currentIndex() != monitor_.filmIndex()) {
        cboFilms_->setCurrentIndex(monitor_.filmIndex());
    }
}

void frmMain::showRunControls() {
    const bool onLine = monitor_.controlsVisible();
    const bool comesOnLine = onLine && cboFilms_->isHidden();
    for (QWidget* control :
         {static_cast<QWidget*>(lblFilm_), static_cast<QWidget*>(cboFilms_), static_cast<QWidget*>(cmdZero_),
          static_cast<QWidget*>(cmdShutter_), static_cast<QWidget*>(cmdStartStop_)}) {
        setVisibleIfDiffers(control, onLine);
    }
    setVisibleIfDiffers(offLineRow_, monitor_.started() && !onLine);
    const bool running = monitor_.RunMode() == kRunning;
    cmdStartStop_->setRunning(running);
    setTextIfDiffers(cmdShutter_, monitor_.shutterCaption());
    const Monitor::Requests& requests = monitor_.requests();
    setDownIfDiffers(cmdZero_, requests.zero, shownRequests_.zero);
    setDownIfDiffers(cmdShutter_, requests.shutter, shownRequests_.shutter);
    setDownIfDiffers(cmdStartStop_, requests.startStop, shownRequests_.startStop);
    if (comesOnLine && hasSpareFocus()) {
        cboFilms_->setFocus();
    }
    if (shownMode_ != monitor_.RunMode()) {
        shownMode_ = monitor_.RunMode();
        if (running && (hasSpareFocus() || focusWidget() == cboFilms_)) { // the film list is locked now
            cmdStartStop_->setFocus();
        }
    }
}

/// Not hasFocus(), which is false while another window is active. A film list that is locked or hidden hands
/// the focus to the first readout.
bool frmMain::hasSpareFocus() const {
    return focusWidget() == nullptr || focusWidget() == TxtData_[Readouts::AverageRate];
}

void frmMain::showMenus() {
    const bool unlocked = !monitor_.locked();
    for (QAction* item : {mnuFileLog_, mnuSetupFilms_, mnuSetupSystem_, mnuHelpAbout_}) {
        item->setEnabled(unlocked);
    }
    mnuSetupComm_->setEnabled(monitor_.commMenuEnabled());
    if (cboFilms_->isEnabled() != unlocked) {
        cboFilms_->setEnabled(unlocked);
    }
    for (std::size_t i = 0; i < graphItems_.size(); ++i) {
        setChecked(graphItems_[i], readouts_.checkedGraphItem() == static_cast<int>(i) + 1);
    }
    for (std::size_t i = 0; i < sensorItems_.size(); ++i) {
        setChecked(sensorItems_[i], readouts_.checkedSensorItem() == static_cast<int>(i) + 1);
    }
}

void frmMain::showReadouts() {
    const int sensors = monitor_.parts().link.sensorCount();
    for (std::size_t field = 1; field < Readouts::kFields; ++field) {
        if (shownTexts_[field] != readouts_.texts()[field]) {
            shownTexts_[field] = readouts_.texts()[field];
            TxtData_[field]->showText(QString::fromStdString(shownTexts_[field]));
        }
        if (shownLabels_[field] != readouts_.labels()[field]) {
            shownLabels_[field] = readouts_.labels()[field];
            const QString label = QString::fromStdString(shownLabels_[field]);
            LblData_[field]->setText(label);
            TxtData_[field]->setAccessibleName(label);
        }
    }
    for (int sensor = 1; sensor <= kMaxSensors; ++sensor) {
        SensorLabel* label = sensorLabels_[static_cast<std::size_t>(sensor - 1)];
        label->setOff(sensor > sensors);
        label->setMark(readouts_.crystalMarked(sensor) ? crystalExplanation(sensor) : QString());
    }
    gauge_->setShare(gaugeShare());
}

QString frmMain::crystalExplanation(int sensor) const {
    const MonitorParts& parts = monitor_.parts();
    const double frequency = monitor_.readings().frequency[static_cast<std::size_t>(sensor - 1)];
    const SystemParameters& system = parts.settings.system;
    const std::string text = "Frequency " + plainNumber(frequency) + " Hz, limits " +
                             plainNumber(system.FreqMin) + " to " + plainNumber(system.FreqMax) + " MHz";
    return QString::fromStdString(text);
}

double frmMain::gaugeShare() const {
    const FilmRecord* film = monitor_.currentFilm();
    if (film == nullptr || !monitor_.answers().hasReading()) {
        return 0;
    }
    const double final = film->EndThick;
    return final > 0 ? monitor_.readings().averageThickness / final : 0;
}

void frmMain::showLooks(const StatusFacts& facts) {
    const bool running = facts.runMode == kRunning;
    const auto stale = facts.hasReading && facts.stale;
    for (std::size_t field = 1; field < Readouts::kFields; ++field) {
        Readout::Look look = Readout::Look::Live;
        const bool ofTheRun = field == Readouts::ElapsedTime || field == Readouts::TimeRemaining;
        if (ofTheRun && !running) {
            look = Readout::Look::Kept;
        } else if (field != Readouts::FinalThickness && !isOff(shownTexts_[field]) &&
                   (stale || readouts_.failed()[field])) {
            look = Readout::Look::Stale;
        }
        TxtData_[field]->setLook(look);
    }
    gauge_->setStale(stale);
    const QString age = QString::fromStdString(readingAgeMark(facts));
    const bool reached = age.isEmpty() && readouts_.finalReached() && facts.controlsVisible;
    ages_[0]->say(age, MarkLabel::Tone::Warn);
    ages_[1]->say(reached ? QStringLiteral("final") : age, MarkLabel::Tone::Warn);
}

void frmMain::showCharts() {
    const int wanted = std::max<int>(1, readouts_.checkedGraphItem());
    if (charts_->currentIndex() != wanted - 1) {
        charts_->setCurrentIndex(wanted - 1);
    }
    const int sensors = monitor_.parts().link.sensorCount();
    for (int number = 1; number <= 4; ++number) {
        parts_.charts.chart(number).setSensorCount(sensors);
    }
}

} // namespace drx9
