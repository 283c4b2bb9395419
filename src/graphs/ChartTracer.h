#pragma once

#include "graphs/ChartCurves.h"

#include <optional>
#include <string>

namespace drx9 {

/// A reading that was picked on a chart.
struct TracedPoint {
    int series = 0; ///< from 0
    double time = 0;
    double value = 0;
    bool operator==(const TracedPoint&) const = default;
};

/// Reads single values off a chart: the reading nearest to a place, and from a pinned first one on the
/// difference to it.
class ChartTracer {
public:
    explicit ChartTracer(const ChartModel& model)
        : model_(model) {}

    /// The nearest reading of the visible series within reach of a place of the plot, in pixels; none where
    /// there is none.
    void moveTo(const ChartCurves& curves, double x, double y);
    /// So many readings on along the series; from the newest one in view where none is traced.
    void step(int readings);
    /// Goes to the next visible series' reading at the same time; -1 means a lower series number. Starts with
    /// the newest reading in view where none is traced.
    void stepSeries(int direction);
    /// A traced series that shows no longer gives way to another one; a pin on it is dropped.
    void leaveHidden();
    void leave() { point_.reset(); }
    /// Pins what is traced.
    void pin() { pin_ = point_ ? point_ : pin_; }
    void dropPin() { pin_.reset(); }

    [[nodiscard]] const std::optional<TracedPoint>& point() const { return point_; }
    [[nodiscard]] const std::optional<TracedPoint>& pinned() const { return pin_; }

    /// "00:05:52   Sensor 3: 9.91"; empty while nothing is traced.
    [[nodiscard]] std::string text(char decimal) const;
    /// "+12.250 s, +0.35, +0.0286 per s" since the pinned reading; empty without one.
    [[nodiscard]] std::string differenceText(char decimal) const;

private:
    [[nodiscard]] std::optional<TracedPoint> newestInView() const;
    [[nodiscard]] std::optional<TracedPoint> at(int series, std::size_t row) const;
    [[nodiscard]] std::optional<TracedPoint> nearest(int series, double time) const;
    [[nodiscard]] std::optional<TracedPoint> beside(const TracedPoint& point, int direction) const;

    const ChartModel& model_;
    std::optional<TracedPoint> point_;
    std::optional<TracedPoint> pin_;
};

} // namespace drx9
