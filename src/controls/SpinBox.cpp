#include "controls/SpinBox.h"

#include "controls/PopUpMenu.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QWheelEvent>

namespace drx9 {

SpinBox::SpinBox(QWidget* parent)
    : QSpinBox(parent) {
    setKeyboardTracking(false);
    setWrapping(false);
    setFocusPolicy(Qt::StrongFocus);
    lineEdit()->setDragEnabled(false);
    lineEdit()->setAcceptDrops(false);
}

void SpinBox::setNames(const QString& spinner, const QString& text, const QString& accessible) {
    setObjectName(spinner);
    setAccessibleName(accessible);
    lineEdit()->setObjectName(text);
    lineEdit()->setAccessibleName(accessible);
}

void SpinBox::setLeastDigits(int digits) {
    leastDigits_ = digits;
    lineEdit()->setText(textFromValue(value()));
}

bool SpinBox::isTyping() const {
    return text() != prefix() + textFromValue(value()) + suffix();
}

void SpinBox::finishTyping(const QWidget& window) {
    if (auto* box = qobject_cast<SpinBox*>(window.focusWidget())) {
        box->interpretText();
    }
}

QString SpinBox::textFromValue(int value) const {
    return QStringLiteral("%1").arg(value, leastDigits_, 10, QLatin1Char('0'));
}

void SpinBox::contextMenuEvent(QContextMenuEvent* event) {
    stopSpinning();
    QMenu* menu = lineEdit()->createStandardContextMenu();
    menu->addSeparator();
    QAction* up = menu->addAction(QStringLiteral("Step &Up"), this, &QSpinBox::stepUp);
    QAction* down = menu->addAction(QStringLiteral("Step &Down"), this, &QSpinBox::stepDown);
    up->setEnabled(stepEnabled().testFlag(StepUpEnabled));
    down->setEnabled(stepEnabled().testFlag(StepDownEnabled));
    const bool byMouse = event->reason() == QContextMenuEvent::Mouse;
    popUpMenu(menu, byMouse ? event->globalPos() : mapToGlobal(rect().center()));
    event->accept();
}

/// As if the pressed arrow or key had been let go: its release goes to what comes in front.
void SpinBox::stopSpinning() {
    QMouseEvent button(QEvent::MouseButtonRelease, QPointF(), mapToGlobal(QPointF()), Qt::LeftButton,
                       Qt::NoButton, Qt::NoModifier);
    QSpinBox::mouseReleaseEvent(&button);
    QKeyEvent key(QEvent::KeyRelease, Qt::Key_Up, Qt::NoModifier);
    QSpinBox::keyReleaseEvent(&key);
}

void SpinBox::wheelEvent(QWheelEvent* event) {
    if (hasFocus()) {
        QSpinBox::wheelEvent(event);
    } else {
        event->ignore();
    }
}

void SpinBox::focusOutEvent(QFocusEvent* event) {
    const bool another =
        event->reason() != Qt::ActiveWindowFocusReason && event->reason() != Qt::PopupFocusReason;
    if (another || !isTyping()) {
        QSpinBox::focusOutEvent(event);
        return;
    }
    stopSpinning();
    lineEdit()->event(event);
    QWidget::focusOutEvent(event);
}

void SpinBox::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ActivationChange && isTyping()) {
        stopSpinning();
        QWidget::changeEvent(event);
    } else {
        QSpinBox::changeEvent(event);
    }
}

} // namespace drx9
