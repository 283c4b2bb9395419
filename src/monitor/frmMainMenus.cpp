#include "monitor/frmMainMenus.h"

#include <QAction>
#include <QApplication>
#include <QMainWindow>
#include <QMenuBar>
#include <QPointer>

#include <utility>

namespace drx9 {

namespace {
struct Item {
    const char* name;
    const char* caption;
};
constexpr std::array<Item, 4> kGraphs{{{"mnuGraphAvgRate", "&Average Rate Graph"},
                                       {"mnuGraphChanRate", "&Sensor Rates Graph"},
                                       {"mnuGraphAvgThk", "A&verage Thickness Graph"},
                                       {"mnuGraphChanThk", "Se&nsor Thickness Graph"}}};
constexpr std::array<Item, 3> kSensors{{{"mnuSensorRate", "Sensor &Rates Display"},
                                        {"mnuSensorThick", "Sensor &Thickness Display"},
                                        {"mnuSensorFreq", "Sensor &Frequency Display"}}};

QKeySequence viewKey(int number) {
    return {Qt::CTRL | static_cast<Qt::Key>(Qt::Key_0 + number)};
}

QMenu* namedMenu(QMainWindow& window, const char* name, const char* caption) {
    QMenu* menu = window.menuBar()->addMenu(QString::fromLatin1(caption));
    menu->setObjectName(QString::fromLatin1(name));
    menu->menuAction()->setObjectName(QString::fromLatin1(name));
    return menu;
}

void addSeparator(QMenu* menu, const char* name) {
    menu->addSeparator()->setObjectName(QString::fromLatin1(name));
}

template<std::size_t N>
void check(const std::array<QAction*, N>& items, int item) {
    for (std::size_t i = 0; i < N; ++i) {
        items[i]->setChecked(item == static_cast<int>(i) + 1);
    }
}
} // namespace

MainMenus::MainMenus(QMainWindow& window, Handlers handlers, Later later)
    : handlers_(std::move(handlers))
    , later_(std::move(later)) {
    buildFileAndEdit(window);
    buildView(window);
    buildHelp(window);
}

QAction* MainMenus::addItem(QMenu* menu, const char* name, const char* caption, const QKeySequence& shortcut,
                            When when, std::function<void()> action) {
    auto* item = new QAction(QString::fromLatin1(caption), menu);
    item->setObjectName(QString::fromLatin1(name));
    item->setShortcut(shortcut);
    item->setAutoRepeat(false);
    item->setMenuRole(QAction::NoRole);
    menu->addAction(item);
    connect(item, &QAction::triggered, this, [this, item, when, action = std::move(action)] {
        showFacts(shown_); // a check mark follows what is so, not the click
        if (when == When::AtOnce) {
            action();
            return;
        }
        // At its turn the item may be locked, or a window may be in the way: then it is dropped.
        const auto turn = [item = QPointer<QAction>(item), action] {
            if (item != nullptr && item->isEnabled() && QApplication::activeModalWidget() == nullptr) {
                action();
            }
        };
        later_(turn, when == When::IdleForSystem ? ActionQueue::For::System : ActionQueue::For::Other);
    });
    return item;
}

void MainMenus::buildFileAndEdit(QMainWindow& window) {
    QMenu* file = namedMenu(window, "mnuFile", "&File");
    setupItems_.push_back(
        addItem(file, "mnuFileLog", "&Data Log", {Qt::CTRL | Qt::Key_L}, When::AtOnce, handlers_.dataLog));
    addSeparator(file, "mnuFileSep1");
    addItem(file, "mnuFileExit", "E&xit", {Qt::CTRL | Qt::Key_Q}, When::AtOnce, handlers_.exit);

    QMenu* setup = namedMenu(window, "mnuSetup", "&Edit");
    setupItems_.push_back(addItem(setup, "mnuSetupFilms", "&Films", {}, When::Idle, handlers_.films));
    setupItems_.push_back(
        addItem(setup, "mnuSetupSystem", "&System", {}, When::IdleForSystem, handlers_.system));
    setupItems_.push_back(addItem(setup, "mnuSetupComm", "&Communcations", {}, When::Idle, handlers_.comm));
    addSeparator(setup, "mnuSetupSep2");
    addItem(setup, "mnuSetupGraphs", "&Graph", {}, When::AtOnce, handlers_.graphSet);
}

void MainMenus::buildView(QMainWindow& window) {
    QMenu* view = namedMenu(window, "mnuView", "&View");
    for (std::size_t i = 0; i < kGraphs.size(); ++i) {
        const auto item = static_cast<std::int16_t>(i + 1);
        graphItems_[i] = addItem(view, kGraphs[i].name, kGraphs[i].caption, viewKey(item), When::AtOnce,
                                 [this, item] { handlers_.graph(item); });
        graphItems_[i]->setCheckable(true);
    }
    addSeparator(view, "mnuGraphSep1");
    for (std::size_t i = 0; i < kSensors.size(); ++i) {
        const auto item = static_cast<std::int16_t>(i + 1);
        sensorItems_[i] = addItem(view, kSensors[i].name, kSensors[i].caption, viewKey(item + 4),
                                  When::AtOnce, [this, item] { handlers_.sensors(item); });
        sensorItems_[i]->setCheckable(true);
    }
}

void MainMenus::buildHelp(QMainWindow& window) {
    QMenu* help = namedMenu(window, "mnuHelp", "&Help");
    QAction* index = addItem(help, "mnuHelpHelp", "&Help", {Qt::Key_F1}, When::AtOnce, handlers_.help);
    index->setShortcutContext(Qt::ApplicationShortcut); // in every window
    addSeparator(help, "mnuHelpSep1");
    setupItems_.push_back(addItem(help, "mnuHelpAbout", "&About", {}, When::AtOnce, handlers_.about));
}

void MainMenus::showFacts(const Facts& facts) {
    shown_ = facts;
    for (QAction* item : setupItems_) {
        item->setEnabled(!facts.locked);
    }
    check(graphItems_, facts.graphItem);
    check(sensorItems_, facts.sensorItem);
}

} // namespace drx9
