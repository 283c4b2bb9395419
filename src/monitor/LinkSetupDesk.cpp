#include "monitor/LinkSetupDesk.h"

#include "monitor/Texts.h"

namespace drx9 {

void LinkSetupDesk::linkFound() {
    parts_.answers.say(monitorText::kOk); // what the loss meant has ended with the opening itself
    // Another instrument may answer; closing the window reads its record.
    parts_.instrument.setSystemKnown(false);
    parts_.window.changed();
}

void LinkSetupDesk::filmUnconfirmed() {
    parts_.choice.unconfirm();
    parts_.window.changed();
}

void LinkSetupDesk::linkSetupClosed(bool reopen, bool sameLink) {
    if (parts_.monitor.RunMode() == RunState::Exiting) {
        return;
    }
    const ActionQueue::Scope scope(parts_.actions);
    if (reopen) {
        parts_.discovery.Comm_Open(Messages::Silent, [this] { return parts_.actions.closing(); });
    }
    parts_.choice.forgetLoss(); // behind this window nothing is sent by itself
    if (!sameLink) {
        parts_.instrument.setSystemKnown(false);
        parts_.keeper.startOver();
    } else if (!parts_.link.CommOK() && parts_.keeper.wasOnLine()) {
        parts_.keeper.beginLoss();
    }
    parts_.monitor.setRunMode(RunState::Idle);
}

} // namespace drx9
