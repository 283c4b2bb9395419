#pragma once

#include <QLineEdit>

namespace drx9 {

/// A line of text that is finished (editingFinished) on Enter, and when another control of its window takes
/// the focus; not when a box, a menu or another window does.
class TypedField : public QLineEdit {
    Q_OBJECT
public:
    using QLineEdit::QLineEdit;

protected:
    void focusOutEvent(QFocusEvent* event) override;
};

} // namespace drx9
