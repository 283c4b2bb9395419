#pragma once

#include <QTextBrowser>

namespace drx9 {

/// Read-only rich text whose text can be selected and copied, but is never dragged: a drag runs an event
/// loop of its own above whatever exchange is on the stack. A press on selected text begins a new selection
/// instead.
class TextView : public QTextBrowser {
    Q_OBJECT
public:
    using QTextBrowser::QTextBrowser;

protected:
    void mousePressEvent(QMouseEvent* event) override;
};

} // namespace drx9
