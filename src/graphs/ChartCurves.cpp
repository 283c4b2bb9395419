#include "graphs/ChartCurves.h"

#include <algorithm>
#include <cmath>

namespace drx9 {

namespace {
constexpr double kMostInColumn = 2; ///< readings, above which curves are thinned
constexpr double kMostRows = 16;    ///< in view, to a column, whatever the usual pace is
constexpr double kReach = 8;        ///< pixels that a reading's ink can reach aside
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

std::vector<CurvePoint> ChartCurves::curve(int series, double fromX) const {
    return thinned_ ? thinnedCurve(series, fromX) : exactCurve(series, fromX);
}

std::vector<CurvePoint> ChartCurves::exactCurve(int series, double fromX) const {
    const ChartModel::Rows drawn = model_.drawnRows(series);
    const std::size_t column = model_.column(series);
    // From a reading beyond each end on, so that the curve runs up to the edges.
    std::size_t row = std::clamp(points_.firstAt(timeAt(fromX - kReach)), drawn.from, drawn.to);
    while (row > drawn.from && std::isnan(points_.value(column, --row))) {
    }
    const std::size_t end = std::min(drawn.to, points_.firstAt(timeAt(width_ + kReach), row) + 1);
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

std::vector<CurvePoint> ChartCurves::thinnedCurve(int series, double fromX) const {
    const ChartModel::Rows drawn = model_.drawnRows(series);
    const std::size_t column = model_.column(series);
    const auto rowsOf = [this, &drawn](std::size_t i) {
        return ChartModel::Rows{std::max(rows_[i], drawn.from), std::min(rows_[i + 1], drawn.to)};
    };
    // From the last column before that one that holds a value.
    auto first = static_cast<std::size_t>(std::clamp(fromX, 0.0, static_cast<double>(width_)));
    while (first > 0 && points_.range(column, rowsOf(first).from, rowsOf(first).to).empty()) {
        --first;
    }
    std::vector<CurvePoint> curve;
    curve.reserve(4 * rows_.size());
    for (std::size_t i = first; i + 1 < rows_.size(); ++i) {
        const ChartModel::Rows rows = rowsOf(i);
        if (rows.from < rows.to) {
            addColumn(curve, column, rows.from, rows.to, static_cast<double>(i) - 0.5);
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
