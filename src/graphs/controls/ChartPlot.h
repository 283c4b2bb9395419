#pragma once

#include "graphs/controls/ChartCurve.h"

#include <optional>
#include <vector>

namespace drx9 {

struct Theme;

/// The drawing of a strip chart: axes, grid, curves with a dot and a number at their ends, tracer, and what
/// the mouse does to the view. Time in elapsed seconds.
///
/// The whole run is kept. There is no picture in memory beside the window's own: painting draws just the
/// dirty strip, so a new point costs the repaint of its own line, and a hidden chart costs nothing.
class ChartPlot : public QCustomPlot {
    Q_OBJECT
public:
    ChartPlot(int seriesCount, double ySpacing, int decimals, QWidget* parent);

    // Data. Series count from 0 here.

    /// Keeps the first `count` points.
    void cut(int series, int count);
    void append(int series, double elapsed, double value);
    /// The curves break before the next point.
    void breakCurves();
    [[nodiscard]] int seriesCount() const { return static_cast<int>(series_.size()); }
    [[nodiscard]] bool seriesShown(int series) const;
    void setSeriesShown(int series, bool shown);
    void setSeriesName(int series, const QString& name);
    /// Brings what was appended to the screen.
    void drawAppended();

    // Look.

    void applyTheme(const Theme& theme);
    void setXRange(double lower, double upper);
    void setYRange(double lower, double upper);
    /// Paints the whole chart anew, later and once.
    void redrawAll();

    // View by keys.

    void pan(Qt::Orientation orientation, double share); ///< share of the visible range
    void zoom(double factor, bool alsoX);
    void moveTracer(int step); ///< points

signals:
    /// The operator changed the axis on the chart itself.
    void xViewChanged();
    void yViewChanged();
    void followWanted();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    struct Series {
        ChartCurve* graph = nullptr;
        bool broken = false;
        int drawn = 0; ///< points that were asked to be painted
    };
    struct EndMark {
        QPointF dot;
        double numberY = 0;
        int series = 0;
    };
    struct Tracer {
        int series = 0;
        double key = 0;
        double value = 0;
    };

    void setUpAxes(double ySpacing);
    [[nodiscard]] QRectF newLinesRect(Series& series) const;
    void showMarks();
    [[nodiscard]] std::vector<EndMark> endMarks() const;
    [[nodiscard]] QRect endMarksRect(const std::vector<EndMark>& marks) const;
    void paintEndMarks(QPainter& painter) const;
    void paintTracer(QPainter& painter) const;
    [[nodiscard]] QRect tracerRect() const;
    [[nodiscard]] QString tracerText() const;
    [[nodiscard]] std::optional<Tracer> nearestPoint(const QPointF& position) const;
    [[nodiscard]] std::optional<Tracer> newestPointInView() const;
    void setTracer(const std::optional<Tracer>& tracer);
    [[nodiscard]] Qt::Orientations orientationsAt(const QPointF& position) const;
    void emitViewChanges(const QCPRange& x, const QCPRange& y);

    std::vector<Series> series_;
    std::vector<EndMark> shownMarks_;
    std::optional<Tracer> tracer_;
    int decimals_;
    QCPRange dragX_;
    QCPRange dragY_;
    bool dragging_ = false;
    bool marksStale_ = true;
    QColor textColor_;
    QColor lineColor_;
    QColor mutedColor_;
    QColor groundColor_;
};

} // namespace drx9
