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
    auto held = std::make_unique<HeldTimer>(timer_, reason);
    monitor_.holdsChanged();
    return held;
}

} // namespace drx9
