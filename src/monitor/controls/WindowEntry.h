#pragma once

#include "link/ActionQueue.h"

#include <QKeySequence>

#include <functional>
#include <vector>

class QWidget;

namespace drx9 {

/// Makes a window that opens from the main one, owned by `owner`.
using WindowMaker = std::function<QWidget*(QWidget* owner)>;

/// A window that opens from the main one, and its menu item.
struct WindowEntry {
    enum class Menu { File, Edit, Help };

    Menu menu = Menu::Edit;
    const char* item = "";           ///< object name of the menu item
    const char* caption = "";        ///< of the menu item
    const char* separator = nullptr; ///< object name of a line above the item; null: none
    WindowMaker make = {};
    QKeySequence key = {};
    /// A run locks the item.
    bool lockedInRun = true;
    /// The window keeps the polling paused, by a hold of its own (PollingAccess): it opens once nothing of
    /// ours is on the stack, and what was requested before is carried out first.
    bool holdsTimer = false;
    bool modal = false;
    /// What a refresh that it cuts short still has to read.
    ActionQueue::For purpose = ActionQueue::For::Other;
};

/// In the order of the menus.
using WindowEntries = std::vector<WindowEntry>;

} // namespace drx9
