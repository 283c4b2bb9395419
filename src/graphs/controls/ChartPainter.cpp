#include "graphs/controls/ChartPainter.h"

#include "graphs/EndMarks.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace drx9 {

using chartMeasure::kSwatch;
using chartMeasure::kSwatchGap;
using chartMeasure::kTick;

namespace {
constexpr double kWidest = 1000; ///< that a label can be
constexpr int kSmallTick = 4;
constexpr double kDot = 3;
constexpr int kNumberOffset = 15;
constexpr int kNumberPixels = 13;
constexpr double kNumberStep = 15;
constexpr double kLeaderGap = 6;
constexpr int kMarkRoom = 44; ///< right of a curve's end, for dot and number
constexpr int kMarkReach = 9;

std::uint32_t rgb(const QColor& color) {
    return 0xff000000U | (color.rgb() & 0xffffffU);
}

/// Whether the surface holds this chart's pixels as they were before readings came.
bool holds(const ChartSurface& surface, const ChartModel& model, const QRect& rect, double scale) {
    return surface.revision == model.revision() && surface.pixels.size() == (rect.size() * scale) &&
           surface.pixels.devicePixelRatio() == scale;
}

/// The plot in device pixels of a picture that begins at the chart's corner.
QRect deviceRect(const QRect& plot, const QRect& rect, double scale) {
    // Down: the axis lines begin where the plot ends, and keep all of their pixels.
    const auto device = [scale](int pixel) { return static_cast<int>(std::floor(pixel * scale)); };
    const QRect inside = plot.translated(-rect.topLeft());
    const QPoint corner(device(inside.left()), device(inside.top()));
    return {corner,
            QPoint(device(inside.left() + inside.width()) - 1, device(inside.top() + inside.height()) - 1)};
}
} // namespace

ChartPainter::ChartPainter(const ChartModel& model, const Theme& theme, const QFont& font, char decimal)
    : model_(model)
    , theme_(theme)
    , font_(font)
    , decimal_(decimal) {
    if (model.look().fontPixels > 0) {
        font_.setPixelSize(model.look().fontPixels);
    }
}

QColor ChartPainter::seriesColor(int series) const {
    const std::optional<std::uint32_t>& own = model_.look().series[static_cast<std::size_t>(series)].color;
    if (own) {
        return QColor::fromRgb(*own);
    }
    return model_.seriesCount() > 1 ? theme_.sensor(series + 1) : theme_.text;
}

ChartLayout ChartPainter::layout(const QRect& rect) const {
    return ChartLayouter(model_, font_, decimal_).layout(rect);
}

ChartCurves ChartPainter::curves(const QRect& plot, double scale) const {
    return {model_, static_cast<int>(std::lround(plot.width() * scale)),
            static_cast<int>(std::lround(plot.height() * scale))};
}

void ChartPainter::findTicks(const QRect& plot) {
    const ChartLayouter rooms(model_, font_, decimal_);
    x_ = axisTicks(model_.look().x, model_.xView(), rooms.timeRoom(plot.width()));
    y_ = axisTicks(model_.look().y, model_.yView(), rooms.valueRoom(plot.height()));
}

QRect ChartPainter::paint(QPainter& painter, const QRect& rect, double scale, ChartSurface* surface) {
    if (surface != nullptr) {
        renew(rect, scale, *surface);
        painter.drawImage(rect.topLeft(), surface->pixels);
        const ChartCurves shown = curves(surface->layout.plot, scale);
        surface->marks = marksRect(surface->layout.plot, shown, scale);
        paintEnds(painter, surface->layout.plot, shown, scale);
        return surface->layout.plot;
    }
    const ChartLayout parts = layout(rect);
    const ChartCurves shown = curves(parts.plot, scale);
    findTicks(parts.plot);
    painter.fillRect(rect, theme_.plot);
    paintHeader(painter, parts);
    paintAxes(painter, rect, parts.plot, scale);
    paintLines(painter, parts.plot, shown);
    paintEnds(painter, parts.plot, shown, scale);
    return parts.plot;
}

/// Brings the surface up to date: what is new of the curves, or all.
void ChartPainter::renew(const QRect& rect, double scale, ChartSurface& surface) {
    if (holds(surface, model_, rect, scale)) {
        const ChartCurves shown = curves(surface.layout.plot, scale);
        const int width = deviceRect(surface.layout.plot, rect, scale).width();
        const PlotPixels::Columns columns = surface.plot.news(model_, shown, width, scale);
        if (!columns.empty()) {
            findTicks(surface.layout.plot);
            paintPlot(columns, deviceRect(surface.layout.plot, rect, scale), scale, shown, surface);
        }
        return;
    }
    surface.revision = model_.revision();
    surface.layout = layout(rect);
    findTicks(surface.layout.plot);
    if (surface.pixels.size() != rect.size() * scale) {
        surface.pixels = QImage(rect.size() * scale, QImage::Format_RGB32);
    }
    const QRect plot = deviceRect(surface.layout.plot, rect, scale);
    surface.pixels.setDevicePixelRatio(1);
    for (const QRect& beside : QRegion(surface.pixels.rect()) - plot) {
        QPainter(&surface.pixels).fillRect(beside, theme_.plot);
    }
    surface.pixels.setDevicePixelRatio(scale);
    {
        QPainter frame(&surface.pixels);
        frame.translate(-rect.topLeft());
        paintHeader(frame, surface.layout);
        paintAxes(frame, rect, surface.layout.plot, scale);
    }
    paintPlot({0, plot.width()}, plot, scale, curves(surface.layout.plot, scale), surface);
}

/// Ground, grid and curves in some columns of the plot.
void ChartPainter::paintPlot(const PlotPixels::Columns& columns, const QRect& plot, double scale,
                             const ChartCurves& curves, ChartSurface& surface) const {
    PlotColors colors{rgb(theme_.plot), rgb(theme_.grid), {}};
    for (int series = 0; series < model_.seriesCount(); ++series) {
        colors.series.push_back(rgb(seriesColor(series)));
    }
    auto* line = reinterpret_cast<std::uint32_t*>(surface.pixels.scanLine(plot.top()));
    const PixelArea area{line + plot.left(), plot.width(), plot.height(),
                         static_cast<int>(surface.pixels.bytesPerLine() / 4)};
    surface.plot.paint(area, columns, model_, curves, {x_, y_, colors, scale});
}

QRect ChartPainter::marksRect(const QRect& plot, const ChartCurves& curves, double scale) const {
    QRect all;
    for (const EndMark& mark : endMarks(model_, curves, plot.height() * scale, kNumberStep * scale)) {
        const int x = plot.left() + static_cast<int>(std::floor(mark.x / scale));
        all |= QRect(x - kMarkReach, plot.top() - kMarkReach, kMarkReach + kMarkRoom,
                     plot.height() + 2 * kMarkReach);
    }
    return all;
}

QRect ChartPainter::news(const QRect& rect, double scale, const ChartSurface& surface) const {
    if (!holds(surface, model_, rect, scale)) {
        return rect;
    }
    const QRect& plot = surface.layout.plot;
    const ChartCurves shown = curves(plot, scale);
    const int width = deviceRect(plot, rect, scale).width();
    const PlotPixels::Columns columns = surface.plot.news(model_, shown, width, scale);
    if (columns.empty()) {
        return {};
    }
    const int left = plot.left() + static_cast<int>(columns.from / scale) - 1;
    const int right = plot.left() + static_cast<int>(columns.to / scale) + 2;
    const QRect changed(left, plot.top(), right - left, plot.height());
    return (changed | surface.marks | marksRect(plot, shown, scale)) & rect;
}

void ChartPainter::paintHeader(QPainter& painter, const ChartLayout& layout) const {
    painter.setFont(chartTitleFont(font_));
    painter.setPen(theme_.text);
    painter.drawText(layout.title, Qt::AlignLeft | Qt::AlignVCenter,
                     QString::fromStdString(model_.look().y.title));
    for (int series = 0; series < model_.seriesCount(); ++series) {
        const QRect& rect = layout.legend[static_cast<std::size_t>(series)];
        if (rect.width() > 0) {
            paintEntry(painter, rect, series);
        }
    }
}

void ChartPainter::paintEntry(QPainter& painter, const QRect& rect, int series) const {
    const SeriesLook& look = model_.look().series[static_cast<std::size_t>(series)];
    painter.fillRect(QRect(rect.left(), rect.center().y(), kSwatch, 3),
                     look.shown ? seriesColor(series) : theme_.hair);
    const QRect label = rect.adjusted(kSwatch + kSwatchGap, 0, 0, 0);
    painter.setFont(font_);
    painter.setPen(look.shown ? theme_.text : theme_.disabled);
    painter.drawText(label.adjusted(0, 0, 4, 0), Qt::AlignLeft | Qt::AlignVCenter,
                     QFontMetrics(font_).elidedText(QString::fromStdString(look.label), Qt::ElideRight,
                                                    label.width() + 4));
    if (!look.shown) { // a line of our own: not every kind of picture strikes its texts out
        painter.drawLine(label.left(), label.center().y() + 1, label.right(), label.center().y() + 1);
    }
}

void ChartPainter::paintLines(QPainter& painter, const QRect& plot, const ChartCurves& curves) const {
    painter.save();
    painter.setPen(QPen(theme_.grid, 1));
    for (const double time : x_.grid) {
        const double x = plot.left() + (time - model_.xView().from) / model_.xView().size() * plot.width();
        painter.drawLine(QPointF(x, plot.top()), QPointF(x, plot.bottom()));
    }
    for (const double value : y_.grid) {
        const double y = plot.top() + curves.yPixel(value);
        painter.drawLine(QPointF(plot.left(), y), QPointF(plot.right(), y));
    }
    painter.setClipRect(plot);
    painter.setRenderHint(QPainter::Antialiasing);
    for (int series = 0; series < model_.seriesCount(); ++series) {
        if (!model_.seriesVisible(series)) {
            continue;
        }
        const double width = model_.look().series[static_cast<std::size_t>(series)].width;
        painter.setPen(QPen(seriesColor(series), curves.thinned() ? 1 : width, Qt::SolidLine, Qt::RoundCap,
                            Qt::BevelJoin));
        QPolygonF piece;
        const auto draw = [&painter, &piece] {
            if (piece.size() == 1) {
                piece.append(piece.front()); // a reading between two gaps: the line's round ends alone
            }
            painter.drawPolyline(piece);
            piece.clear();
        };
        for (const CurvePoint& point : curves.curve(series, 0, plot.width(), width / 2)) {
            if (point.start) {
                draw();
            }
            piece.append({plot.left() + point.x, plot.top() + std::clamp(point.y, -1e4, 1e4)});
        }
        draw();
    }
    painter.restore();
}

/// Axes and ticks in whole device pixels, in line with the grid, so that all are equally wide at any scale.
void ChartPainter::paintAxes(QPainter& painter, const QRect& rect, const QRect& plot, double scale) const {
    const QRect device = deviceRect(plot, rect, scale);
    const int line = std::max(1, static_cast<int>(scale));
    const int bottom = device.top() + device.height();
    const auto bar = [&](int x, int y, int width, int height) {
        painter.fillRect(
            QRectF(rect.left() + x / scale, rect.top() + y / scale, width / scale, height / scale),
            theme_.line);
    };
    const auto below = [&](double time, int length) {
        const double x = std::floor((time - model_.xView().from) / model_.xView().size() * device.width());
        bar(device.left() + std::min(static_cast<int>(x), device.width() - line), bottom, line,
            static_cast<int>(length * scale) + line);
    };
    const auto beside = [&](double value, int length) {
        const double y = std::floor((model_.yView().to - value) / model_.yView().size() * device.height());
        const int tick = static_cast<int>(length * scale) + line;
        bar(device.left() - tick, device.top() + static_cast<int>(y), tick, line);
    };
    bar(device.left() - line, device.top(), line, device.height() + line);
    bar(device.left(), bottom, device.width(), line);
    for (const double time : x_.ticks) {
        below(time, kSmallTick);
    }
    for (const double value : y_.ticks) {
        beside(value, kSmallTick);
    }
    for (const AxisLabel& label : x_.labels) {
        below(label.value, kTick);
    }
    for (const AxisLabel& label : y_.labels) {
        beside(label.value, kTick);
    }
    painter.setFont(font_);
    painter.setPen(theme_.muted);
    paintYLabels(painter, plot);
    paintXLabels(painter, plot);
}

void ChartPainter::paintYLabels(QPainter& painter, const QRect& plot) const {
    const int line = QFontMetrics(font_).height();
    const ValueSpan view = model_.yView();
    for (const AxisLabel& label : y_.labels) {
        const double y = plot.top() + (view.to - label.value) / view.size() * plot.height();
        painter.drawText(QRectF(plot.left() - kTick - 6 - kWidest, y - line, kWidest, 2 * line),
                         Qt::AlignRight | Qt::AlignVCenter, QString::fromStdString(label.text));
    }
}

void ChartPainter::paintXLabels(QPainter& painter, const QRect& plot) const {
    const int line = QFontMetrics(font_).height() + 4;
    const int top = plot.bottom() + 1 + kTick + 2;
    const ValueSpan view = model_.xView();
    for (const AxisLabel& label : x_.labels) {
        const double x = plot.left() + (label.value - view.from) / view.size() * plot.width();
        painter.drawText(QRectF(x - kWidest / 2, top, kWidest, line), Qt::AlignHCenter | Qt::AlignTop,
                         QString::fromStdString(label.text));
    }
    painter.drawText(QRect(plot.left(), top + line - 2, plot.width(), line), Qt::AlignRight | Qt::AlignTop,
                     QString::fromStdString(model_.look().x.title));
}

void ChartPainter::paintEnds(QPainter& painter, const QRect& plot, const ChartCurves& curves,
                             double scale) const {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(fontOfSize(font_, kNumberPixels, true));
    for (const EndMark& mark : endMarks(model_, curves, plot.height() * scale, kNumberStep * scale)) {
        const QPointF dot(plot.left() + mark.x / scale, plot.top() + mark.y / scale);
        painter.setPen(Qt::NoPen);
        painter.setBrush(seriesColor(mark.series));
        painter.drawEllipse(dot, kDot, kDot);
        if (model_.seriesCount() == 1) {
            continue;
        }
        const QPointF number(dot.x() + kNumberOffset, plot.top() + mark.numberY / scale);
        painter.setPen(QPen(theme_.line, 1));
        painter.drawLine(
            QPointF(dot.x() + kLeaderGap, dot.y() + (number.y() - dot.y()) * kLeaderGap / kNumberOffset),
            number - QPointF(2, 0));
        painter.setPen(theme_.text);
        painter.drawText(QRectF(number.x(), number.y() - 9, 24, 18), Qt::AlignLeft | Qt::AlignVCenter,
                         QString::number(mark.series + 1));
    }
    painter.restore();
}

} // namespace drx9
