#pragma once

#include <QDialog>

#include <functional>

namespace drx9 {

/// A window beside the main one. It deletes itself when it is closed.
class Window : public QDialog {
    Q_OBJECT
public:
    /// With a title, a close box and what `more` adds.
    explicit Window(QWidget* owner, Qt::WindowFlags more = {});
    /// From here on nothing that its controls still say reaches it: hidden by QDialog's destructor, a field
    /// that has the focus tells that it was left, and this is no such window any more then.
    ~Window() override;

protected:
    /// The action for a queue that may outlive this window: once the window has gone it does nothing.
    [[nodiscard]] std::function<void()> ifAlive(std::function<void()> action);
};

} // namespace drx9
