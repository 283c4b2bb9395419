#include "controls/TypedField.h"

#include <QFocusEvent>

namespace drx9 {

void TypedField::focusOutEvent(QFocusEvent* event) {
    const bool stays =
        event->reason() == Qt::ActiveWindowFocusReason || event->reason() == Qt::PopupFocusReason;
    const bool blocked = blockSignals(stays || signalsBlocked());
    QLineEdit::focusOutEvent(event);
    blockSignals(blocked);
    // Qt tells of one and the same text only once, also where that was not heard.
    if (!stays && isModified()) {
        emit editingFinished();
    }
}

} // namespace drx9
