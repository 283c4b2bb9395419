#include "controls/TextView.h"

#include <QMouseEvent>
#include <QTextCursor>

namespace drx9 {

void TextView::mousePressEvent(QMouseEvent* event) {
    QTextCursor cursor = textCursor();
    if (event->button() == Qt::LeftButton && cursor.hasSelection() &&
        !event->modifiers().testFlag(Qt::ShiftModifier)) {
        cursor.clearSelection();
        setTextCursor(cursor);
    }
    QTextBrowser::mousePressEvent(event);
}

} // namespace drx9
