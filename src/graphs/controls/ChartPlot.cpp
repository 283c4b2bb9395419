#include "graphs/controls/ChartPlot.h"

#include "graphs/controls/ChartTickers.h"
#include "util/controls/Theme.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

namespace drx9 {

namespace {
constexpr int kTopMargin = 8;
constexpr int kRightMargin = 36; ///< keeps the last time label whole
constexpr int kBottomMargin = 50;
constexpr int kLeftMargin = 56;
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
    setPlottingHint(QCP::phFastPolylines, true);
    setPlottingHint(QCP::phCacheLabels, true);
    layer(QStringLiteral("overlay"))->setMode(QCPLayer::lmLogical); // one picture instead of two
    setUpAxes(ySpacing);
    for (int i = 0; i < seriesCount; ++i) {
        QCPGraph* graph = addGraph();
        graph->setAdaptiveSampling(true);
        graph->setSelectable(QCP::stNone);
        series_.push_back({graph, false, 0});
    }
    connect(this, &QCustomPlot::afterReplot, this, &ChartPlot::noteDrawn);
    setMouseTracking(true);
}

void ChartPlot::setUpAxes(double ySpacing) {
    plotLayout()->setAutoMargins(QCP::msNone);
    plotLayout()->setMargins(QMargins());
    QCPAxisRect* rect = axisRect();
    rect->setAutoMargins(QCP::msLeft);
    rect->setMargins(QMargins(kLeftMargin, kTopMargin, kRightMargin, kBottomMargin));
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
    pictureStale_ = true;
    if (isVisible()) {
        replot(rpQueuedReplot);
    }
}

void ChartPlot::noteDrawn() {
    pictureStale_ = false;
    for (Series& series : series_) {
        series.drawn = series.graph->dataCount();
    }
    shownMarks_ = endMarks();
}

void ChartPlot::drawAppended() {
    if (!isVisible()) {
        pictureStale_ = true;
        return;
    }
    if (pictureStale_ || mPaintBuffers.size() != 1) {
        redrawAll();
        return;
    }
    QRectF touched;
    {
        const auto buffer = mPaintBuffers.first();
        const std::unique_ptr<QCPPainter> painter(buffer->startPainting());
        painter->setClipRect(axisRect()->rect());
        painter->setAntialiasing(true);
        for (Series& series : series_) {
            touched |= drawNewLines(*painter, series);
        }
        painter->end();
        buffer->donePainting();
    }
    QRegion dirty(endMarksRect(shownMarks_));
    shownMarks_ = endMarks();
    dirty += endMarksRect(shownMarks_);
    dirty += touched.toAlignedRect().adjusted(-2, -2, 2, 2);
    update(dirty);
}

QRectF ChartPlot::drawNewLines(QCPPainter& painter, Series& series) {
    const auto points = series.graph->data();
    const int count = points->size();
    QRectF touched;
    if (series.graph->visible()) {
        painter.setPen(series.graph->pen());
        for (int i = std::max(1, series.drawn); i < count; ++i) {
            const auto to = points->constBegin() + i;
            const auto from = to - 1;
            if (std::isnan(from->value) || std::isnan(to->value) || !xAxis->range().contains(to->key)) {
                continue;
            }
            const QPointF a(xAxis->coordToPixel(from->key), yAxis->coordToPixel(from->value));
            const QPointF b(xAxis->coordToPixel(to->key), yAxis->coordToPixel(to->value));
            painter.drawLine(QLineF(a, b));
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

void ChartPlot::showEvent(QShowEvent* event) {
    QCustomPlot::showEvent(event);
    redrawAll();
}

void ChartPlot::hideEvent(QHideEvent* event) {
    QCustomPlot::hideEvent(event);
    tracer_.reset();
    mPaintBuffers.clear();
    pictureStale_ = true;
}

void ChartPlot::paintEvent(QPaintEvent* event) {
    QCustomPlot::paintEvent(event);
    QPainter painter(this);
    if (event->rect().bottom() > axisRect()->bottom()) {
        const QRect title(0, height() - kBottomMargin / 2 - 2, width() - kRightMargin, kBottomMargin / 2);
        painter.setPen(mutedColor_);
        painter.drawText(title, Qt::AlignRight | Qt::AlignTop, kXTitle);
    }
    painter.setRenderHint(QPainter::Antialiasing);
    paintEndMarks(painter);
    paintTracer(painter);
}

} // namespace drx9
