#include "monitor/WindowAccess.h"

#include <optional>
#include <utility>

namespace drx9 {

namespace {
class HeldTimer : public Tenure {
public:
    HeldTimer(PollTimer& timer, const std::string& reason, MonitorWindow& window)
        : hold_(std::in_place, timer, reason)
        , window_(window) {
        window_.changed();
    }
    ~HeldTimer() override {
        hold_.reset();
        window_.changed();
    }
    HeldTimer(const HeldTimer&) = delete;
    HeldTimer& operator=(const HeldTimer&) = delete;

private:
    std::optional<PollTimer::Hold> hold_;
    MonitorWindow& window_;
};
} // namespace

std::unique_ptr<Tenure> WindowAccess::holdTimer(const std::string& reason) {
    return std::make_unique<HeldTimer>(parts_.timer, reason, parts_.window);
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
