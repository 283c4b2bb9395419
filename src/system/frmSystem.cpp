#include "system/frmSystem.h"

#include "controls/Build.h"
#include "controls/MarkLabel.h"
#include "system/Texts.h"
#include "system/controls/SystemSpinBox.h"
#include "system/controls/ValueMark.h"
#include "util/DisplayFormats.h"
#include "util/ProgramName.h"
#include "util/Text.h"

#include <QApplication>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>

#include <utility>

namespace drx9 {

/// Marks a save as under way, and leaves no mark behind when an event handler's exception ends it.
class frmSystem::Sending {
public:
    explicit Sending(frmSystem& window)
        : window_(&window) {
        window.closeWanted_ = false;
        window.state_.sending = true;
        window.showState();
    }
    ~Sending() {
        if (window_ != nullptr) {
            window_->state_.sending = false;
            window_->showState();
        }
    }
    Sending(const Sending&) = delete;
    Sending& operator=(const Sending&) = delete;

private:
    QPointer<frmSystem> window_;
};

frmSystem::frmSystem(const SystemWindowParts& parts, QWidget* owner)
    : Window(owner)
    , parts_(parts)
    , timerHold_(parts.polling.holdTimer(systemText::kHoldReason)) {
    setObjectName(QStringLiteral("frmSystem"));
    setWindowTitle(QStringLiteral("System Parameters"));
    buildWindow();
    InitForm();
    numbers_.front()->box->setFocus();
}

frmSystem::~frmSystem() {
    parts_.access.systemClosed();
}

void frmSystem::InitForm() {
    // A field's multiplier comes with its value.
    InitDisplays();
}

void frmSystem::InitDisplays() {
    fields_.fill(parts_.record);
    state_.refused.clear();
    state_.failure.clear();
    saveSpoiled_ = false;
    showFields();
}

void frmSystem::showFields() {
    for (const auto& number : numbers_) {
        number->box->refresh();
    }
    for (const auto& mode : modes_) {
        const QSignalBlocker blocker(mode->on);
        (mode->field->on() ? mode->on : mode->off)->setChecked(true);
        oneTabStop(*mode);
    }
    showMarks();
    showState();
}

void frmSystem::oneTabStop(const Mode& mode) {
    // Qt does so only once one of them has had the focus.
    mode.on->setFocusPolicy(mode.field->on() ? Qt::StrongFocus : Qt::ClickFocus);
    mode.off->setFocusPolicy(mode.field->on() ? Qt::ClickFocus : Qt::StrongFocus);
}

void frmSystem::showMarks() {
    const bool known = parts_.access.systemKnown();
    const auto show = [known](ValueMark& mark, bool exact, const QString& label, const std::string& value,
                              const std::string& unit) {
        mark.show(label, exact ? QString() : shown(markText(known, value, unit)));
        return mark.toolTip();
    };
    for (const auto& number : numbers_) {
        const SpinnerField& field = *number->field;
        const QString marked = show(*number->mark, field.isExact(), number->label,
                                    field.storedText(parts_.locale), number->unit);
        const QString usual =
            number->box->toolTip().isEmpty() ? shown(field.rangeText(parts_.locale)) : number->box->toolTip();
        number->box->setAccessibleDescription(marked.isEmpty() ? usual : (marked + QLatin1Char(' ') + usual));
    }
    for (const auto& mode : modes_) {
        const QString marked = show(*mode->mark, mode->field->isExact(), mode->label,
                                    plainText(mode->field->stored(), parts_.locale), "");
        for (QRadioButton* button : {mode->off, mode->on}) {
            button->setAccessibleDescription(
                marked.isEmpty() ? QString() : (marked + QLatin1Char(' ') + button->toolTip()));
        }
    }
}

void frmSystem::showState() {
    state_.known = parts_.access.systemKnown();
    state_.changed = fields_.touched();
    const SystemStateLine line = stateLine(state_);
    const QString text = shown(line.text);
    lblState_->say(text, line.tone);
    lblState_->setToolTip(text);
}

void frmSystem::numberChanged(const Number& number) {
    state_.refused.clear();
    saveSpoiled_ = false;
    if (fields_.keepFrequenciesApart(number.parameter)) {
        number.box->refresh();
        tellTooClose();
    }
    showMarks();
    showState();
}

void frmSystem::numberRefused(const Number& number) {
    state_.refused = filled(systemText::kTakes,
                            {number.label.toStdString(), number.field->rangeText(parts_.locale) +
                                                             (number.unit.empty() ? "" : " " + number.unit)});
    // A press on Save that made the operator leave the field does not send the number that was there before.
    saveSpoiled_ = QApplication::focusWidget() == cmdSave_;
    showState();
}

void frmSystem::optMode_Click(Mode& mode, bool on) {
    mode.field->choose(on);
    state_.refused.clear();
    oneTabStop(mode);
    showMarks();
    showState();
}

void frmSystem::holdFrequencies(bool held) {
    for (const auto& number : numbers_) {
        if (number->parameter == SystemFields::kMinFrequency ||
            number->parameter == SystemFields::kMaxFrequency) {
            number->box->hold(held);
        }
    }
}

void frmSystem::tellTooClose() {
    if (std::exchange(telling_, true)) {
        return;
    }
    // Later, from the event loop: the step's own event is on the stack, and a pressed arrow would go on
    // stepping behind the box. Later still when the fields were changed during a save.
    holdFrequencies(true);
    const auto queue = [this] { parts_.actions.runWhenIdle(ifAlive([this] { showTooClose(); })); };
    QMetaObject::invokeMethod(this, queue, Qt::QueuedConnection);
}

void frmSystem::showTooClose() {
    const QPointer<frmSystem> self(this);
    if (isVisible()) {
        parts_.boxes.show(systemText::kFrequenciesTooClose, kProgramName, MessageIcon::None);
    }
    if (self != nullptr) {
        telling_ = false;
        holdFrequencies(false);
    }
}

bool frmSystem::finishTyped() {
    bool taken = true;
    for (const auto& number : numbers_) {
        taken = number->box->finish() && taken;
    }
    return taken;
}

void frmSystem::cmdRead_Click() {
    if (!state_.sending) {
        finishTyped();
        InitDisplays();
    }
}

void frmSystem::cmdSave_Click() {
    // A number that was refused or pushed is for the operator to look at before it is sent.
    if (state_.sending || !finishTyped() || std::exchange(saveSpoiled_, false) || telling_) {
        return;
    }
    parts_.actions.runWhenIdle(ifAlive([this] {
        if (!state_.sending) {
            send();
        }
    }));
}

void frmSystem::send() {
    fields_.store(parts_.record);
    InitDisplays(); // what is changed from now on is not in this save
    const QPointer<frmSystem> self(this);
    const SystemWindowParts parts = parts_; // the window may go in a wait
    Commands::SystemSent sent;
    {
        const ActionQueue::Scope scope(parts.actions);
        const Sending sending(*this);
        sent = parts.commands.Comm_SetSystem(parts.record);
        parts.access.systemSent(sent.status == comm::kOk);
    }
    if (self != nullptr) {
        saved(sent);
    }
}

void frmSystem::saved(const Commands::SystemSent& sent) {
    if (sent.status == comm::kOk) {
        state_.sentAt = timeOfDayText(parts_.clock.local());
    } else {
        const bool onLine = parts_.link.CommOK() && parts_.link.isOpen();
        state_.failure = saveFailureText(onLine, sent.second, sent.status);
    }
    showMarks();
    showState();
    if (std::exchange(closeWanted_, false) && state_.failure.empty()) {
        close();
    }
}

void frmSystem::cmdOK_Click() {
    close();
}

void frmSystem::reject() {
    if (state_.sending) {
        closeWanted_ = true;
    } else {
        Window::reject();
    }
}

} // namespace drx9
