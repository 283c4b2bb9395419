#pragma once

#include "fakes/MemoryFilePort.h"
#include "graphs/ChartCurves.h"
#include "graphs/ChartGraph.h"

#include <cmath>

namespace drx9 {

/// A graph object over its chart and a run of its own, with files in memory.
struct ChartBench {
    explicit ChartBench(GraphKind kind = GraphKind::cChanGraph)
        : model(chartDesign(kind), run)
        , graph(model, {&files, "/app", nullptr}) {
        files.put("/app/keep", "");
    }

    /// Readings every quarter of a second, each series about its number.
    void feed(double from, double to) {
        for (double t = from; t <= to; t += 0.25) {
            for (int s = 1; s <= graph.seriesCount(); ++s) {
                graph.append(s, t, wave(s, t));
            }
        }
    }
    static double wave(int series, double t) { return series + std::sin(t * series) / 2; }

    RunPoints run{kRunColumns};
    MemoryFilePort files;
    ChartModel model;
    ChartGraph graph;
};

} // namespace drx9
