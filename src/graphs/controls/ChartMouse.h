#pragma once

#include "graphs/ChartModel.h"

#include <QPointF>
#include <QRect>

#include <optional>

namespace drx9 {

/// What mouse, wheel and keys do to the view of a chart. Over an axis they work along that axis alone.
class ChartMouse {
public:
    explicit ChartMouse(ChartModel& model)
        : model_(model) {}

    /// Where the plot lies within the axes.
    void setPlot(const QRect& plot) { plot_ = plot; }

    void press(const QPointF& at);
    /// True when it moved the view.
    bool move(const QPointF& at);
    /// True when the button was pressed and released without a drag.
    bool release();
    void cancel() { pressed_.reset(); }
    [[nodiscard]] bool pressed() const { return pressed_.has_value(); }
    void wheel(const QPointF& at, double notches);

    void zoomIn(Qt::Orientations along); ///< a step, about the middle
    void zoomOut(Qt::Orientations along);
    /// Arrows, "+" and "-", F and W. False for any other key.
    bool key(int key, Qt::KeyboardModifiers modifiers);

private:
    struct Press {
        QPointF at;
        ValueSpan x;
        ValueSpan y;
        bool dragged = false;
    };
    [[nodiscard]] Qt::Orientations alongAt(const QPointF& at) const;
    void pan(Qt::Orientation orientation, double share); ///< share of the visible span
    bool zoomKey(int key, Qt::KeyboardModifiers modifiers);
    void scale(const QPointF& about, double factor, Qt::Orientations along);

    ChartModel& model_;
    QRect plot_;
    std::optional<Press> pressed_;
};

} // namespace drx9
