#pragma once

#include <QComboBox>

namespace drx9 {

/// A list in which each choice acts on the process: it is chosen in the opened list only. Closed, it does not
/// follow the wheel, the arrow keys or typed letters; typing opens it and looks there, Enter confirms. With
/// no entry current it shows its placeholder like an entry.
class PickList : public QComboBox {
    Q_OBJECT
public:
    using QComboBox::QComboBox;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
};

} // namespace drx9
