// The main window's menus and keys, and the windows that they open.
#include "monitor/frmMain.h"

#include "monitor/frmDataLog.h"
#include "util/ProgramName.h"
#include "controls/Readout.h"
#include "controls/StartStopButton.h"
#include "controls/WindowPlaces.h"
#include "util/frmAbout.h"

#include <QActionGroup>
#include <QApplication>
#include <QComboBox>
#include <QMenuBar>
#include <QPushButton>
#include <QShortcut>
#include <QStackedLayout>

namespace drx9 {

namespace {
QKeySequence viewKey(int number) {
    return {Qt::CTRL | static_cast<Qt::Key>(Qt::Key_0 + number)};
}

QMenu* namedMenu(QMenuBar* bar, const char* name, const char* caption) {
    QMenu* menu = bar->addMenu(QString::fromLatin1(caption));
    menu->setObjectName(QString::fromLatin1(name));
    menu->menuAction()->setObjectName(QString::fromLatin1(name));
    return menu;
}

void addSeparator(QMenu* menu, const char* name) {
    menu->addSeparator()->setObjectName(QString::fromLatin1(name));
}
} // namespace

QAction* frmMain::addItem(QMenu* menu, const char* name, const char* caption, const QKeySequence& shortcut,
                          std::function<void()> action) {
    auto* item = new QAction(QString::fromLatin1(caption), this);
    item->setObjectName(QString::fromLatin1(name));
    item->setShortcut(shortcut);
    item->setAutoRepeat(false);
    item->setMenuRole(QAction::NoRole);
    menu->addAction(item);
    connect(item, &QAction::triggered, this, [this, action = std::move(action)] {
        showMenus(); // a check mark follows what is so, not the click
        monitor_.parts().actions.runWhenIdle(action);
    });
    return item;
}

void frmMain::buildMenus() {
    buildFileAndEditMenus();
    buildViewMenu();
    buildHelpMenu();
}

void frmMain::buildFileAndEditMenus() {
    const auto later = [this] { notInThisBuild(); };
    QMenu* file = namedMenu(menuBar(), "mnuFile", "&File");
    mnuFileLog_ = addItem(file, "mnuFileLog", "&Data Log", {Qt::CTRL | Qt::Key_L}, [this] { showDataLog(); });
    addSeparator(file, "mnuFileSep1");
    addItem(file, "mnuFileExit", "E&xit", {Qt::CTRL | Qt::Key_Q}, [this] { close(); });

    QMenu* setup = namedMenu(menuBar(), "mnuSetup", "&Edit");
    mnuSetupFilms_ = addItem(setup, "mnuSetupFilms", "&Films", {}, later);
    mnuSetupSystem_ = addItem(setup, "mnuSetupSystem", "&System", {}, later);
    mnuSetupComm_ = addItem(setup, "mnuSetupComm", "&Communcations", {}, later);
    addSeparator(setup, "mnuSetupSep2");
    addItem(setup, "mnuSetupGraphs", "&Graph", {}, later);
}

void frmMain::buildViewMenu() {
    struct Item {
        const char* name;
        const char* caption;
    };
    const std::array<Item, 4> graphs{{{"mnuGraphAvgRate", "&Average Rate Graph"},
                                      {"mnuGraphChanRate", "&Sensor Rates Graph"},
                                      {"mnuGraphAvgThk", "A&verage Thickness Graph"},
                                      {"mnuGraphChanThk", "Se&nsor Thickness Graph"}}};
    const std::array<Item, 3> sensors{{{"mnuSensorRate", "Sensor &Rates Display"},
                                       {"mnuSensorThick", "Sensor &Thickness Display"},
                                       {"mnuSensorFreq", "Sensor &Frequency Display"}}};
    QMenu* view = namedMenu(menuBar(), "mnuView", "&View");
    for (std::size_t i = 0; i < graphs.size(); ++i) {
        const auto item = static_cast<std::int16_t>(i + 1);
        graphItems_[i] = addItem(view, graphs[i].name, graphs[i].caption, viewKey(item), [this, item] {
            readouts_.graphItemClicked(item);
            changed();
        });
        graphItems_[i]->setCheckable(true);
    }
    addSeparator(view, "mnuGraphSep1");
    for (std::size_t i = 0; i < sensors.size(); ++i) {
        const auto item = static_cast<std::int16_t>(i + 1);
        sensorItems_[i] = addItem(view, sensors[i].name, sensors[i].caption, viewKey(item + 4),
                                  [this, item] { monitor_.sensorItemClicked(item); });
        sensorItems_[i]->setCheckable(true);
    }
}

void frmMain::buildHelpMenu() {
    QMenu* help = namedMenu(menuBar(), "mnuHelp", "&Help");
    QAction* index = addItem(help, "mnuHelpHelp", "&Help", {Qt::Key_F1}, [this] { showHelp(); });
    index->setShortcutContext(Qt::ApplicationShortcut); // in every window
    addSeparator(help, "mnuHelpSep1");
    mnuHelpAbout_ = addItem(help, "mnuHelpAbout", "&About", {}, [this] { showAbout(); });
}

void frmMain::notInThisBuild() {
    parts_.boxes.show("Not in this build.", kProgramName, MessageIcon::Information);
}

void frmMain::showDataLog() {
    if (dataLog_ == nullptr) {
        const MonitorParts& parts = monitor_.parts();
        dataLog_ = new frmDataLog({parts.settings.log, parts.log, parts_.files, parts_.dialogs, parts_.shell,
                                   parts_.boxes, parts.actions},
                                  this);
        dataLog_->setAttribute(Qt::WA_DeleteOnClose);
        connect(dataLog_, &frmDataLog::settingsChanged, this, &frmMain::beat);
        if (parts_.places != nullptr) {
            parts_.places->follow(*dataLog_);
        }
    }
    dataLog_->show();
    dataLog_->raise();
    dataLog_->activateWindow();
}

void frmMain::showHelp() {
    if (parts_.help == nullptr) {
        notInThisBuild();
        return;
    }
    setHourglass(true);
    parts_.help->showIndex();
    setHourglass(false);
}

void frmMain::showAbout() {
    auto* about = new frmAbout(this);
    about->setAttribute(Qt::WA_DeleteOnClose);
    about->show();
}

void frmMain::addKey(const QKeySequence& key, std::function<void()> action) {
    auto* shortcut = new QShortcut(key, this);
    shortcut->setAutoRepeat(false);
    connect(shortcut, &QShortcut::activated, this, std::move(action));
}

void frmMain::press(QPushButton* button) {
    if (button->isVisible() && button->isEnabled()) {
        button->click();
    }
}

void frmMain::buildKeys() {
    addKey(Qt::Key_F4, [this] {
        if (cboFilms_->isVisible() && cboFilms_->isEnabled()) {
            cboFilms_->setFocus(Qt::ShortcutFocusReason);
            cboFilms_->showPopup();
        }
    });
    addKey(Qt::Key_F6, [this] { nextRegion(1); });
    addKey(Qt::SHIFT | Qt::Key_F6, [this] { nextRegion(-1); });
    addKey(Qt::SHIFT | Qt::Key_F7, [this] { press(cmdZero_); });
    addKey(Qt::SHIFT | Qt::Key_F8, [this] { press(cmdShutter_); });
    addKey(Qt::SHIFT | Qt::Key_F9, [this] { press(cmdStartStop_); });
}

/// Regions in their order: bar, readouts, chart.
void frmMain::nextRegion(int direction) {
    QWidget* focus = QApplication::focusWidget();
    int region = 0;
    if (qobject_cast<Readout*>(focus) != nullptr) {
        region = 1;
    } else if (focus != nullptr && focus == charts_->currentWidget()) {
        region = 2;
    }
    QWidget* bar = cmdStartStop_;
    if (cboFilms_->isEnabled()) {
        bar = cboFilms_;
    }
    const std::array<QWidget*, 3> entries{bar, TxtData_[Readouts::AverageRate], charts_->currentWidget()};
    for (int step = 1; step <= 3; ++step) {
        QWidget* next = entries[static_cast<std::size_t>((region + direction * step + 6) % 3)];
        if (next->isVisible()) {
            next->setFocus(Qt::TabFocusReason);
            return;
        }
    }
}

void frmMain::walkReadouts(std::size_t from, int direction) {
    // In the order in which the eye meets them: the band from left to right, then the sensors.
    static constexpr std::array<std::size_t, 11> kOrder{1, 2, 9, 10, 11, 3, 4, 5, 6, 7, 8};
    const auto* at = std::find(kOrder.begin(), kOrder.end(), from);
    const auto index = static_cast<int>(at - kOrder.begin()) + direction;
    const int count = static_cast<int>(kOrder.size());
    TxtData_[kOrder[static_cast<std::size_t>((index + count) % count)]]->setFocus(Qt::TabFocusReason);
}

} // namespace drx9
