#pragma once

#include <QSpinBox>

namespace drx9 {

/// The spin box of all windows. It differs from Qt's in what an operator at a running instrument needs:
/// - Its context menu pops up and is never executed; text is dragged neither out of it nor in.
/// - A change is a finished one: a step, or a typed number once it is confirmed with Enter or the box is left
///   for another control. A message box or another window that comes in front leaves the typing as it is.
/// - The wheel acts only where the operator has put the focus, and does not move it.
class SpinBox : public QSpinBox {
    Q_OBJECT
public:
    explicit SpinBox(QWidget* parent = nullptr);

    /// Object names of the box and of its text, and what a screen reader calls both.
    void setNames(const QString& spinner, const QString& text, const QString& accessible);
    /// Shows at least so many digits: "05".
    void setLeastDigits(int digits);

    /// Something is typed that is not a finished change yet.
    [[nodiscard]] bool isTyping() const;
    /// As if the field of the window that has the focus had been left: before a button of that window acts,
    /// which a key or a screen reader may press without moving the focus.
    static void finishTyping(const QWidget& window);

protected:
    [[nodiscard]] QString textFromValue(int value) const override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void stopSpinning();

    int leastDigits_ = 1;
};

} // namespace drx9
