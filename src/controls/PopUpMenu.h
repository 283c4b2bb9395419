#pragma once

#include <QMenu>

namespace drx9 {

/// Opens a menu and returns at once; the menu goes when it closes. A menu that is executed instead runs an
/// event loop of its own, and an exchange with the instrument that lies under it stands still until the
/// operator has chosen. All context menus of the program open through here.
inline void popUpMenu(QMenu* menu, const QPoint& globalPlace) {
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(globalPlace);
}

} // namespace drx9
