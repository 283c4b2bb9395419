#pragma once

#include <QAccessible>

class QLineEdit;
class QWidget;

namespace drx9 {

/// What a screen reader takes a widget for that we draw ourselves. Its accessible name is what it says; while
/// that is empty it is passed over. Call in the widget's constructor.
void setAccessibleRole(QWidget& widget, QAccessible::Role role);

/// Lets a screen reader read and select the text of a read-only line, and change nothing: Qt's own interface
/// of a line edit takes a text from outside whether it is read-only or not. Call in its constructor.
void setAccessibleReadOnly(QLineEdit& line);

} // namespace drx9
