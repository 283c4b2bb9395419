#include "graphs/EndMarks.h"

#include <algorithm>

namespace drx9 {

namespace {
constexpr double kEdgeReach = 4; ///< a value that ripples about the axis's end keeps its mark

/// Keeps the numbers off the axis below the plot and off its upper edge; where there is no room for all, the
/// upper ones stay.
std::vector<double> within(std::vector<double> positions, double height, double step) {
    double limit = height - step / 2;
    for (auto position = positions.rbegin(); position != positions.rend(); ++position, limit -= step) {
        *position = std::min(*position, limit);
    }
    limit = step / 2;
    for (double& position : positions) {
        position = std::max(position, limit);
        limit += step;
    }
    return positions;
}
} // namespace

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

std::vector<EndMark> endMarks(const ChartModel& model, const ChartCurves& curves, double height,
                              double step) {
    const RunPoints& points = model.points();
    const ValueSpan view = model.xView();
    std::vector<EndMark> marks;
    for (int series = 0; series < model.seriesCount(); ++series) {
        const ChartModel::Rows rows = model.drawnRows(series);
        if (!model.seriesVisible(series) || rows.to <= rows.from) {
            continue;
        }
        const double time = points.time(rows.to - 1);
        const double y = curves.yPixel(points.value(model.column(series), rows.to - 1));
        if (time >= view.from && time <= view.to && y >= -kEdgeReach && y <= height + kEdgeReach) {
            marks.push_back({series, curves.xPixel(time), y, 0});
        }
    }
    std::sort(marks.begin(), marks.end(), [](const EndMark& a, const EndMark& b) { return a.y < b.y; });
    std::vector<double> heights;
    heights.reserve(marks.size());
    for (const EndMark& mark : marks) {
        heights.push_back(mark.y);
    }
    const std::vector<double> spreadHeights = within(spread(heights, step), height, step);
    for (std::size_t i = 0; i < marks.size(); ++i) {
        marks[i].numberY = spreadHeights[i];
    }
    return marks;
}

} // namespace drx9
