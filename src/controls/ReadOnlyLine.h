#pragma once

#include <QLineEdit>

namespace drx9 {

/// A line of text that can be selected, copied and read aloud, and that takes nothing from outside: no key,
/// no drop, no screen reader changes it. Its context menu pops up.
class ReadOnlyLine : public QLineEdit {
    Q_OBJECT
public:
    explicit ReadOnlyLine(QWidget* parent = nullptr);

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
};

} // namespace drx9
