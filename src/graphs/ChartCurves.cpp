#include "graphs/ChartCurves.h"

#include <algorithm>
#include <cmath>

namespace drx9 {

namespace {
constexpr double kMostInColumn = 2; ///< readings on average, above which curves are thinned
constexpr int kWidthBits = 26;
} // namespace

double columnWidth(double span, int pixels) {
    int exponent = 0;
    const double mantissa = std::frexp(span / pixels, &exponent);
    return std::ldexp(std::round(std::ldexp(mantissa, kWidthBits)), exponent - kWidthBits);
}

ChartCurves::ChartCurves(const ChartModel& model, int width, int height)
    : model_(model)
    , points_(model.points())
    , y_(model.yView())
    , width_(std::max(1, width))
    , height_(std::max(1, height))
    , perColumn_(columnWidth(model.xView().size(), width_))
    , origin_(model.xView().from) {
    findColumns();
    if (thinned_) {
        origin_ = std::floor(origin_ / perColumn_) * perColumn_;
    }
}

/// Finds where the columns begin among the rows, and whether there are too many rows to draw them all.
void ChartCurves::findColumns() {
    const double first = std::floor(origin_ / perColumn_) - 1;
    std::size_t occupied = 0;
    rows_.reserve(static_cast<std::size_t>(width_) + 4);
    for (int i = 0; i < width_ + 4; ++i) {
        rows_.push_back(points_.firstAt((first + i) * perColumn_, rows_.empty() ? 0 : rows_.back()));
        occupied += i > 0 && rows_.back() > rows_[rows_.size() - 2] ? 1 : 0;
    }
    thinned_ =
        static_cast<double>(rows_.back() - rows_.front()) > kMostInColumn * static_cast<double>(occupied);
}

double ChartCurves::yPixel(double value) const {
    return (y_.to - value) / y_.size() * height_;
}

std::vector<CurvePoint> ChartCurves::curve(int series) const {
    return thinned_ ? thinnedCurve(series) : exactCurve(series);
}

std::vector<CurvePoint> ChartCurves::exactCurve(int series) const {
    const ChartModel::Rows drawn = model_.drawnRows(series);
    const std::size_t column = model_.column(series);
    // From a reading beyond each end of the view on, so that the curve runs up to its edges.
    const std::size_t first = rows_.front();
    const std::size_t last = rows_.back();
    std::vector<CurvePoint> curve;
    curve.reserve(last + 2 - first);
    bool start = true;
    for (std::size_t row = std::max(drawn.from, first - std::min<std::size_t>(first, 1));
         row < std::min(drawn.to, last + 1); ++row) {
        start = start || points_.gapBefore(row);
        const float value = points_.value(column, row);
        if (!std::isnan(value)) {
            curve.push_back({xPixel(points_.time(row)), yPixel(value), start});
            start = false;
        }
    }
    return curve;
}

std::vector<CurvePoint> ChartCurves::thinnedCurve(int series) const {
    const ChartModel::Rows drawn = model_.drawnRows(series);
    const std::size_t column = model_.column(series);
    std::vector<CurvePoint> curve;
    curve.reserve(4 * rows_.size());
    for (std::size_t i = 0; i + 1 < rows_.size(); ++i) {
        const std::size_t from = std::max(rows_[i], drawn.from);
        const std::size_t to = std::min(rows_[i + 1], drawn.to);
        if (from < to) {
            addColumn(curve, column, from, to, static_cast<double>(i) - 0.5);
        }
    }
    return curve;
}

/// First, least, greatest and last, one above the other in the column's middle.
void ChartCurves::addColumn(std::vector<CurvePoint>& curve, std::size_t column, std::size_t from,
                            std::size_t to, double x) const {
    const bool start = curve.empty() || points_.gapBefore(from);
    const ValueRange range = points_.range(column, from, to);
    if (range.empty()) {
        return;
    }
    const float first = points_.value(column, from);
    const float last = points_.value(column, to - 1);
    curve.push_back({x, yPixel(std::isnan(first) ? range.least : first), start});
    if (to - from > 1) {
        curve.push_back({x, yPixel(range.least), false});
        curve.push_back({x, yPixel(range.greatest), false});
        curve.push_back({x, yPixel(std::isnan(last) ? range.greatest : last), false});
    }
}

} // namespace drx9
