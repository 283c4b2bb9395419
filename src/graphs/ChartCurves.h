#pragma once

#include "graphs/ChartModel.h"

#include <vector>

namespace drx9 {

/// One corner of a curve, in pixels from the left and the top of the plot; `start` begins a new piece.
struct CurvePoint {
    double x;
    double y;
    bool start;
};

/// What a view needs of the points: a polyline that is exact where readings are thin enough, else of each
/// pixel column the first, least, greatest and last value.
///
/// Columns are anchored in time, at whole multiples of their width since time zero, and lie on whole
/// pixels; whether readings are thin enough follows from the column's width and the run's usual pace alone.
/// So scrolling moves the picture of a moment and never changes it.
class ChartCurves {
public:
    /// For the model's present view in a plot of so many pixels. Keeps references to the model.
    ChartCurves(const ChartModel& model, int width, int height);

    /// More than two readings to a pixel column.
    [[nodiscard]] bool thinned() const { return thinned_; }
    /// What shows of the curve between two heights of the plot at `fromX` and `toX`, with the strokes that
    /// run over them. `reach` is how far aside the ink of a reading can come, in pixels.
    [[nodiscard]] std::vector<CurvePoint> curve(int series, double fromX, double toX, double reach) const;
    /// The curve in view.
    [[nodiscard]] std::vector<CurvePoint> curve(int series) const { return curve(series, 0, width_, 0); }
    [[nodiscard]] double xPixel(double time) const { return (time - origin_) / perColumn_; }
    [[nodiscard]] double timeAt(double xPixel) const { return origin_ + xPixel * perColumn_; }
    [[nodiscard]] double yPixel(double value) const;

private:
    void findColumns();
    struct Thinned {
        std::size_t column; ///< of the points
        std::uint32_t gaps; ///< up to the newest value
        std::vector<CurvePoint> curve;
    };
    [[nodiscard]] std::vector<CurvePoint> exactCurve(int series, double fromX, double toX) const;
    [[nodiscard]] std::vector<CurvePoint> thinnedCurve(int series, double fromX, double toX) const;
    void addBeside(Thinned& curve, std::size_t row) const;
    void addColumn(Thinned& curve, std::size_t from, std::size_t to, double x) const;

    const ChartModel& model_;
    const RunPoints& points_;
    ValueSpan y_;
    int width_;
    int height_;
    double perColumn_; ///< s
    double origin_;    ///< time of the plot's left edge, s
    bool thinned_ = false;
    /// While thinned: first row of each column, beginning with one beside the view, and an end.
    std::vector<std::size_t> rows_;
};

/// A column's width in seconds, the same for all views of nearly the same width: what is left of it in the
/// last bits would move readings from one column to the next.
double columnWidth(double span, int pixels);

} // namespace drx9
