#pragma once

#include "graphs/AxisTicks.h"
#include "graphs/ChartCurves.h"
#include "graphs/CurveInk.h"

#include <cstdint>
#include <vector>

namespace drx9 {

/// 0xffRRGGBB.
struct PlotColors {
    std::uint32_t ground;
    std::uint32_t grid;
    std::vector<std::uint32_t> series;
};

/// Ground, grid and curves of a plot as pixels. Remembers how far each curve was drawn, so that while the
/// chart's revision stays only the columns of new readings are painted again.
class PlotPixels {
public:
    struct Columns {
        int from = 0;
        int to = 0;
        [[nodiscard]] bool empty() const { return from >= to; }
    };
    struct Look {
        const AxisTicks& x;
        const AxisTicks& y;
        const PlotColors& colors;
        double scale; ///< device pixels to a unit
    };

    /// Where a picture `width` pixels wide, painted last at this revision, differs from the chart now.
    [[nodiscard]] Columns news(const ChartModel& model, const ChartCurves& curves, int width,
                               double scale) const;
    void paint(const PixelArea& area, const Columns& columns, const ChartModel& model,
               const ChartCurves& curves, const Look& look);

private:
    void paintBand(const PixelArea& band, int left, int width, const ChartModel& model,
                   const ChartCurves& curves, const Look& look);
    void paintCurve(const PixelArea& band, int left, int series, const ChartModel& model,
                    const ChartCurves& curves, const Look& look);

    CurveInk ink_;
    std::vector<std::uint32_t> band_; ///< some columns that lie close together while they are painted
    std::vector<std::size_t> drawn_;  ///< rows, by series
    bool thinned_ = false;
};

} // namespace drx9
