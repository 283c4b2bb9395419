// What lies over the curves: the dots and numbers at their ends, and the tracer.
#include "graphs/controls/ChartPlot.h"
#include "graphs/controls/ChartTickers.h"
#include "controls/Theme.h"

#include <algorithm>
#include <cmath>

namespace drx9 {

namespace {
constexpr double kNumberStep = 15; ///< least distance of two numbers
constexpr double kDotRadius = 3;
constexpr int kNumberOffset = 15;
constexpr int kNumberWidth = 12;
constexpr int kNumberPixels = 13;
constexpr double kLeaderGap = 6;
constexpr double kEdgeReach = 4;
constexpr double kTracerReach = 60;
constexpr double kWheelZoom = 0.85;

/// Spreads sorted positions so that neighbours are at least `step` apart, moving them as little as possible:
/// runs that are too tight are centred on their mean.
std::vector<double> spread(const std::vector<double>& sorted, double step) {
    struct Block {
        double sum;
        int count;
        [[nodiscard]] double mean() const { return sum / count; }
    };
    std::vector<Block> blocks;
    for (std::size_t i = 0; i < sorted.size(); ++i) {
        blocks.push_back({sorted[i] - step * static_cast<double>(i), 1});
        while (blocks.size() > 1 && blocks[blocks.size() - 2].mean() > blocks.back().mean()) {
            const Block last = blocks.back();
            blocks.pop_back();
            blocks.back().sum += last.sum;
            blocks.back().count += last.count;
        }
    }
    std::vector<double> result;
    for (const Block& block : blocks) {
        for (int i = 0; i < block.count; ++i) {
            result.push_back(block.mean() + step * static_cast<double>(result.size()));
        }
    }
    return result;
}
} // namespace

std::vector<ChartPlot::EndMark> ChartPlot::endMarks() const {
    // A value that ripples about the axis's end keeps its mark.
    const QRectF reach = QRectF(axisRect()->rect()).adjusted(-1, -kEdgeReach, 1, kEdgeReach);
    std::vector<EndMark> marks;
    for (std::size_t i = 0; i < series_.size(); ++i) {
        const QCPGraph* graph = series_[i].graph;
        if (!graph->visible() || graph->data()->isEmpty()) {
            continue;
        }
        const auto last = graph->data()->constEnd() - 1;
        const QPointF dot(xAxis->coordToPixel(last->key), yAxis->coordToPixel(last->value));
        if (xAxis->range().contains(last->key) && reach.contains(dot)) {
            marks.push_back({dot, 0, static_cast<int>(i)});
        }
    }
    std::sort(marks.begin(), marks.end(),
              [](const EndMark& a, const EndMark& b) { return a.dot.y() < b.dot.y(); });
    std::vector<double> ys;
    ys.reserve(marks.size());
    for (const EndMark& mark : marks) {
        ys.push_back(mark.dot.y());
    }
    const std::vector<double> spreadYs = spread(ys, kNumberStep);
    for (std::size_t i = 0; i < marks.size(); ++i) {
        marks[i].numberY = spreadYs[i];
    }
    return marks;
}

QRect ChartPlot::endMarksRect(const std::vector<EndMark>& marks) const {
    QRectF rect;
    for (const EndMark& mark : marks) {
        rect |= QRectF(mark.dot.x() - kDotRadius - 1, mark.dot.y() - kDotRadius - 1, 2 * kDotRadius + 2,
                       2 * kDotRadius + 2);
        if (series_.size() > 1) {
            rect |= QRectF(mark.dot.x(), mark.numberY - 9, kNumberOffset + kNumberWidth + 2, 18);
        }
    }
    return rect.toAlignedRect();
}

void ChartPlot::paintEndMarks(QPainter& painter) const {
    painter.setFont(fontOfSize(font(), kNumberPixels, true));
    for (const EndMark& mark : shownMarks_) {
        const QColor color = series_[static_cast<std::size_t>(mark.series)].graph->pen().color();
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
        painter.drawEllipse(mark.dot, kDotRadius, kDotRadius);
        if (series_.size() == 1) {
            continue;
        }
        const QPointF number(mark.dot.x() + kNumberOffset, mark.numberY);
        painter.setPen(QPen(lineColor_, 1));
        const QPointF leaderFrom(mark.dot.x() + kLeaderGap,
                                 mark.dot.y() + (mark.numberY - mark.dot.y()) * kLeaderGap / kNumberOffset);
        painter.drawLine(leaderFrom, number - QPointF(2, 0));
        painter.setPen(textColor_);
        painter.drawText(QRectF(number.x(), number.y() - 9, kNumberWidth, 18),
                         Qt::AlignLeft | Qt::AlignVCenter, QString::number(mark.series + 1));
    }
}

QString ChartPlot::tracerText() const {
    return elapsedLabel(tracer_->key) + QStringLiteral("   ") +
           series_[static_cast<std::size_t>(tracer_->series)].graph->name() + QStringLiteral(": ") +
           locale().toString(tracer_->value, 'f', decimals_);
}

QRect ChartPlot::tracerRect() const {
    const QRect area = axisRect()->rect();
    const int x = static_cast<int>(xAxis->coordToPixel(tracer_->key));
    const int width = fontMetrics().horizontalAdvance(tracerText()) + 32;
    return {x - width, area.top() - 1, 2 * width, area.height() + 2};
}

void ChartPlot::paintTracer(QPainter& painter) const {
    if (!tracer_ || !xAxis->range().contains(tracer_->key)) {
        return;
    }
    const QRectF area = axisRect()->rect();
    const QPointF point(xAxis->coordToPixel(tracer_->key), yAxis->coordToPixel(tracer_->value));
    painter.setPen(QPen(lineColor_, 1, Qt::DashLine));
    painter.drawLine(QPointF(point.x(), area.top()), QPointF(point.x(), area.bottom()));
    painter.setPen(QPen(series_[static_cast<std::size_t>(tracer_->series)].graph->pen().color(), 2));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(point, 4, 4);
    painter.setFont(font());
    const QString text = tracerText();
    QRectF box(0, 0, fontMetrics().horizontalAdvance(text) + 16, fontMetrics().height() + 10);
    box.moveBottomRight(point + QPointF(-10, -16));
    box.moveTop(std::max(box.top(), area.top() + 2));
    if (box.left() < area.left()) {
        box.moveLeft(point.x() + 10);
    }
    painter.setPen(QPen(lineColor_, 1));
    painter.setBrush(groundColor_);
    painter.drawRoundedRect(box, 4, 4);
    painter.setPen(textColor_);
    painter.drawText(box, Qt::AlignCenter, text);
}

void ChartPlot::setTracer(const std::optional<Tracer>& tracer) {
    QRegion dirty;
    if (tracer_) {
        dirty += tracerRect();
    }
    tracer_ = tracer;
    if (tracer_) {
        dirty += tracerRect();
    }
    if (!dirty.isEmpty()) {
        update(dirty);
    }
}

std::optional<ChartPlot::Tracer> ChartPlot::nearestPoint(const QPointF& position) const {
    std::optional<Tracer> best;
    double least = kTracerReach;
    const double key = xAxis->pixelToCoord(position.x());
    for (std::size_t i = 0; i < series_.size(); ++i) {
        const QCPGraph* graph = series_[i].graph;
        if (!graph->visible() || graph->data()->isEmpty()) {
            continue;
        }
        auto at = graph->data()->findBegin(key); // the point at or before the key
        const auto next = at + 1;
        if (next != graph->data()->constEnd() && std::fabs(next->key - key) < std::fabs(at->key - key)) {
            at = next;
        }
        if (std::isnan(at->value)) {
            continue;
        }
        const QPointF pixel(xAxis->coordToPixel(at->key), yAxis->coordToPixel(at->value));
        const double distance = std::hypot(pixel.x() - position.x(), pixel.y() - position.y());
        if (distance < least) {
            least = distance;
            best = Tracer{static_cast<int>(i), at->key, at->value};
        }
    }
    return best;
}

std::optional<ChartPlot::Tracer> ChartPlot::newestPointInView() const {
    for (std::size_t i = 0; i < series_.size(); ++i) {
        const QCPGraph* graph = series_[i].graph;
        auto at = graph->data()->findEnd(xAxis->range().upper, false);
        while (graph->visible() && at != graph->data()->constBegin() && (--at)->key >= xAxis->range().lower) {
            if (!std::isnan(at->value)) {
                return Tracer{static_cast<int>(i), at->key, at->value};
            }
        }
    }
    return {};
}

void ChartPlot::moveTracer(int step) {
    if (!tracer_) {
        setTracer(newestPointInView());
        return;
    }
    const auto points = series_[static_cast<std::size_t>(tracer_->series)].graph->data();
    const auto first = points->constBegin();
    qsizetype index = points->findBegin(tracer_->key, false) - first + step;
    while (index >= 0 && index < points->size() && std::isnan((first + index)->value)) {
        index += step;
    }
    if (index >= 0 && index < points->size()) {
        const auto at = first + index;
        setTracer(Tracer{tracer_->series, at->key, at->value});
    }
}

// The mouse.

Qt::Orientations ChartPlot::orientationsAt(const QPointF& position) const {
    const QRect area = axisRect()->rect();
    if (position.y() > area.bottom()) {
        return Qt::Horizontal;
    }
    return position.x() < area.left() ? Qt::Vertical : Qt::Horizontal | Qt::Vertical;
}

void ChartPlot::emitViewChanges(const QCPRange& x, const QCPRange& y) {
    if (xAxis->range() != x) {
        emit xViewChanged();
    }
    if (yAxis->range() != y) {
        emit yViewChanged();
    }
    redrawAll();
}

void ChartPlot::wheelEvent(QWheelEvent* event) {
    const double factor = std::pow(kWheelZoom, event->angleDelta().y() / 120.0);
    const Qt::Orientations where = orientationsAt(event->position());
    const QCPRange x = xAxis->range();
    const QCPRange y = yAxis->range();
    if (where.testFlag(Qt::Horizontal)) {
        xAxis->scaleRange(factor, xAxis->pixelToCoord(event->position().x()));
    }
    if (where.testFlag(Qt::Vertical)) {
        yAxis->scaleRange(factor, yAxis->pixelToCoord(event->position().y()));
    }
    emitViewChanges(x, y);
    event->accept();
}

void ChartPlot::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        dragging_ = true;
        dragX_ = xAxis->range();
        dragY_ = yAxis->range();
        mMousePressPos = event->pos();
        setTracer(std::nullopt);
    }
    event->ignore(); // the chart takes the focus
}

void ChartPlot::mouseMoveEvent(QMouseEvent* event) {
    if (!dragging_) {
        setTracer(nearestPoint(event->position()));
        return;
    }
    const QPointF moved = event->position() - mMousePressPos;
    if (moved.manhattanLength() < 3) {
        return;
    }
    const Qt::Orientations where = orientationsAt(mMousePressPos);
    const QRect area = axisRect()->rect();
    const QCPRange x = xAxis->range();
    const QCPRange y = yAxis->range();
    if (where.testFlag(Qt::Horizontal)) {
        const double shift = -moved.x() / area.width() * dragX_.size();
        xAxis->setRange(dragX_.lower + shift, dragX_.upper + shift);
    }
    if (where.testFlag(Qt::Vertical)) {
        const double shift = moved.y() / area.height() * dragY_.size();
        yAxis->setRange(dragY_.lower + shift, dragY_.upper + shift);
    }
    emitViewChanges(x, y);
}

void ChartPlot::mouseReleaseEvent(QMouseEvent* event) {
    dragging_ = false;
    event->accept();
}

void ChartPlot::mouseDoubleClickEvent(QMouseEvent* event) {
    emit followWanted();
    event->accept();
}

void ChartPlot::leaveEvent(QEvent* event) {
    QCustomPlot::leaveEvent(event);
    setTracer(std::nullopt);
}

void ChartPlot::pan(Qt::Orientation orientation, double share) {
    const QCPRange x = xAxis->range();
    const QCPRange y = yAxis->range();
    QCPAxis* axis = orientation == Qt::Horizontal ? xAxis : yAxis;
    axis->moveRange(axis->range().size() * share);
    emitViewChanges(x, y);
}

void ChartPlot::zoom(double factor, bool alsoX) {
    const QCPRange x = xAxis->range();
    const QCPRange y = yAxis->range();
    if (alsoX) {
        xAxis->scaleRange(factor);
    }
    yAxis->scaleRange(factor);
    emitViewChanges(x, y);
}

} // namespace drx9
