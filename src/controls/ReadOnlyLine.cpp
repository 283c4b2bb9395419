#include "controls/ReadOnlyLine.h"

#include "controls/AccessibleRoles.h"
#include "controls/PopUpMenu.h"

#include <QContextMenuEvent>

namespace drx9 {

ReadOnlyLine::ReadOnlyLine(QWidget* parent)
    : QLineEdit(parent) {
    setAccessibleReadOnly(*this); // first: a reader that runs already asks as soon as something changes
    setReadOnly(true);
    setDragEnabled(false);
    setAcceptDrops(false);
}

void ReadOnlyLine::contextMenuEvent(QContextMenuEvent* event) {
    popUpMenu(createStandardContextMenu(), event->globalPos());
    event->accept();
}

} // namespace drx9
