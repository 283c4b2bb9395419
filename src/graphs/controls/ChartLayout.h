#pragma once

#include "graphs/AxisTicks.h"
#include "graphs/ChartModel.h"

#include <QFont>
#include <QRect>

#include <vector>

namespace drx9 {

/// Where the parts of a chart lie in its rectangle.
struct ChartLayout {
    QRect title;
    std::vector<QRect> legend; ///< by series; empty for one without an entry
    QRect plot;                ///< within the axes
};

/// Pixels of a chart's parts.
namespace chartMeasure {
inline constexpr int kSwatch = 21; ///< of a legend entry, before its label
inline constexpr int kSwatchGap = 7;
inline constexpr int kTick = 7;
} // namespace chartMeasure

QFont chartTitleFont(QFont font);

/// Finds room for the parts of a chart with labels of a font. The legend is right of the title; where both do
/// not fit one line, it takes as many lines below it as it needs.
class ChartLayouter {
public:
    ChartLayouter(const ChartModel& model, const QFont& font, char decimal)
        : model_(model)
        , font_(font)
        , decimal_(decimal) {}

    [[nodiscard]] ChartLayout layout(const QRect& rect) const;
    /// Room for labels along an axis of so many pixels.
    [[nodiscard]] AxisRoom timeRoom(int pixels) const;
    [[nodiscard]] AxisRoom valueRoom(int pixels) const;

private:
    [[nodiscard]] std::vector<int> entryWidths(int most) const;
    int placeLegend(const QRect& rect, int right, std::vector<QRect>& legend) const;
    [[nodiscard]] int widest(const AxisLook& axis, const ValueSpan& view, const AxisRoom& room) const;

    const ChartModel& model_;
    QFont font_;
    char decimal_;
};

} // namespace drx9
