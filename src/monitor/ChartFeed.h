#pragma once

#include "graphs/Graph.h"
#include "monitor/PointStore.h"

#include <array>

namespace drx9 {

/// The four graph objects in their fixed order: average rate, sensor rates, average thickness, sensor
/// thickness.
using GraphSet = std::array<Graph*, 4>;

/// Brings the run's points to the four charts and moves their time window along.
class ChartFeed {
public:
    explicit ChartFeed(const GraphSet& graphs)
        : graphs_(graphs) {}

    /// First-time set-up of the charts.
    void Init();
    /// The charts start over at time zero.
    void restart();
    /// Appends the points stored since the last call, over the store's wrap; `sensors` series are fed.
    void UpdateGraph(PointStore& points, int sensors);

private:
    void InitGraph();
    void PlotData(const PointStore& points, int count, std::int16_t first, int sensors);
    void plotPoint(const PointStore::Row& row, int sensors);
    void GraphRollover(Graph& graph) const;

    GraphSet graphs_;
    bool firstPlot_ = true;
    double lastAppended_ = -1; ///< elapsed time of the newest point on the charts
};

} // namespace drx9
