#include "monitor/ChartFeed.h"

#include <cmath>

namespace drx9 {

void ChartFeed::Init() {
    for (Graph* graph : graphs_) {
        graph->Init();
    }
}

void ChartFeed::restart() {
    InitGraph();
    for (Graph* graph : graphs_) {
        graph->ReInit();
    }
}

void ChartFeed::InitGraph() {
    firstPlot_ = true;
    lastAppended_ = -1;
}

void ChartFeed::UpdateGraph(PointStore& points, int sensors) {
    for (Graph* graph : graphs_) { // follow what the operator changed on the chart itself
        graph->setYMax(graph->shownYMax());
        graph->setYMin(graph->shownYMin());
    }
    const std::int16_t current = points.currentPoint();
    const std::int16_t plotted = points.lastPlotted();
    if (current > plotted) {
        PlotData(points, current - plotted, plotted, sensors);
    } else if (current < plotted) {
        PlotData(points, PointStore::kRows + 1 - plotted, plotted, sensors);
        PlotData(points, current, PointStore::kRestartPoint, sensors);
    }
    points.setLastPlotted(current);
}

void ChartFeed::PlotData(const PointStore& points, int count, std::int16_t first, int sensors) {
    if (firstPlot_) {
        firstPlot_ = false;
        for (Graph* graph : graphs_) {
            for (int series = 1; series <= graph->seriesCount(); ++series) {
                graph->setLastPoint(series, 0);
            }
        }
    }
    for (int i = 0; i < count; ++i) {
        plotPoint(points.row(static_cast<std::int16_t>(first + i)), sensors);
    }
    for (Graph* graph : graphs_) {
        GraphRollover(*graph);
        graph->redraw();
    }
}

void ChartFeed::plotPoint(const PointStore::Row& row, int sensors) {
    if (row.elapsed <= lastAppended_) {
        return; // the row at the store's wrap is given twice
    }
    lastAppended_ = row.elapsed;
    if (row.gapBefore) {
        for (Graph* graph : graphs_) {
            graph->appendGap();
        }
    }
    graphs_[0]->append(1, row.elapsed, row.averageRate);
    graphs_[2]->append(1, row.elapsed, row.averageThickness);
    for (int s = 1; s <= sensors; ++s) {
        graphs_[1]->append(s, row.elapsed, row.rate[static_cast<std::size_t>(s - 1)]);
        graphs_[3]->append(s, row.elapsed, row.thickness[static_cast<std::size_t>(s - 1)]);
    }
}

void ChartFeed::GraphRollover(Graph& graph) const {
    const double width = graph.Xwide() > 0 ? graph.Xwide() : 1; // what a chart of width 0 shows
    const double beyond = lastAppended_ - (graph.XMin() + width);
    if (beyond <= 0) {
        return;
    }
    const double quarter = width / 4;
    graph.setXMin(static_cast<float>(graph.XMin() + std::ceil(beyond / quarter) * quarter));
    graph.setXwide(graph.Xwide());
}

} // namespace drx9
