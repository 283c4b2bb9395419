#include "graphs/ChartModel.h"

#include <algorithm>
#include <cmath>

namespace drx9 {

namespace {
constexpr double kLeastXView = 0.02; ///< s; finer than any reading's time
constexpr double kMostXView = 1e8;
constexpr double kLeastYView = 1e-4;
constexpr double kMostY = 1e9;
constexpr double kFitRoom = 0.05;

/// The span with its size kept within limits, about its middle.
ValueSpan limited(const ValueSpan& span, double least, double most) {
    const double size = std::clamp(span.size(), least, most);
    const double middle = std::clamp(span.from + span.size() / 2, -most, most);
    return size == span.size() ? span : ValueSpan{middle - size / 2, middle + size / 2};
}
} // namespace

ChartModel::ChartModel(const ChartDesign& design, RunPoints& points)
    : design_(design)
    , run_(points)
    , extents_(static_cast<std::size_t>(design.series))
    , sensors_(design.series) {
    setLook(designLook(design));
    markYHome();
}

void ChartModel::changed() {
    ++revision_;
    redraw();
}

void ChartModel::redraw() {
    if (batches_ > 0) {
        changedInBatch_ = true;
    } else if (changed_) {
        changed_();
    }
}

void ChartModel::endBatch() {
    --batches_;
    if (batches_ == 0 && changedInBatch_) {
        changedInBatch_ = false;
        redraw();
    }
}

void ChartModel::setLook(ChartLook look) {
    look_ = std::move(look);
    yMinimum_ = static_cast<float>(look_.y.minimum);
    yMaximum_ = static_cast<float>(look_.y.maximum);
    applyYPair();
    changed();
}

// Axes.

void ChartModel::setXMinimum(double value) {
    look_.x.minimum = value;
    changed();
}

void ChartModel::setXMaximum(double value) {
    look_.x.maximum = value;
    changed();
}

void ChartModel::setYMinimum(float value) {
    if (yMinimum_ != value) {
        yMinimum_ = value;
        applyYPair();
        changed();
    }
}

void ChartModel::setYMaximum(float value) {
    if (yMaximum_ != value) {
        yMaximum_ = value;
        applyYPair();
        changed();
    }
}

void ChartModel::applyYPair() {
    look_.y.minimum = yMinimum_;
    look_.y.maximum = yMaximum_;
    if (yMinimum_ < yMaximum_) {
        yInForce_ = {yMinimum_, yMaximum_};
    }
}

void ChartModel::markYHome() {
    if (yMinimum_ < yMaximum_) {
        yHome_ = yInForce_;
    }
}

void ChartModel::setXSpacing(double grid, double label, double tick) {
    look_.x.gridSpacing = grid;
    look_.x.labelSpacing = label;
    look_.x.tickSpacing = tick;
    changed();
}

void ChartModel::setYSpacing(double grid, double label, double tick) {
    look_.y.gridSpacing = grid;
    look_.y.labelSpacing = label;
    look_.y.tickSpacing = tick;
    changed();
}

void ChartModel::setXGridPattern(int pattern) {
    look_.x.gridPattern = pattern;
    changed();
}

void ChartModel::setYGridPattern(int pattern) {
    look_.y.gridPattern = pattern;
    changed();
}

void ChartModel::setXAnnotation(int annotation) {
    look_.x.annotation = annotation;
    changed();
}

// Series.

std::size_t ChartModel::column(int series) const {
    return static_cast<std::size_t>(own_ ? series : design_.firstColumn + series);
}

void ChartModel::setFirstPoint(int series, int point) {
    extent(series).firstPoint = point;
    changed();
}

int ChartModel::lastPoint(int series) const {
    return static_cast<int>(points().count(column(series)));
}

void ChartModel::setLastPoint(int series, int last) {
    ownOrRun().cut(column(series), static_cast<std::size_t>(std::max(0, last)));
    changed();
}

void ChartModel::append(int series, double elapsed, double value) {
    RunPoints& points = ownOrRun();
    const std::size_t end = points.end(column(series));
    if (std::isnan(elapsed) || std::isnan(value) || (end > 0 && elapsed <= points.time(end - 1))) {
        return;
    }
    const std::size_t row = points.rowAt(elapsed);
    if (gapPending_) {
        points.markGap(row);
        gapPending_ = false;
    }
    points.set(column(series), row, value);
}

void ChartModel::setOwnPoints(std::unique_ptr<RunPoints> points) {
    revision_ += this->points().losses() + 1; // other points have other losses
    own_ = std::move(points);
    changed();
}

ChartModel::Rows ChartModel::drawnRows(int series) const {
    const RunPoints& all = points();
    const std::size_t to = std::min(all.end(column(series)), all.end(column(0)));
    const int skipped = std::max(0, firstPoint(series) - 1);
    return {std::min(to, all.rowOf(column(series), static_cast<std::size_t>(skipped))), to};
}

void ChartModel::setSensorCount(int count) {
    const int sensors = design_.series > 1 ? count : design_.series;
    if (sensors != sensors_) {
        sensors_ = sensors;
        changed();
    }
}

bool ChartModel::seriesVisible(int series) const {
    return seriesPresent(series) && look_.series[static_cast<std::size_t>(series)].shown;
}

void ChartModel::setSeriesShown(int series, bool shown) {
    look_.series[static_cast<std::size_t>(series)].shown = shown;
    changed();
}

// View.

ValueSpan ChartModel::xView() const {
    if (viewX_) {
        return *viewX_;
    }
    const AxisLook& x = look_.x;
    return {x.minimum, x.maximum - x.minimum >= kLeastXView ? x.maximum : x.minimum + 1};
}

void ChartModel::setXView(const ValueSpan& span) {
    viewX_ = limited(span, kLeastXView, kMostXView);
    changed();
}

void ChartModel::setYView(const ValueSpan& span) {
    const ValueSpan kept = limited(span, kLeastYView, kMostY);
    const auto minimum = static_cast<float>(kept.from);
    const auto maximum = static_cast<float>(kept.to);
    if (minimum < maximum) { // else finer than a float tells apart
        yMinimum_ = minimum;
        yMaximum_ = maximum;
        applyYPair();
        changed();
    }
}

void ChartModel::follow() {
    viewX_.reset();
    if (yMinimum_ < yMaximum_) {
        yMinimum_ = static_cast<float>(yHome_.from);
        yMaximum_ = static_cast<float>(yHome_.to);
        applyYPair();
    } else {
        yInForce_ = yHome_; // a pair that is out of order stays stored
    }
    changed();
}

void ChartModel::followX() {
    viewX_.reset();
    changed();
}

void ChartModel::viewWholeRun() {
    const RunPoints& all = points();
    std::size_t end = 0;
    for (int series = 0; series < seriesCount(); ++series) {
        end = std::max(end, drawnRows(series).to);
    }
    if (end > 0) {
        const double from = std::min(0.0, all.time(0));
        setXView({from, std::max(all.time(end - 1), from + 1)});
    }
}

void ChartModel::fitY() {
    const ValueSpan x = xView();
    const RunPoints& all = points();
    ValueRange range;
    for (int series = 0; series < seriesCount(); ++series) {
        const Rows rows = drawnRows(series);
        if (seriesVisible(series)) {
            range.add(all.range(column(series), std::max(rows.from, all.firstAt(x.from)),
                                std::min(rows.to, all.firstAt(std::nextafter(x.to, x.to + 1)))));
        }
    }
    if (range.empty()) {
        return;
    }
    const double size = static_cast<double>(range.greatest) - static_cast<double>(range.least);
    const double room = size > 0 ? size * kFitRoom : std::max(std::fabs(range.least) * kFitRoom, kFitRoom);
    setYView({range.least - room, range.greatest + room});
}

} // namespace drx9
