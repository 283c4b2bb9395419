#pragma once

#include "link/ActionQueue.h"
#include "monitor/controls/WindowEntry.h"

#include <QObject>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

class QAction;
class QMainWindow;
class QMenu;

namespace drx9 {

/// The main window's menus: captions, names, shortcuts, what is enabled and checked. What an item does is
/// handed in.
class MainMenus : public QObject {
    Q_OBJECT
public:
    struct Handlers {
        std::function<void()> exit;
        std::function<void(std::size_t)> open;     ///< the window of an entry, from 0
        std::function<void(std::int16_t)> graph;   ///< 1 to 4
        std::function<void(std::int16_t)> sensors; ///< 1 to 3
        std::function<void()> help;
    };
    struct Facts {
        bool locked = false; ///< setup is locked: a run
        int graphItem = 0;   ///< checked item from 1, 0 none
        int sensorItem = 0;
    };
    /// Runs an action once nothing of ours is on the stack. It is used for windows that hold the timer. Items
    /// that only touch windows act at once, also in mid-exchange; closing (exit) waits by itself.
    using Later = std::function<void(std::function<void()>, ActionQueue::For)>;

    MainMenus(QMainWindow& window, const WindowEntries& entries, Handlers handlers, Later later);

    void showFacts(const Facts& facts);

private:
    using Action = std::function<void(const QAction& item)>;

    QAction* addItem(QMenu* menu, const char* name, const char* caption, const QKeySequence& shortcut,
                     Action action);
    void addWindows(QMenu* menu, WindowEntry::Menu which, const WindowEntries& entries);
    void addWindow(QMenu* menu, const WindowEntry& entry, std::size_t index);
    void openInTurn(const QAction& item, std::size_t index, ActionQueue::For purpose);
    void buildView(QMainWindow& window);

    Handlers handlers_;
    Later later_;
    Facts shown_;
    std::vector<QAction*> lockedItems_; ///< in a run
    std::array<QAction*, 4> graphItems_{};
    std::array<QAction*, 3> sensorItems_{};
};

} // namespace drx9
