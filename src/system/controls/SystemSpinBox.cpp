#include "system/controls/SystemSpinBox.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QSignalBlocker>

#include <algorithm>

namespace drx9 {

namespace {
constexpr int kMostCharacters = 12;
}

SystemSpinBox::SystemSpinBox(SpinnerField& field, const NumberLocale& locale, QWidget* parent)
    : SpinBox(parent)
    , field_(field)
    , locale_(locale) {
    setAlignment(Qt::AlignRight);
    lineEdit()->setMaxLength(kMostCharacters);
    // From elsewhere: an assistive tool sets the value itself.
    connect(this, &QSpinBox::valueChanged, this, [this](int value) {
        field_.moveTo(value);
        refresh();
        emit edited();
    });
    refresh();
}

void SystemSpinBox::refresh() {
    const QSignalBlocker blocker(this);
    if (minimum() != field_.minimum() || maximum() != field_.maximum()) {
        setRange(field_.minimum(), field_.maximum()); // lets go of a pressed arrow: only with the scale
    }
    setValue(field_.position());
    lineEdit()->setModified(false);
}

bool SystemSpinBox::typed() const {
    // What is shown already may be typed once more, and then it is meant; a text that an assistive tool puts
    // in is no modification.
    return lineEdit()->isModified() || isTyping();
}

bool SystemSpinBox::finish() {
    if (!typed()) {
        return true;
    }
    const bool taken = field_.type(lineEdit()->text().toStdString());
    refresh();
    if (taken) {
        emit edited();
    } else {
        emit refused();
    }
    return taken;
}

void SystemSpinBox::hold(bool held) {
    held_ = held;
    update();
}

void SystemSpinBox::stepBy(int steps) {
    if (!finish() || held_) {
        return;
    }
    field_.step(steps);
    refresh();
    selectAll();
    emit edited();
}

QString SystemSpinBox::textFromValue(int value) const {
    return QString::fromStdString(field_.textOf(value, locale_));
}

int SystemSpinBox::valueFromText(const QString&) const {
    return field_.position(); // the text was taken by finish()
}

QValidator::State SystemSpinBox::validate(QString& text, int&) const {
    const bool plain = std::all_of(text.cbegin(), text.cend(), [](QChar c) {
        return (c >= QLatin1Char('0') && c <= QLatin1Char('9')) || QStringLiteral("., ").contains(c);
    });
    return plain ? QValidator::Acceptable : QValidator::Invalid; // finish() judges the rest
}

QAbstractSpinBox::StepEnabled SystemSpinBox::stepEnabled() const {
    return held_ ? StepEnabled(StepNone) : SpinBox::stepEnabled();
}

void SystemSpinBox::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        finish();
    }
    SpinBox::keyPressEvent(event);
}

void SystemSpinBox::focusOutEvent(QFocusEvent* event) {
    if (event->reason() != Qt::ActiveWindowFocusReason && event->reason() != Qt::PopupFocusReason) {
        finish();
    }
    SpinBox::focusOutEvent(event);
}

} // namespace drx9
