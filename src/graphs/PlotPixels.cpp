#include "graphs/PlotPixels.h"

#include <algorithm>
#include <cmath>

namespace drx9 {

namespace {
constexpr double kMostThin = 2; ///< device pixels
constexpr double kThinReach = 2;
constexpr int kBand = 64; ///< columns; those of the highest plots fit the processor's cache

void fill(const PixelArea& area, int left, int top, int width, int height, std::uint32_t color) {
    const int from = std::max(0, left);
    const int to = std::min(area.width, left + width);
    for (int row = std::max(0, top); row < std::min(area.height, top + height) && from < to; ++row) {
        std::fill_n(area.pixels + static_cast<std::ptrdiff_t>(row) * area.stride + from, to - from, color);
    }
}

double lineWidth(const ChartModel& model, int series, double scale) {
    return model.look().series[static_cast<std::size_t>(series)].width * scale;
}
} // namespace

PlotPixels::Columns PlotPixels::news(const ChartModel& model, const ChartCurves& curves, int width,
                                     double scale) const {
    if (drawn_.empty() || thinned_ != curves.thinned()) {
        return {0, width};
    }
    double from = width;
    double to = 0;
    for (int series = 0; series < model.seriesCount(); ++series) {
        const ChartModel::Rows rows = model.drawnRows(series);
        const std::size_t drawn = drawn_[static_cast<std::size_t>(series)];
        if (rows.to > drawn) {
            const std::size_t first = drawn > rows.from ? drawn - 1 : rows.from;
            const double reach = thinned_ ? kThinReach : lineWidth(model, series, scale) / 2 + 1;
            from = std::min(from, curves.xPixel(model.points().time(first)) - reach);
            to = std::max(to, curves.xPixel(model.points().time(rows.to - 1)) + reach + 1);
        }
    }
    return {static_cast<int>(std::clamp<double>(std::floor(from), 0, width)),
            static_cast<int>(std::clamp<double>(std::ceil(to), 0, width))};
}

void PlotPixels::paint(const PixelArea& area, const Columns& columns, const ChartModel& model,
                       const ChartCurves& curves, const Look& look) {
    drawn_.clear();
    thinned_ = curves.thinned();
    for (int series = 0; series < model.seriesCount(); ++series) {
        drawn_.push_back(model.drawnRows(series).to);
    }
    band_.resize(static_cast<std::size_t>(area.height) * kBand);
    for (int left = columns.from; left < columns.to; left += kBand) {
        const PixelArea band{band_.data(), std::min(kBand, columns.to - left), area.height, kBand};
        paintBand(band, left, area.width, model, curves, look);
        for (int row = 0; row < area.height; ++row) {
            std::copy_n(band.pixels + static_cast<std::ptrdiff_t>(row) * kBand, band.width,
                        area.pixels + static_cast<std::ptrdiff_t>(row) * area.stride + left);
        }
    }
}

/// Some columns of a plot that is `width` pixels wide, from `left` on.
void PlotPixels::paintBand(const PixelArea& band, int left, int width, const ChartModel& model,
                           const ChartCurves& curves, const Look& look) {
    fill(band, 0, 0, band.width, band.height, look.colors.ground);
    const int line = std::max(1, static_cast<int>(look.scale));
    const ValueSpan view = model.xView();
    for (const double time : look.x.grid) {
        const double x = std::floor((time - view.from) / view.size() * width);
        fill(band, std::min(static_cast<int>(x), width - line) - left, 0, line, band.height,
             look.colors.grid);
    }
    for (const double value : look.y.grid) {
        fill(band, 0, static_cast<int>(std::floor(curves.yPixel(value))), band.width, line, look.colors.grid);
    }
    for (int series = 0; series < model.seriesCount(); ++series) {
        if (model.seriesVisible(series)) {
            paintCurve(band, left, series, model, curves, look);
        }
    }
}

void PlotPixels::paintCurve(const PixelArea& band, int left, int series, const ChartModel& model,
                            const ChartCurves& curves, const Look& look) {
    const double width = lineWidth(model, series, look.scale);
    const int from = thinned_ ? left - 1 : left; // a line of two columns covers what the one before it does
    std::vector<CurvePoint> curve = curves.curve(series, from, left + band.width, width / 2 + 1);
    for (CurvePoint& point : curve) {
        point.x -= left;
    }
    const std::uint32_t color = look.colors.series[static_cast<std::size_t>(series)];
    if (thinned_) {
        ink_.thinLine(band, curve, static_cast<int>(std::clamp(look.scale, 1.0, kMostThin)), color);
    } else {
        ink_.line(band, curve, width, color);
    }
}

} // namespace drx9
