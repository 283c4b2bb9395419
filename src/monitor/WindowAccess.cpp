#include "monitor/WindowAccess.h"

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

void WindowAccess::systemSent(bool accepted) {
    parts_.instrument.setSystemKnown(accepted);
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
