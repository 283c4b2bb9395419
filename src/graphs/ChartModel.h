#pragma once

#include "graphs/ChartLook.h"
#include "graphs/RunPoints.h"

#include <functional>
#include <memory>
#include <optional>

namespace drx9 {

struct ValueSpan {
    double from = 0;
    double to = 1;
    [[nodiscard]] double size() const { return to - from; }
    bool operator==(const ValueSpan&) const = default;
};

/// What one strip chart shows: its look, its series over the run's points, and which part of them is in view.
/// Series count from 0 here.
///
/// The view follows the time axis until the operator zooms or pans along it; a view never touches the axis.
/// Along Y there is only the axis itself: zooming changes it.
class ChartModel {
public:
    /// `points` are shared by all charts of the run and outlive the model.
    ChartModel(const ChartDesign& design, RunPoints& points);

    /// Called when what is to be drawn has changed; for appended points at redraw(). At most one listener.
    void setListener(std::function<void()> changed) { changed_ = std::move(changed); }
    /// Tells the listener of appended points; within a batch only once, when the last batch ends.
    void redraw();
    /// Another number after every change of what is drawn, except for points that came at the end.
    [[nodiscard]] std::size_t revision() const { return revision_ + points().losses(); }
    void beginBatch() { ++batches_; }
    void endBatch();

    [[nodiscard]] const ChartDesign& design() const { return design_; }
    [[nodiscard]] const ChartLook& look() const { return look_; }
    /// A look as a file or the editor gives it. Its axes come into force; home of the Y axis stays.
    void setLook(ChartLook look);

    // Axes.

    void setXMinimum(double value);
    void setXMaximum(double value);
    /// A limit of the Y axis. A pair out of order is kept and comes into force when it is in order again.
    void setYMinimum(float value);
    void setYMaximum(float value);
    /// The pair as it was last set, in order or not.
    [[nodiscard]] float yMinimum() const { return yMinimum_; }
    [[nodiscard]] float yMaximum() const { return yMaximum_; }
    /// Where Home takes the Y axis back to: the pair that a file or a window set last.
    [[nodiscard]] const ValueSpan& yHome() const { return yHome_; }
    void setYHome(const ValueSpan& pair) { yHome_ = pair; }
    /// The pair as it is set now is home, where it is in order.
    void markYHome();
    void setXSpacing(double grid, double label, double tick);
    void setYSpacing(double grid, double label, double tick);
    void setXGridPattern(int pattern);
    void setYGridPattern(int pattern);
    void setXAnnotation(int annotation);

    // Series.

    [[nodiscard]] int seriesCount() const { return design_.series; }
    [[nodiscard]] int capacity(int series) const { return extent(series).capacity; }
    void setCapacity(int series, int points) { extent(series).capacity = points; }
    [[nodiscard]] int firstPoint(int series) const { return extent(series).firstPoint; }
    void setFirstPoint(int series, int point);
    /// Number of points, which is the last one's number.
    [[nodiscard]] int lastPoint(int series) const;
    /// Cuts the series to its first `last` points.
    void setLastPoint(int series, int last);
    /// A point that is not later than the series' last one is dropped.
    void append(int series, double elapsed, double value);
    /// The curves break before the next point.
    void appendGap() { gapPending_ = true; }
    /// Shows points of the chart's own in place of the run's until dropOwnPoints(); null drops them at once.
    void setOwnPoints(std::unique_ptr<RunPoints> points);
    void dropOwnPoints() { setOwnPoints(nullptr); }

    [[nodiscard]] const RunPoints& points() const { return own_ ? *own_ : run_; }
    [[nodiscard]] std::size_t column(int series) const;
    /// Rows of a series that are drawn, from .. to - 1: from its first point on, nothing later than the first
    /// series' newest point.
    struct Rows {
        std::size_t from;
        std::size_t to;
    };
    [[nodiscard]] Rows drawnRows(int series) const;

    /// Series beyond the count have no sensor: they have neither curve nor legend entry.
    void setSensorCount(int count);
    [[nodiscard]] bool seriesPresent(int series) const { return series < sensors_; }
    /// Present, and not hidden by the operator.
    [[nodiscard]] bool seriesVisible(int series) const;
    void setSeriesShown(int series, bool shown);

    // View.

    [[nodiscard]] bool following() const { return !viewX_; }
    [[nodiscard]] ValueSpan xView() const;
    [[nodiscard]] ValueSpan yView() const { return yInForce_; }
    /// The operator's own view of the time axis: following pauses.
    void setXView(const ValueSpan& span);
    /// The operator's change of the Y axis. It does not move home.
    void setYView(const ValueSpan& span);
    /// Follows again, with Y back at home.
    void follow();
    /// Follows again along X; Y stays as the operator has it.
    void followX();
    /// The whole run along X.
    void viewWholeRun();
    /// Y fitted to the visible points of the visible series, with room of a twentieth at each end.
    void fitY();

private:
    struct Extent {
        int capacity = 0;
        int firstPoint = 1;
    };
    [[nodiscard]] const Extent& extent(int series) const {
        return extents_[static_cast<std::size_t>(series)];
    }
    [[nodiscard]] Extent& extent(int series) { return extents_[static_cast<std::size_t>(series)]; }
    [[nodiscard]] RunPoints& ownOrRun() { return own_ ? *own_ : run_; }
    void applyYPair();
    void changed();

    const ChartDesign& design_;
    RunPoints& run_;
    std::unique_ptr<RunPoints> own_;
    ChartLook look_;
    std::vector<Extent> extents_;
    std::function<void()> changed_;
    std::size_t revision_ = 0;
    int batches_ = 0;
    bool changedInBatch_ = false;
    bool gapPending_ = false;
    int sensors_;
    std::optional<ValueSpan> viewX_;
    ValueSpan yInForce_;
    float yMinimum_ = 0;
    float yMaximum_ = 1;
    ValueSpan yHome_;
};

} // namespace drx9
