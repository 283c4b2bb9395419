#pragma once

#include <QString>

#include <string>

class QLabel;
class QPushButton;
class QWidget;

namespace drx9 {

/// What the windows' layouts are built from. For .cpp files.

/// A caption, tooltip or name of the program's own.
inline QString latin(const char* text) {
    return QString::fromLatin1(text);
}
/// A text of the logic, which is UTF-8.
inline QString shown(const std::string& text) {
    return QString::fromStdString(text);
}

/// A button of the usual width. Enter in another control does not press it.
QPushButton* makeButton(QWidget* parent, const char* name, const char* caption, const char* toolTip = "");
/// A heading or unit in the colour of labels.
QLabel* makeMutedLabel(QWidget* parent, const QString& text);
/// Whether the widget keeps its place in a layout while it is hidden.
void keepRoomWhenHidden(QWidget& widget, bool keep = true);

} // namespace drx9
