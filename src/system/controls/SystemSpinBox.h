#pragma once

#include "controls/SpinBox.h"
#include "system/SpinnerField.h"

namespace drx9 {

/// The spinner of one field. Its value is the field's position; its text the shown value, which may be typed
/// with either decimal sign. What is typed counts when the box is left for another control of its window,
/// with Enter, with a step, or when finish() is called; a number that the field does not take leaves it as it
/// was.
class SystemSpinBox : public SpinBox {
    Q_OBJECT
public:
    /// The field and the locale outlive the box.
    SystemSpinBox(SpinnerField& field, const NumberLocale& locale, QWidget* parent);

    /// Shows the field after it was filled or pushed. Says nothing.
    void refresh();
    /// Takes what is typed. False when the field refused it.
    bool finish();
    /// While held, steps do nothing: a pressed arrow stops.
    void hold(bool held);

    void stepBy(int steps) override;

signals:
    void edited();  ///< the operator changed the field
    void refused(); ///< what was typed was not taken

protected:
    [[nodiscard]] QString textFromValue(int value) const override;
    [[nodiscard]] int valueFromText(const QString& text) const override;
    QValidator::State validate(QString& text, int& cursor) const override;
    [[nodiscard]] StepEnabled stepEnabled() const override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    [[nodiscard]] bool typed() const;

    SpinnerField& field_;
    const NumberLocale& locale_;
    bool held_ = false;
};

} // namespace drx9
