#include "graphs/controls/ChartLayout.h"

#include <QFontMetrics>

#include <algorithm>

namespace drx9 {

using chartMeasure::kSwatch;
using chartMeasure::kSwatchGap;
using chartMeasure::kTick;

namespace {
constexpr int kLeft = 14;
constexpr int kTop = 6;
constexpr int kTitleGap = 20;
constexpr int kEntryGap = 15;
constexpr int kPlotGap = 12; ///< between header and plot
constexpr int kLineGap = 4;
constexpr int kLeastLeft = 56;
constexpr int kLeastRight = 36; ///< in which the last time label stays whole
constexpr int kTimeEdge = 6;    ///< beside the first and the last one
constexpr int kLabelGap = 12;   ///< least distance of two labels

int widthOf(const QFont& font, const std::string& text) {
    return QFontMetrics(font).horizontalAdvance(QString::fromStdString(text));
}
} // namespace

QFont chartTitleFont(QFont font) {
    font.setBold(true);
    return font;
}

AxisRoom ChartLayouter::timeRoom(int pixels) const {
    const auto width = [this](double time) {
        return widthOf(font_, elapsedText(time, model_.look().x.format));
    };
    const int label = std::max(width(model_.xView().from), width(model_.xView().to));
    return {double(pixels), double(label + kLabelGap), true, decimal_, double(widthOf(font_, ".000"))};
}

AxisRoom ChartLayouter::valueRoom(int pixels) const {
    return {double(pixels), double(kLabelGap + QFontMetrics(font_).height()), false, decimal_};
}

/// Width of the widest label, whatever its digits are, so that scrolling moves nothing.
int ChartLayouter::widest(const AxisLook& axis, const ValueSpan& view, const AxisRoom& room) const {
    int widest = 0;
    for (AxisLabel& label : axisTicks(axis, view, room).labels) {
        std::replace_if(
            label.text.begin(), label.text.end(), [](char c) { return c >= '0' && c <= '9'; }, '0');
        widest = std::max(widest, widthOf(font_, label.text));
    }
    return widest;
}

/// Of the legend's entries, by series; 0 for one without.
std::vector<int> ChartLayouter::entryWidths(int most) const {
    const ChartLook& look = model_.look();
    std::vector<int> widths;
    for (int series = 0; series < model_.seriesCount(); ++series) {
        const int label = widthOf(font_, look.series[static_cast<std::size_t>(series)].label);
        const bool entry = look.legend && model_.seriesPresent(series);
        widths.push_back(entry ? std::min(most, kSwatch + kSwatchGap + label) : 0);
    }
    return widths;
}

/// Returns how many lines title and legend take. Entries that would take more than half of the chart are left
/// out.
int ChartLayouter::placeLegend(const QRect& rect, int right, std::vector<QRect>& legend) const {
    const int line = QFontMetrics(font_).height() + kLineGap;
    const int end = rect.width() - right;
    const std::vector<int> widths = entryWidths(end - kLeft);
    int total = -kEntryGap;
    for (const int width : widths) {
        total += width > 0 ? width + kEntryGap : 0;
    }
    const int title = widthOf(chartTitleFont(font_), model_.look().y.title);
    int row = total <= 0 || kLeft + title + kTitleGap + total <= end ? 0 : 1;
    int x = std::max(kLeft, end - total);
    for (const int width : widths) {
        if (width > 0 && x > kLeft && x + width > end) {
            ++row;
            x = kLeft;
        }
        const bool room = (row + 1) * line <= rect.height() / 2;
        legend.emplace_back(rect.left() + x, rect.top() + kTop + row * line, room ? width : 0, line);
        x += width > 0 ? width + kEntryGap : 0;
    }
    return std::min(row + 1, std::max(1, rect.height() / 2 / line));
}

ChartLayout ChartLayouter::layout(const QRect& rect) const {
    const int line = QFontMetrics(font_).height() + kLineGap;
    const ChartLook& look = model_.look();
    const int time =
        std::max(widthOf(font_, "00:00:00"), widest(look.x, model_.xView(), timeRoom(rect.width())));
    const int value = widest(look.y, model_.yView(), valueRoom(rect.height() * 4 / 5));
    const int right = std::max(kLeastRight, time / 2 + kTimeEdge);
    const int left = std::max({kLeastLeft, value + kTick + 12, time / 2 + kTimeEdge});
    ChartLayout layout;
    layout.title = {rect.left() + kLeft, rect.top() + kTop, rect.width() - kLeft - right, line};
    const int lines = placeLegend(rect, right, layout.legend);
    layout.plot = rect.adjusted(left, kTop + line * lines + kPlotGap, -right, -(kTick + 2 * line + 6));
    layout.plot.setSize(layout.plot.size().expandedTo({1, 1}));
    return layout;
}

} // namespace drx9
