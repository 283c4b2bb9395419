// The graph object: properties, their order and what is kept of the old behaviour.
#include "graphs/ChartBench.h"
#include "graphs/LookEdit.h"

#include <gtest/gtest.h>

namespace drx9 {
namespace {

TEST(ChartGraph, SpacingsArePositiveAndTheGridIsOnOnlyForOne) {
    using Case = std::tuple<float, double, double, std::int16_t>;
    for (const auto& [given, grid, tick, on] : {Case{0, 1, 0.1, 1}, {-30, 30, 3, 2}, {0.5F, 0.5, 0.05, -1}}) {
        ChartBench bench;
        bench.graph.setXDiv(given);
        bench.graph.setYDiv(static_cast<std::int16_t>(given));
        bench.graph.setXGrid_Enable(on);
        const AxisLook& x = bench.model.look().x;
        EXPECT_EQ(x.gridSpacing, grid);
        EXPECT_EQ(x.labelSpacing, grid);
        EXPECT_DOUBLE_EQ(x.tickSpacing, tick);
        EXPECT_EQ(bench.graph.YDiv(), std::lround(grid + 0.1));
        EXPECT_EQ(x.gridPattern, on == 1 ? 4 : 1);
    }
}

TEST(ChartGraph, YPairComesIntoForceWhenItIsInOrder) {
    const auto follow = [](ChartGraph& graph) { // as the cycle does at each point
        graph.setYMax(graph.shownYMax());
        graph.setYMin(graph.shownYMin());
    };
    struct Case {
        std::vector<std::pair<char, float>> sets;
        ValueSpan shown;
        float minimum, maximum;
    };
    const Case cases[] = {
        {{{'n', 10}, {'x', 20}}, {10, 20}, 10, 20},
        {{{'x', 20}, {'n', 10}}, {10, 20}, 10, 20},
        {{{'n', 10}}, {0, 5}, 10, 5},
        {{{'n', 10}, {'f', 0}, {'x', 20}}, {10, 20}, 10, 20},
        {{{'x', -1}, {'f', 0}, {'n', -5}}, {-5, -1}, -5, -1},
        {{{'n', 5}, {'x', 5}}, {0, 5}, 5, 5},
    };
    for (const Case& c : cases) {
        ChartBench bench;
        bench.graph.setYMax(5);
        for (const auto& [what, value] : c.sets) {
            if (what == 'f') {
                follow(bench.graph);
            } else {
                what == 'n' ? bench.graph.setYMin(value) : bench.graph.setYMax(value);
            }
        }
        EXPECT_EQ(bench.model.yView(), c.shown);
        EXPECT_EQ(bench.graph.YMin(), c.minimum);
        EXPECT_EQ(bench.graph.YMax(), c.maximum);
        EXPECT_EQ(bench.graph.shownYMin(), c.minimum) << "what follows the chart erases nothing";
        EXPECT_EQ(bench.graph.shownYMax(), c.maximum);
    }
}

TEST(LookEdit, TakesBackWhatItChangedAndNobodyChangedSince) {
    ChartBench bench;
    bench.model.setYView({2, 3});
    LookEdit edit(bench.model);
    edit.change([](ChartLook& look) {
        look.y.maximum = 9;
        look.x.gridSpacing = 7;
        look.series[0].label = "Left";
    });
    EXPECT_EQ(bench.model.yHome(), (ValueSpan{2, 9}));
    bench.graph.setXDiv(30);
    bench.model.setSeriesShown(4, false);
    edit.change([](ChartLook& look) { look.series[1].width = 4; });
    edit.takeBack();
    EXPECT_EQ(bench.model.yView(), (ValueSpan{2, 3})) << "the zoom from before";
    EXPECT_EQ(bench.model.yHome(), (ValueSpan{0, 20}));
    EXPECT_EQ(bench.graph.XDiv(), 30) << "set since";
    EXPECT_FALSE(bench.model.seriesVisible(4));
    EXPECT_EQ(bench.model.look().series[0].label, "Sensor 1");
    EXPECT_EQ(bench.model.look().series[1].width, 1.5F);
}

TEST(ChartGraph, ReInitEmptiesOneSeriesAndTheNextPointsComeFromTimeZero) {
    ChartBench bench;
    bench.feed(0, 800);
    bench.graph.setXMin(600);
    bench.graph.setXwide(300);
    bench.graph.ReInit();
    EXPECT_EQ(bench.model.xView(), (ValueSpan{0, 300}));
    EXPECT_EQ(bench.model.lastPoint(0), 0);
    EXPECT_EQ(bench.model.lastPoint(1), 3201);
    EXPECT_EQ(bench.model.drawnRows(1).to, 0U) << "nothing later than series 1's newest is drawn";
    for (int series = 1; series <= 6; ++series) {
        bench.graph.setLastPoint(series, 0);
    }
    bench.feed(0, 5);
    EXPECT_EQ(bench.model.lastPoint(0), 21);
    EXPECT_EQ(bench.run.rows(), 21U);
}

TEST(ChartGraph, SavesTheWindowFromZeroAndATrimmedCapacityStopsNothing) {
    ChartBench bench;
    bench.graph.Init();
    bench.feed(0, 100);
    bench.graph.setXMin(600);
    bench.graph.setXwide(300);
    EXPECT_TRUE(bench.graph.Cfg_Save());
    EXPECT_EQ(bench.model.capacity(0), 401);
    EXPECT_EQ(bench.model.xView(), (ValueSpan{600, 900}));
    bench.feed(100.25, 101);
    EXPECT_EQ(bench.model.lastPoint(0), 405);
    EXPECT_EQ(bench.model.capacity(0), 401);
    ChartBench other;
    other.files.put("/app/ch_dep.oc2", bench.files.text("/app/ch_dep.oc2"));
    other.graph.Init();
    EXPECT_EQ(other.graph.XMin(), 0);
    EXPECT_EQ(other.graph.Xwide(), 300);
}

TEST(ChartGraph, LoadGoesByTheConfigurationAlone) {
    ChartBench bench;
    bench.graph.Init();
    bench.files.put("/app/ch_dep.dat", "Elapsed Time (s)\tSensor 1\n0.250\t7\n");
    EXPECT_FALSE(bench.graph.Cfg_Load()) << "there is no configuration";
    EXPECT_EQ(bench.model.lastPoint(0), 1) << "the data are there all the same";
    bench.graph.setCfg_Filename("/app/ch_dep.xyz"); // the extension is replaced, not looked at
    EXPECT_FALSE(bench.graph.Cfg_Load());
    EXPECT_EQ(bench.model.lastPoint(0), 1);
    bench.graph.InitChart();
    EXPECT_EQ(bench.model.lastPoint(0), 0);
    bench.graph.setCfg_Filename("/app/ch_dep.oc2");
    EXPECT_TRUE(bench.graph.Cfg_Save());
    bench.graph.setYMax(99);
    bench.files.put("/app/ch_dep.dat", "broken");
    EXPECT_TRUE(bench.graph.Cfg_Load());
    EXPECT_EQ(bench.model.lastPoint(0), 0);
    EXPECT_EQ(bench.model.yView().to, 20);
    bench.files.put("/app/ch_dep.oc2", bench.files.text("/app/ch_dep.oc2").substr(0, 300));
    bench.graph.setYMax(50);
    EXPECT_FALSE(bench.graph.Cfg_Load());
    EXPECT_EQ(bench.model.yView().to, 50) << "a broken file changes nothing";
    bench.graph.setCfg_Filename("ab");
    EXPECT_THROW(static_cast<void>(bench.graph.Cfg_Load()), std::invalid_argument);
}

} // namespace
} // namespace drx9
