#include "graphs/ChartTracer.h"

#include "graphs/AxisTicks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <limits>

namespace drx9 {

namespace {
constexpr double kReach = 60; ///< pixels along the time axis

std::string withSign(double value, int decimals, char decimal) {
    std::array<char, 400> digits{};
    std::snprintf(digits.data(), digits.size(), "%+.*f", decimals, value);
    std::string text = digits.data();
    std::replace(text.begin(), text.end(), '.', decimal);
    return text;
}
} // namespace

std::optional<TracedPoint> ChartTracer::at(int series, std::size_t row) const {
    const float value = model_.points().value(model_.column(series), row);
    if (std::isnan(value)) {
        return {};
    }
    return TracedPoint{series, model_.points().time(row), value};
}

void ChartTracer::moveTo(const ChartCurves& curves, double x, double y) {
    const RunPoints& points = model_.points();
    const ValueSpan view = model_.xView();
    point_.reset();
    double least = std::numeric_limits<double>::infinity();
    // In the few pixels' worth of readings around the place the nearest counts, of each series.
    const double perPixel = curves.timeAt(1) - curves.timeAt(0);
    const double time = curves.timeAt(x);
    const std::size_t middle = points.firstAt(time);
    const std::size_t from =
        std::min(points.firstAt(time - 2 * perPixel), middle - std::min<std::size_t>(middle, 1));
    const std::size_t to = std::max(points.firstAt(time + 2 * perPixel), std::min(middle + 1, points.rows()));
    for (int series = 0; series < model_.seriesCount(); ++series) {
        const ChartModel::Rows drawn = model_.drawnRows(series);
        for (std::size_t row = std::max(from, drawn.from); row < std::min(to, drawn.to); ++row) {
            const std::optional<TracedPoint> point = at(series, row);
            if (!model_.seriesVisible(series) || !point || point->time < view.from || point->time > view.to) {
                continue;
            }
            const double aside = curves.xPixel(point->time) - x;
            const double distance = std::hypot(aside, curves.yPixel(point->value) - y);
            if (std::fabs(aside) <= kReach && distance < least) {
                least = distance;
                point_ = point;
            }
        }
    }
}

std::optional<TracedPoint> ChartTracer::newestInView() const {
    const ValueSpan view = model_.xView();
    const std::size_t end = model_.points().firstAt(std::nextafter(view.to, view.to + 1));
    for (int series = 0; series < model_.seriesCount(); ++series) {
        const ChartModel::Rows drawn = model_.drawnRows(series);
        std::size_t row = std::min(drawn.to, end);
        while (model_.seriesVisible(series) && row > drawn.from &&
               model_.points().time(row - 1) >= view.from) {
            --row;
            if (const std::optional<TracedPoint> point = at(series, row)) {
                return point;
            }
        }
    }
    return {};
}

void ChartTracer::step(int readings) {
    if (!point_) {
        point_ = newestInView();
        return;
    }
    const ChartModel::Rows drawn = model_.drawnRows(point_->series);
    std::size_t row = model_.points().firstAt(point_->time);
    const int direction = readings < 0 ? -1 : 1;
    for (int left = std::abs(readings); left > 0;) {
        if (direction < 0 ? row <= drawn.from : row + 1 >= drawn.to) {
            return;
        }
        row = direction < 0 ? row - 1 : row + 1;
        if (const std::optional<TracedPoint> point = at(point_->series, row)) {
            point_ = point;
            --left;
        }
    }
}

/// The series' drawn reading nearest to a time, by rows.
std::optional<TracedPoint> ChartTracer::nearest(int series, double time) const {
    const ChartModel::Rows drawn = model_.drawnRows(series);
    const std::size_t row = model_.points().firstAt(time);
    for (std::size_t step = 0; step <= row || row + step < drawn.to; ++step) {
        for (const std::size_t candidate : {row - std::min(step, row), row + step}) {
            const bool inside = candidate >= drawn.from && candidate < drawn.to;
            if (const std::optional<TracedPoint> point = inside ? at(series, candidate) : std::nullopt) {
                return point;
            }
        }
    }
    return {};
}

std::optional<TracedPoint> ChartTracer::beside(const TracedPoint& point, int direction) const {
    for (int series = point.series + direction; series >= 0 && series < model_.seriesCount();
         series += direction) {
        const std::optional<TracedPoint> found =
            model_.seriesVisible(series) ? nearest(series, point.time) : std::nullopt;
        if (found) {
            return found;
        }
    }
    return {};
}

void ChartTracer::stepSeries(int direction) {
    if (!point_) {
        point_ = newestInView();
    } else if (const std::optional<TracedPoint> other = beside(*point_, direction)) {
        point_ = other;
    }
}

void ChartTracer::leaveHidden() {
    if (point_ && !model_.seriesVisible(point_->series)) {
        const std::optional<TracedPoint> below = beside(*point_, 1);
        point_ = below ? below : beside(*point_, -1);
    }
    if (pin_ && !model_.seriesVisible(pin_->series)) {
        pin_.reset();
    }
}

std::string ChartTracer::text(char decimal) const {
    if (!point_) {
        return {};
    }
    const std::string value = "%." + std::to_string(model_.design().decimals) + "f";
    return preciseElapsedText(point_->time, "%H:%M:%S", decimal) + "   " +
           model_.look().series[static_cast<std::size_t>(point_->series)].label + ": " +
           axisValueText(point_->value, value, decimal);
}

std::string ChartTracer::differenceText(char decimal) const {
    if (!point_ || !pin_) {
        return {};
    }
    const int decimals = model_.design().decimals;
    const double seconds = point_->time - pin_->time;
    const double value = point_->value - pin_->value;
    std::string text = withSign(seconds, 3, decimal) + " s, " + withSign(value, decimals, decimal);
    if (seconds != 0) {
        text += ", " + withSign(value / seconds, decimals + 2, decimal) + " per s";
    }
    return text;
}

} // namespace drx9
