#pragma once

#include <QSize>

#include <optional>

namespace drx9 {

/// The three sizes in which the main window shows its numbers.
enum class SizeStep { S, M, L };

/// Sizes of one step, in logical pixels.
struct StepMeasures {
    QSize from; ///< least window
    int primary;
    int secondary;
    int label;
    int barHeight;
    int buttonHeight;
    int faceHeight;
    int filmWidth;
};

const StepMeasures& measuresOf(SizeStep step);

/// The step of a window of this size. A step is taken when the window reaches its size, and left when the
/// window is 16 px below, so that a drag does not flicker; `now` is the step that is shown, if any.
SizeStep stepFor(const QSize& window, std::optional<SizeStep> now);

} // namespace drx9
