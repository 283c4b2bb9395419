#include "controls/Window.h"

#include <QPointer>

#include <utility>

namespace drx9 {

Window::Window(QWidget* owner, Qt::WindowFlags more)
    : QDialog(owner, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint | more) {
    setAttribute(Qt::WA_DeleteOnClose);
}

Window::~Window() {
    const QList<QWidget*> controls = findChildren<QWidget*>();
    for (QWidget* control : controls) {
        control->disconnect(this);
    }
}

std::function<void()> Window::ifAlive(std::function<void()> action) {
    return [self = QPointer<Window>(this), action = std::move(action)] {
        if (self != nullptr) {
            action();
        }
    };
}

} // namespace drx9
