#pragma once

#include "link/ActionQueue.h"

#include <QObject>

#include <array>
#include <cstdint>
#include <functional>
#include <vector>

class QAction;
class QKeySequence;
class QMainWindow;
class QMenu;

namespace drx9 {

/// The main window's menus: captions, names, shortcuts, what is enabled and checked. What an item does is
/// handed in.
class MainMenus : public QObject {
    Q_OBJECT
public:
    struct Handlers {
        std::function<void()> dataLog;
        std::function<void()> exit;
        std::function<void()> films;
        std::function<void()> system;
        std::function<void()> comm;
        std::function<void()> graphSet;
        std::function<void(std::int16_t)> graph;   ///< 1 to 4
        std::function<void(std::int16_t)> sensors; ///< 1 to 3
        std::function<void()> help;
        std::function<void()> about;
    };
    struct Facts {
        bool locked = false; ///< setup is locked: a run
        int graphItem = 0;   ///< checked item from 1, 0 none
        int sensorItem = 0;
    };
    /// Runs an action once nothing of ours is on the stack. It is used for the items that talk to the
    /// instrument. Items that only touch windows act at once, also in mid-exchange; closing (exit) waits by
    /// itself.
    using Later = std::function<void(std::function<void()>, ActionQueue::For)>;

    MainMenus(QMainWindow& window, Handlers handlers, Later later);

    void showFacts(const Facts& facts);

private:
    enum class When { AtOnce, Idle, IdleForSystem };

    QAction* addItem(QMenu* menu, const char* name, const char* caption, const QKeySequence& shortcut,
                     When when, std::function<void()> action);
    void buildFileAndEdit(QMainWindow& window);
    void buildView(QMainWindow& window);
    void buildHelp(QMainWindow& window);

    Handlers handlers_;
    Later later_;
    Facts shown_;
    std::vector<QAction*> setupItems_; ///< locked in a run
    std::array<QAction*, 4> graphItems_{};
    std::array<QAction*, 3> sensorItems_{};
};

} // namespace drx9
