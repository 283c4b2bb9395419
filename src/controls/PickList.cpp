#include "controls/PickList.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QKeyEvent>
#include <QWheelEvent>

namespace drx9 {

void PickList::keyPressEvent(QKeyEvent* event) {
    const Qt::KeyboardModifiers modifiers = event->modifiers();
    const bool alt = modifiers.testFlag(Qt::AltModifier);
    const bool opens = event->key() == Qt::Key_Space || event->key() == Qt::Key_F4 ||
                       (alt && (event->key() == Qt::Key_Down || event->key() == Qt::Key_Up));
    const bool command =
        alt || modifiers.testFlag(Qt::ControlModifier) || modifiers.testFlag(Qt::MetaModifier);
    const bool letter = !command && !event->text().isEmpty() && event->text().front().isPrint();
    if (opens) {
        showPopup();
    } else if (letter && count() > 0) {
        showPopup();
        QApplication::sendEvent(view(), event);
    } else {
        event->ignore();
    }
}

void PickList::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

} // namespace drx9
