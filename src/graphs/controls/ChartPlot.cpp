#include "graphs/controls/ChartPlot.h"

#include "graphs/controls/ChartTickers.h"
#include "controls/Theme.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace drx9 {

namespace {
constexpr int kTopMargin = 12;
constexpr int kBottomMargin = 50;
constexpr int kLeftMargin = 56;
constexpr int kTitleOffset = 27;
constexpr double kSensorLine = 1.5;
constexpr double kAverageLine = 2;
const QString kXTitle = QStringLiteral("Elapsed Time ()");

QPen curvePen(const QColor& color, double width) {
    return {color, width, Qt::SolidLine, Qt::FlatCap, Qt::BevelJoin};
}
} // namespace

ChartPlot::ChartPlot(int seriesCount, double ySpacing, int decimals, QWidget* parent)
    : QCustomPlot(parent)
    , decimals_(decimals) {
    setFocusPolicy(Qt::NoFocus);
    setAttribute(Qt::WA_NoMousePropagation, false); // the chart opens its menu
    setPlottingHint(QCP::phFastPolylines, true);
    setPlottingHint(QCP::phCacheLabels, true);
    // The library keeps pictures of its own for each replot; we paint the window directly.
    connect(this, &QCustomPlot::afterReplot, this, [this] { mPaintBuffers.clear(); });
    setUpAxes(ySpacing);
    for (int i = 0; i < seriesCount; ++i) {
        series_.push_back({new ChartCurve(xAxis, yAxis), false, 0}); // owned by the plot
    }
    setMouseTracking(true);
}

void ChartPlot::setUpAxes(double ySpacing) {
    plotLayout()->setAutoMargins(QCP::msNone);
    plotLayout()->setMargins(QMargins());
    QCPAxisRect* rect = axisRect();
    rect->setAutoMargins(QCP::msLeft);
    rect->setMinimumMargins(QMargins(kLeftMargin, 0, 0, 0));
    xAxis->setTicker(QSharedPointer<ElapsedTicker>::create(60.0));
    yAxis->setTicker(QSharedPointer<SpacingTicker>::create(ySpacing));
    for (QCPAxis* axis : {xAxis, yAxis}) {
        axis->setTickLength(0, 7);
        axis->setSubTickLength(0, 4);
        axis->setTickLabelPadding(5);
        axis->grid()->setZeroLinePen(Qt::NoPen);
    }
    xAxis->setTickLabelPadding(3);
}

void ChartPlot::applyTheme(const Theme& theme) {
    axisRect()->setMargins(QMargins(kLeftMargin, kTopMargin, lastLabelRoom(fontMetrics()), kBottomMargin));
    textColor_ = theme.text;
    lineColor_ = theme.line;
    mutedColor_ = theme.muted;
    groundColor_ = theme.plot;
    setBackground(QBrush(theme.plot));
    for (QCPAxis* axis : {xAxis, yAxis}) {
        axis->setBasePen(QPen(theme.line));
        axis->setTickPen(QPen(theme.line));
        axis->setSubTickPen(QPen(theme.line));
        axis->setTickLabelColor(theme.muted);
        axis->setTickLabelFont(font());
        axis->grid()->setPen(QPen(theme.grid));
    }
    const bool sensors = series_.size() > 1;
    for (std::size_t i = 0; i < series_.size(); ++i) {
        const QColor color = sensors ? theme.sensor(static_cast<int>(i) + 1) : theme.text;
        series_[i].graph->setPen(curvePen(color, sensors ? kSensorLine : kAverageLine));
    }
    redrawAll();
}

void ChartPlot::setSeriesName(int series, const QString& name) {
    series_[static_cast<std::size_t>(series)].graph->setName(name);
}

bool ChartPlot::seriesShown(int series) const {
    return series_[static_cast<std::size_t>(series)].graph->visible();
}

void ChartPlot::setSeriesShown(int series, bool shown) {
    series_[static_cast<std::size_t>(series)].graph->setVisible(shown);
    redrawAll();
}

void ChartPlot::cut(int series, int count) {
    Series& cutSeries = series_[static_cast<std::size_t>(series)];
    const auto points = cutSeries.graph->data();
    int left = count;
    auto end = points->constBegin();
    for (; end != points->constEnd() && left > 0; ++end) {
        left -= std::isnan(end->value) ? 0 : 1;
    }
    if (end == points->constEnd()) {
        return;
    }
    if (count <= 0) {
        points->clear();
    } else {
        points->removeAfter((end - 1)->key);
    }
    cutSeries.broken = false;
    redrawAll();
}

void ChartPlot::append(int series, double elapsed, double value) {
    Series& target = series_[static_cast<std::size_t>(series)];
    const auto points = target.graph->data();
    if (!points->isEmpty()) {
        const double last = (points->constEnd() - 1)->key;
        if (elapsed <= last) {
            return;
        }
        if (target.broken) {
            target.graph->addData((last + elapsed) / 2, std::numeric_limits<double>::quiet_NaN());
        }
    }
    target.broken = false;
    target.graph->addData(elapsed, value);
}

void ChartPlot::breakCurves() {
    for (Series& series : series_) {
        series.broken = true;
    }
}

void ChartPlot::redrawAll() {
    marksStale_ = true;
    update();
}

void ChartPlot::showMarks() {
    marksStale_ = false;
    shownMarks_ = endMarks();
}

void ChartPlot::drawAppended() {
    if (!isVisible()) {
        return;
    }
    if (marksStale_) {
        update();
        return;
    }
    QRectF touched;
    for (Series& series : series_) {
        touched |= newLinesRect(series);
    }
    QRegion dirty(endMarksRect(shownMarks_));
    showMarks();
    dirty += endMarksRect(shownMarks_);
    dirty += touched.toAlignedRect().adjusted(-2, -2, 2, 2);
    update(dirty);
}

QRectF ChartPlot::newLinesRect(Series& series) const {
    const auto points = series.graph->data();
    const int count = points->size();
    QRectF touched;
    for (int i = std::max(1, series.drawn); i < count && series.graph->visible(); ++i) {
        const auto to = points->constBegin() + i;
        const auto from = to - 1;
        if (!std::isnan(from->value) && !std::isnan(to->value) && xAxis->range().contains(to->key)) {
            const QPointF a(xAxis->coordToPixel(from->key), yAxis->coordToPixel(from->value));
            const QPointF b(xAxis->coordToPixel(to->key), yAxis->coordToPixel(to->value));
            touched |= QRectF(a, b).normalized().adjusted(-1, -1, 1, 1);
        }
    }
    series.drawn = count;
    return touched & QRectF(axisRect()->rect());
}

void ChartPlot::setXRange(double lower, double upper) {
    const QCPRange range(lower, upper);
    if (xAxis->range() != range) {
        xAxis->setRange(range);
        redrawAll();
    }
}

void ChartPlot::setYRange(double lower, double upper) {
    const QCPRange range(lower, upper);
    if (lower < upper && yAxis->range() != range) {
        yAxis->setRange(range);
        redrawAll();
    }
}

void ChartPlot::resizeEvent(QResizeEvent*) {
    setViewport(rect());
    redrawAll();
}

void ChartPlot::hideEvent(QHideEvent* event) {
    QCustomPlot::hideEvent(event);
    tracer_.reset();
}

void ChartPlot::paintEvent(QPaintEvent* event) {
    QCPPainter painter(this);
    const QRect dirty = event->rect();
    painter.fillRect(dirty, groundColor_);
    for (const Series& series : series_) {
        series.graph->setStrip(dirty.left() - 3, dirty.right() + 3);
    }
    draw(&painter);
    painter.setClipping(false);
    if (marksStale_) {
        for (Series& series : series_) {
            series.drawn = series.graph->dataCount();
        }
        showMarks();
    }
    painter.setAntialiasing(false);
    if (dirty.bottom() > axisRect()->bottom()) {
        const QRect title(0, axisRect()->bottom() + kTitleOffset, axisRect()->right() + 1,
                          kBottomMargin - kTitleOffset);
        painter.setFont(font());
        painter.setPen(mutedColor_);
        painter.drawText(title, Qt::AlignRight | Qt::AlignTop, kXTitle);
    }
    painter.setRenderHint(QPainter::Antialiasing);
    paintEndMarks(painter);
    paintTracer(painter);
}

} // namespace drx9
