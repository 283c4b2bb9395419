#include "graphs/controls/ChartNotes.h"

#include "graphs/ChartTracer.h"
#include "graphs/controls/ChartPainter.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>

namespace drx9 {

ChartNotes::ChartNotes(const ChartModel& model, const ChartPainter& chart, const Theme& theme, char decimal)
    : model_(model)
    , chart_(chart)
    , theme_(theme)
    , font_(chart.font())
    , decimal_(decimal) {}

void ChartNotes::paintNote(QPainter& painter, const QRect& plot, const QString& note) const {
    if (note.isEmpty()) {
        return;
    }
    const QFontMetrics metrics(font_);
    const QString shown = metrics.elidedText(note, Qt::ElideRight, plot.width() - 20);
    const QRect box(plot.left() + 8, plot.top() + 6, metrics.horizontalAdvance(shown) + 12,
                    metrics.height() + 4);
    painter.fillRect(box, theme_.plot); // curves do not run through the words
    painter.setFont(font_);
    painter.setPen(theme_.warn);
    painter.drawText(box, Qt::AlignCenter, shown);
}

QPointF ChartNotes::place(const QRect& plot, double time, double value) const {
    const ChartCurves curves = chart_.curves(plot, 1);
    return {plot.left() + curves.xPixel(time), plot.top() + curves.yPixel(value)};
}

void ChartNotes::paintCross(QPainter& painter, const QPointF& at) const {
    painter.setPen(QPen(theme_.text, 1.5));
    painter.drawLine(at - QPointF(5, 5), at + QPointF(5, 5));
    painter.drawLine(at - QPointF(5, -5), at + QPointF(5, -5));
}

std::vector<QString> ChartNotes::tracerLines(const ChartTracer& tracer) const {
    std::vector<QString> lines{QString::fromStdString(tracer.text(decimal_))};
    if (tracer.pinned()) {
        lines.push_back(QString::fromStdString(tracer.differenceText(decimal_)));
    }
    return lines;
}

void ChartNotes::paintTracer(QPainter& painter, const QRect& plot, const ChartTracer& tracer) const {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const ValueSpan x = model_.xView();
    const ValueSpan y = model_.yView();
    const auto inView = [&x](const TracedPoint& point) { return point.time >= x.from && point.time <= x.to; };
    const auto inPlot = [&](const TracedPoint& point) {
        return inView(point) && point.value >= y.from && point.value <= y.to;
    };
    if (tracer.pinned() && inPlot(*tracer.pinned())) {
        paintCross(painter, place(plot, tracer.pinned()->time, tracer.pinned()->value));
    }
    if (tracer.point() && inView(*tracer.point())) {
        const QPointF point = place(plot, tracer.point()->time, tracer.point()->value);
        painter.setPen(QPen(theme_.line, 1, Qt::DashLine));
        painter.drawLine(QPointF(point.x(), plot.top()), QPointF(point.x(), plot.bottom()));
        painter.setPen(QPen(chart_.seriesColor(tracer.point()->series), 2));
        painter.setBrush(Qt::NoBrush);
        if (inPlot(*tracer.point())) {
            painter.drawEllipse(point, 4, 4);
        }
        paintWords(painter, plot, point, tracer);
    }
    painter.restore();
}

/// Beside the traced point, above it where there is room.
void ChartNotes::paintWords(QPainter& painter, const QRect& plot, const QPointF& point,
                            const ChartTracer& tracer) const {
    const std::vector<QString> lines = tracerLines(tracer);
    const QFontMetrics metrics(font_);
    int width = 0;
    for (const QString& line : lines) {
        width = std::max(width, metrics.horizontalAdvance(line));
    }
    QRectF box(0, 0, width + 16, metrics.height() * double(lines.size()) + 10);
    box.moveBottomRight(point + QPointF(-10, -16));
    box.moveTop(
        std::clamp(box.top(), plot.top() + 2.0, std::max(plot.top() + 2.0, plot.bottom() - box.height())));
    if (box.left() < plot.left()) {
        box.moveLeft(std::max<double>(plot.left(), std::min(point.x() + 10, plot.right() - box.width())));
    }
    painter.setPen(QPen(theme_.line, 1));
    painter.setBrush(theme_.plot);
    painter.drawRoundedRect(box, 4, 4);
    painter.setFont(font_);
    painter.setPen(theme_.text);
    QRectF row = box.adjusted(8, 5, -8, 0);
    row.setHeight(metrics.height());
    for (const QString& line : lines) {
        painter.drawText(row, Qt::AlignLeft | Qt::AlignVCenter, line);
        row.translate(0, metrics.height());
    }
}

} // namespace drx9
