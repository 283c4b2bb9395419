#include "graphs/ChartCurves.h"

#include <algorithm>
#include <cmath>

namespace drx9 {

namespace {
constexpr double kMostInColumn = 2; ///< readings, above which curves are thinned
constexpr double kMostRows = 16;    ///< in view, to a column, whatever the usual pace is
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
    const double step = points_.usualStep();
    const auto inView = static_cast<double>(points_.firstAt(timeAt(width_)) - points_.firstAt(origin_));
    thinned_ = (step > 0 && perColumn_ > kMostInColumn * step) || inView > kMostRows * width_;
    if (thinned_) {
        origin_ = std::floor(origin_ / perColumn_) * perColumn_;
        findColumns();
    }
}

/// Finds where the columns begin among the rows.
void ChartCurves::findColumns() {
    const double first = std::floor(model_.xView().from / perColumn_) - 1;
    rows_.reserve(static_cast<std::size_t>(width_) + 4);
    for (int i = 0; i < width_ + 4; ++i) {
        rows_.push_back(points_.firstAt((first + i) * perColumn_, rows_.empty() ? 0 : rows_.back()));
    }
}

double ChartCurves::yPixel(double value) const {
    return (y_.to - value) / y_.size() * height_;
}

std::vector<CurvePoint> ChartCurves::curve(int series, double fromX, double toX, double reach) const {
    return thinned_ ? thinnedCurve(series, fromX, toX) : exactCurve(series, fromX - reach, toX + reach);
}

std::vector<CurvePoint> ChartCurves::exactCurve(int series, double fromX, double toX) const {
    const ChartModel::Rows drawn = model_.drawnRows(series);
    const std::size_t column = model_.column(series);
    // From a reading beyond each end on, so that the curve runs over it.
    std::size_t row = std::clamp(points_.firstAt(timeAt(fromX)), drawn.from, drawn.to);
    while (row > drawn.from && std::isnan(points_.value(column, --row))) {
    }
    std::size_t end = std::min(drawn.to, points_.firstAt(timeAt(toX), row) + 1);
    while (end > row && end < drawn.to && std::isnan(points_.value(column, end - 1))) {
        ++end;
    }
    std::vector<CurvePoint> curve;
    curve.reserve(end - std::min(row, end));
    bool start = true;
    for (; row < end; ++row) {
        start = start || points_.gapBefore(row);
        const float value = points_.value(column, row);
        if (!std::isnan(value)) {
            curve.push_back({xPixel(points_.time(row)), yPixel(value), start});
            start = false;
        }
    }
    return curve;
}

std::vector<CurvePoint> ChartCurves::thinnedCurve(int series, double fromX, double toX) const {
    const ChartModel::Rows drawn = model_.drawnRows(series);
    Thinned thinned{model_.column(series), 0, {}};
    const auto first = static_cast<std::size_t>(std::clamp<double>(fromX, 0, width_));
    const auto last = static_cast<std::size_t>(std::clamp<double>(std::ceil(toX) + 3, 0, width_ + 3));
    thinned.curve.reserve(4 * (last - std::min(first, last)) + 2);
    // From a value before the first column to one behind the last.
    for (std::size_t row = std::min(rows_[first], drawn.to); row > drawn.from && thinned.curve.empty();) {
        addBeside(thinned, --row);
    }
    for (std::size_t i = first; i < last; ++i) {
        const std::size_t from = std::max(rows_[i], drawn.from);
        const std::size_t to = std::min(rows_[i + 1], drawn.to);
        if (from < to) {
            addColumn(thinned, from, to, static_cast<double>(i) - 0.5);
        }
    }
    const std::size_t size = thinned.curve.size();
    for (std::size_t row = std::max(rows_[last], drawn.from); row < drawn.to && thinned.curve.size() == size;
         ++row) {
        addBeside(thinned, row);
    }
    return thinned.curve;
}

/// A reading beside the columns that are wanted.
void ChartCurves::addBeside(Thinned& curve, std::size_t row) const {
    addColumn(curve, row, row + 1, std::floor(xPixel(points_.time(row))) + 0.5);
}

/// First, least, greatest and last, one above the other in the column's middle.
void ChartCurves::addColumn(Thinned& thinned, std::size_t from, std::size_t to, double x) const {
    const ValueRange range = points_.range(thinned.column, from, to);
    if (range.empty()) {
        return;
    }
    while (std::isnan(points_.value(thinned.column, from))) {
        ++from;
    }
    while (std::isnan(points_.value(thinned.column, to - 1))) {
        --to;
    }
    std::vector<CurvePoint>& curve = thinned.curve;
    const bool start = curve.empty() || points_.gaps(from) != thinned.gaps;
    thinned.gaps = points_.gaps(to - 1);
    curve.push_back({x, yPixel(points_.value(thinned.column, from)), start});
    if (to - from > 1) {
        curve.push_back({x, yPixel(range.least), false});
        curve.push_back({x, yPixel(range.greatest), false});
        curve.push_back({x, yPixel(points_.value(thinned.column, to - 1)), false});
    }
}

} // namespace drx9
