#include "monitor/controls/MainMenus.h"

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

MainMenus::MainMenus(QMainWindow& window, const WindowEntries& entries, Handlers handlers, Later later)
    : handlers_(std::move(handlers))
    , later_(std::move(later)) {
    QMenu* file = namedMenu(window, "mnuFile", "&File");
    addWindows(file, WindowEntry::Menu::File, entries);
    addSeparator(file, "mnuFileSep1");
    addItem(file, "mnuFileExit", "E&xit", {Qt::CTRL | Qt::Key_Q},
            [this](const QAction&) { handlers_.exit(); });
    addWindows(namedMenu(window, "mnuSetup", "&Edit"), WindowEntry::Menu::Edit, entries);
    buildView(window);
    QMenu* help = namedMenu(window, "mnuHelp", "&Help");
    QAction* index =
        addItem(help, "mnuHelpHelp", "&Help", {Qt::Key_F1}, [this](const QAction&) { handlers_.help(); });
    index->setShortcutContext(Qt::ApplicationShortcut); // in every window
    addWindows(help, WindowEntry::Menu::Help, entries);
}

QAction* MainMenus::addItem(QMenu* menu, const char* name, const char* caption, const QKeySequence& shortcut,
                            Action action) {
    auto* item = new QAction(QString::fromLatin1(caption), menu);
    item->setObjectName(QString::fromLatin1(name));
    item->setShortcut(shortcut);
    item->setAutoRepeat(false);
    item->setMenuRole(QAction::NoRole);
    menu->addAction(item);
    connect(item, &QAction::triggered, this, [this, item, action = std::move(action)] {
        showFacts(shown_); // a check mark follows what is so, not the click
        action(*item);
    });
    return item;
}

void MainMenus::addWindows(QMenu* menu, WindowEntry::Menu which, const WindowEntries& entries) {
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (entries[i].menu == which) {
            addWindow(menu, entries[i], i);
        }
    }
}

void MainMenus::addWindow(QMenu* menu, const WindowEntry& entry, std::size_t index) {
    if (entry.separator != nullptr) {
        addSeparator(menu, entry.separator);
    }
    Action open = [this, index](const QAction&) { handlers_.open(index); };
    if (entry.holdsTimer) {
        open = [this, index, purpose = entry.purpose](const QAction& item) {
            openInTurn(item, index, purpose);
        };
    }
    QAction* item = addItem(menu, entry.item, entry.caption, entry.key, std::move(open));
    if (entry.lockedInRun) {
        lockedItems_.push_back(item);
    }
}

/// At its turn the item may be locked, or a window may be in the way: then it is dropped.
void MainMenus::openInTurn(const QAction& item, std::size_t index, ActionQueue::For purpose) {
    const auto turn = [this, item = QPointer<const QAction>(&item), index] {
        if (item != nullptr && item->isEnabled() && QApplication::activeModalWidget() == nullptr) {
            handlers_.open(index);
        }
    };
    later_(turn, purpose);
}

void MainMenus::buildView(QMainWindow& window) {
    QMenu* view = namedMenu(window, "mnuView", "&View");
    for (std::size_t i = 0; i < kGraphs.size(); ++i) {
        const auto item = static_cast<std::int16_t>(i + 1);
        graphItems_[i] = addItem(view, kGraphs[i].name, kGraphs[i].caption, viewKey(item),
                                 [this, item](const QAction&) { handlers_.graph(item); });
        graphItems_[i]->setCheckable(true);
    }
    addSeparator(view, "mnuGraphSep1");
    for (std::size_t i = 0; i < kSensors.size(); ++i) {
        const auto item = static_cast<std::int16_t>(i + 1);
        sensorItems_[i] = addItem(view, kSensors[i].name, kSensors[i].caption, viewKey(item + 4),
                                  [this, item](const QAction&) { handlers_.sensors(item); });
        sensorItems_[i]->setCheckable(true);
    }
}

void MainMenus::showFacts(const Facts& facts) {
    shown_ = facts;
    for (QAction* item : lockedItems_) {
        item->setEnabled(!facts.locked);
    }
    check(graphItems_, facts.graphItem);
    check(sensorItems_, facts.sensorItem);
}

} // namespace drx9
