#pragma once

namespace drx9 {

/// One strip chart as the acquisition cycle works it: time axis in elapsed seconds, rates in Å/s, thickness
/// in kÅ. Series are numbered from 1.
class Graph {
public:
    virtual ~Graph() = default;

    /// First-time set-up: design look, empty series.
    virtual void Init() = 0;
    /// Restarts the time window at zero for a new run: XMin = 0, Xwide re-applied, series 1 emptied. The
    /// other series keep their points until the first setLastPoint() (kept).
    virtual void ReInit() = 0;

    [[nodiscard]] virtual float YMin() const = 0;
    virtual void setYMin(float value) = 0;
    [[nodiscard]] virtual float YMax() const = 0;
    virtual void setYMax(float value) = 0;
    [[nodiscard]] virtual float XMin() const = 0;
    virtual void setXMin(float value) = 0;
    [[nodiscard]] virtual float Xwide() const = 0;
    /// The X axis's maximum becomes its current minimum plus the value.
    virtual void setXwide(float value) = 0;

    /// Y axis as the chart shows it now; differs from YMin/YMax after the operator changed it on the chart
    /// itself.
    [[nodiscard]] virtual float shownYMin() const = 0;
    [[nodiscard]] virtual float shownYMax() const = 0;

    [[nodiscard]] virtual int seriesCount() const = 0;
    /// Cuts the series to its first `last` points.
    virtual void setLastPoint(int series, int last) = 0;
    /// Adds a point; one that is not later than the series' last is dropped.
    virtual void append(int series, double elapsed, double value) = 0;
    /// The curves break here: no reading was taken between the last point and the next.
    virtual void appendGap() = 0;
    /// Draws what changed since the last time, at most once for many calls.
    virtual void redraw() = 0;
};

} // namespace drx9
