#include "monitor/controls/SizeStep.h"

#include <array>

namespace drx9 {

namespace {
constexpr int kHysteresis = 16;

constexpr std::array<StepMeasures, 3> kMeasures{{
    {{940, 540}, 56, 28, 13, 56, 36, 42, 160},
    {{1200, 720}, 72, 40, 13, 72, 44, 52, 200},
    {{1720, 900}, 104, 56, 16, 72, 44, 52, 200},
}};
} // namespace

const StepMeasures& measuresOf(SizeStep step) {
    return kMeasures[static_cast<std::size_t>(step)];
}

SizeStep stepFor(const QSize& window, std::optional<SizeStep> now) {
    for (const SizeStep step : {SizeStep::L, SizeStep::M}) {
        const int slack = now && *now >= step ? kHysteresis : 0;
        const QSize from = measuresOf(step).from - QSize(slack, slack);
        if (window.width() >= from.width() && window.height() >= from.height()) {
            return step;
        }
    }
    return SizeStep::S;
}

} // namespace drx9
