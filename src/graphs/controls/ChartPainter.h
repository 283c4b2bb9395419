#pragma once

#include "controls/Theme.h"
#include "graphs/AxisTicks.h"
#include "graphs/ChartCurves.h"
#include "graphs/CurveInk.h"

#include <QFont>
#include <QImage>
#include <QRect>

#include <vector>

class QPainter;

namespace drx9 {

class ChartTracer;

/// Where the parts of a chart lie in its rectangle. The legend is right of the title, or on a second line
/// where both do not fit one.
struct ChartLayout {
    QRect title;
    std::vector<QRect> legend; ///< by series; empty for one without an entry
    QRect plot;                ///< within the axes
};

/// Memory for the plot's pixels and the inking of curves, kept between two drawings.
struct ChartSurface {
    QImage pixels;
    CurveInk ink;
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
    void paintNote(QPainter& painter, const QRect& plot, const QString& note) const;
    void paintTracer(QPainter& painter, const QRect& plot, const ChartTracer& tracer) const;

    [[nodiscard]] QColor seriesColor(int series) const;

private:
    [[nodiscard]] QFont labelFont() const;
    void paintHeader(QPainter& painter, const ChartLayout& layout) const;
    void paintEntry(QPainter& painter, const QRect& rect, int series) const;
    void paintPixels(QPainter& painter, const QRect& plot, const ChartCurves& curves, double scale,
                     ChartSurface& surface);
    void paintLines(QPainter& painter, const QRect& plot, const ChartCurves& curves) const;
    void paintAxes(QPainter& painter, const QRect& plot) const;
    void paintXLabels(QPainter& painter, const QRect& plot) const;
    void paintEnds(QPainter& painter, const QRect& plot, const ChartCurves& curves, double scale) const;
    void paintCross(QPainter& painter, const QPointF& at) const;
    [[nodiscard]] std::vector<QString> tracerLines(const ChartTracer& tracer) const;
    [[nodiscard]] QPointF place(const QRect& plot, double time, double value) const;
    void findTicks(const QRect& plot);

    const ChartModel& model_;
    Theme theme_;
    QFont font_;
    char decimal_;
    AxisTicks x_;
    AxisTicks y_;
};

} // namespace drx9
