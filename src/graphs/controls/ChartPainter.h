#pragma once

#include "controls/Theme.h"
#include "graphs/AxisTicks.h"
#include "graphs/ChartCurves.h"
#include "graphs/PlotPixels.h"
#include "graphs/controls/ChartLayout.h"

#include <QFont>
#include <QImage>
#include <QRect>

class QPainter;

namespace drx9 {

/// The chart's pixels without end marks, kept between two drawings: a drawing at the same revision adds only
/// what is new. Belongs to one chart in one theme, font and locale.
struct ChartSurface {
    QImage pixels;
    std::size_t revision = 0;
    ChartLayout layout;
    PlotPixels plot;
    QRect marks; ///< where the end marks were drawn
};

/// Draws a chart: title, legend, axes, curves and their end marks. Onto a screen or a picture of pixels each
/// curve is drawn by CurveInk, else as one polyline.
class ChartPainter {
public:
    ChartPainter(const ChartModel& model, const Theme& theme, const QFont& font, char decimal);

    [[nodiscard]] ChartLayout layout(const QRect& rect) const;
    /// Curves for the plot in device pixels.
    [[nodiscard]] ChartCurves curves(const QRect& plot, double scale) const;

    /// With a surface the device is a picture of `scale` device pixels to a unit; without one, lines are
    /// drawn as lines. Returns where the plot lies.
    QRect paint(QPainter& painter, const QRect& rect, double scale, ChartSurface* surface);
    /// Where a drawing in `rect` would differ from the last one on the surface.
    [[nodiscard]] QRect news(const QRect& rect, double scale, const ChartSurface& surface) const;

    [[nodiscard]] QColor seriesColor(int series) const;
    /// Of labels and legend.
    [[nodiscard]] const QFont& font() const { return font_; }

private:
    void paintHeader(QPainter& painter, const ChartLayout& layout) const;
    void paintEntry(QPainter& painter, const QRect& rect, int series) const;
    void renew(const QRect& rect, double scale, ChartSurface& surface);
    void paintPlot(const PlotPixels::Columns& columns, const QRect& plot, double scale,
                   const ChartCurves& curves, ChartSurface& surface) const;
    [[nodiscard]] QRect marksRect(const QRect& plot, const ChartCurves& curves, double scale) const;
    void paintLines(QPainter& painter, const QRect& plot, const ChartCurves& curves) const;
    void paintAxes(QPainter& painter, const QRect& rect, const QRect& plot, double scale) const;
    void paintYLabels(QPainter& painter, const QRect& plot) const;
    void paintXLabels(QPainter& painter, const QRect& plot) const;
    void paintEnds(QPainter& painter, const QRect& plot, const ChartCurves& curves, double scale) const;
    void findTicks(const QRect& plot);

    const ChartModel& model_;
    Theme theme_;
    QFont font_;
    char decimal_;
    AxisTicks x_;
    AxisTicks y_;
};

} // namespace drx9
