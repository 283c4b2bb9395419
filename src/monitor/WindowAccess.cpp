#include "monitor/WindowAccess.h"

#include "monitor/Texts.h"

namespace drx9 {

namespace {
struct HeldTimer : Tenure {
    HeldTimer(PollTimer& timer, const std::string& reason)
        : hold(timer, reason) {}
    PollTimer::Hold hold;
};
} // namespace

std::unique_ptr<Tenure> WindowAccess::holdTimer(const std::string& reason) {
    auto held = std::make_unique<HeldTimer>(parts_.timer, reason);
    parts_.window.changed();
    return held;
}

void WindowAccess::linkFound() {
    parts_.answers.say(monitorText::kOk); // what the loss meant has ended with the opening itself
    parts_.form.setSystemKnown(false); // another instrument may answer; closing the window reads its record
    parts_.window.changed();
}

void WindowAccess::linkSetupClosed(bool reopen, bool sameLink) {
    if (parts_.monitor.RunMode() == RunState::Exiting) {
        return;
    }
    const ActionQueue::Scope scope(parts_.actions);
    if (reopen) {
        parts_.discovery.Comm_Open(Messages::Silent, [this] { return parts_.actions.closing(); });
    }
    parts_.choice.forgetLoss(); // behind this window nothing is sent by itself
    if (!sameLink) {
        parts_.form.setSystemKnown(false);
        parts_.keeper.startOver();
    } else if (!parts_.link.CommOK() && parts_.keeper.wasOnLine()) {
        parts_.keeper.beginLoss();
    }
    parts_.monitor.setRunMode(RunState::Idle);
}

void WindowAccess::systemSent(bool accepted) {
    parts_.form.setSystemKnown(accepted);
    parts_.window.changed();
}

void WindowAccess::systemClosed() {
    // On line or not: the communications window alone looks at that (kept).
    parts_.timer.setWanted(parts_.monitor.RunMode() != RunState::Exiting);
}

void WindowAccess::filmUnconfirmed() {
    parts_.choice.unconfirm();
    parts_.window.changed();
}

} // namespace drx9
