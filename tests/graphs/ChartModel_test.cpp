// Points, series, axes and what a view needs of them.
#include "graphs/AxisTicks.h"
#include "graphs/ChartBench.h"
#include "graphs/ChartFile.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace drx9 {
namespace {

TEST(RunPoints, KnowsTheTrueLeastAndGreatestAlsoAfterACut) {
    RunPoints points(2);
    for (int i = 0; i < 5000; ++i) {
        const std::size_t row = points.rowAt(i * 0.25);
        points.set(0, row, std::sin(i * 12.9) * 43758.5 - std::floor(std::sin(i * 12.9) * 43758.5));
        points.set(1, row, i == 1500 ? 99 : 1);
    }
    const auto matches = [&points](std::size_t from, std::size_t to) {
        ValueRange plain;
        for (std::size_t row = from; row < to; ++row) {
            plain.add(points.value(0, row));
        }
        const ValueRange quick = points.range(0, from, to);
        EXPECT_EQ(quick.least, plain.least) << from << " to " << to;
        EXPECT_EQ(quick.greatest, plain.greatest) << from << " to " << to;
    };
    for (const auto& [from, to] :
         {std::pair{0U, 5000U}, {1U, 65U}, {63U, 64U}, {64U, 128U}, {1000U, 1100U}}) {
        matches(from, to);
    }
    points.cut(1, 1500); // the greatest value goes
    EXPECT_EQ(points.range(1, 0, 1500).greatest, 1);
    EXPECT_EQ(points.range(1, 1472, 1536).greatest, 1) << "the span that lost it";
    points.set(1, points.rowAt(1500 * 0.25), 2);
    EXPECT_EQ(points.range(1, 1408, 1536).greatest, 2);
    points.cut(0, 0);
    EXPECT_EQ(points.rows(), 5000U);
    points.cut(1, 0);
    EXPECT_EQ(points.rows(), 0U) << "no column needs them";
}

TEST(RunPoints, TimeThatGoesBackStartsANewRun) {
    RunPoints points(1);
    for (const double t : {1.0, 2.0, 3.0}) {
        points.set(0, points.rowAt(t), t);
    }
    EXPECT_EQ(points.rowAt(2), 1U);
    EXPECT_EQ(points.rowAt(1.5), 1U);
    EXPECT_EQ(points.rows(), 2U);
    EXPECT_EQ(points.count(0), 1U);
}

TEST(ChartModel, DropsWhatIsNotLaterAndDrawsNothingBeyondTheFirstSeries) {
    ChartBench bench;
    bench.graph.append(1, 1, 5);
    bench.graph.append(1, 1, 6);
    bench.graph.append(1, 0.5, 6);
    bench.graph.append(1, 2, std::nan(""));
    bench.graph.append(1, 3, 1e300);
    EXPECT_EQ(bench.model.lastPoint(0), 2);
    EXPECT_TRUE(std::isfinite(bench.run.value(bench.model.column(0), 1)));
    bench.graph.append(2, 1, 5);
    bench.graph.append(2, 4, 5);
    EXPECT_EQ(bench.model.lastPoint(1), 2);
    EXPECT_EQ(bench.model.drawnRows(1).to, 2U);
    bench.model.setFirstPoint(0, 2);
    EXPECT_EQ(bench.model.drawnRows(0).from, 1U);
}

/// The least and greatest height in each pixel column, by the column's time.
std::map<long, std::pair<double, double>> heights(const ChartBench& bench, int series) {
    const ChartCurves curves(bench.model, 600, 1000);
    EXPECT_TRUE(curves.thinned());
    const double width = columnWidth(bench.model.xView().size(), 600);
    const double origin = std::floor(bench.model.xView().from / width);
    std::map<long, std::pair<double, double>> found;
    for (const CurvePoint& point : curves.curve(series)) {
        if (point.x < 0 || point.x > 600) {
            continue; // beside the view the nearest reading is enough
        }
        const long column = std::lround(origin + point.x - 0.5);
        auto& [least, greatest] = found.try_emplace(column, point.y, point.y).first->second;
        least = std::min(least, point.y);
        greatest = std::max(greatest, point.y);
    }
    return found;
}

TEST(ChartCurves, ScrollingNeverChangesAMoment) {
    ChartBench bench;
    bench.feed(0, 7200);
    bench.model.setXView({100, 1900});
    const auto before = heights(bench, 2);
    const double width = columnWidth(1800, 600);
    for (const auto& [column, range] : before) {
        ValueRange plain;
        for (std::size_t row = 0; row < bench.run.rows(); ++row) {
            if (bench.run.time(row) >= static_cast<double>(column) * width &&
                bench.run.time(row) < static_cast<double>(column + 1) * width) {
                plain.add(bench.run.value(bench.model.column(2), row));
            }
        }
        const ChartCurves curves(bench.model, 600, 1000);
        EXPECT_EQ(range.first, curves.yPixel(plain.greatest));
        EXPECT_EQ(range.second, curves.yPixel(plain.least));
    }
    int same = 0;
    for (const double by : {0.1, 7.3, 75.0, 511.77}) {
        bench.model.setXView({100 + by, 1900 + by});
        for (const auto& [column, range] : heights(bench, 2)) {
            const auto old = before.find(column);
            if (old != before.end()) {
                EXPECT_EQ(old->second, range) << by;
                ++same;
            }
        }
    }
    EXPECT_GT(same, 1500);
}

TEST(ChartCurves, ExactWhereThinAndGapsStayGaps) {
    ChartBench bench;
    bench.feed(0, 60);
    bench.graph.appendGap();
    bench.feed(70, 100);
    bench.model.setXView({20, 90});
    const ChartCurves exact(bench.model, 600, 400);
    ASSERT_FALSE(exact.thinned());
    const std::vector<CurvePoint> curve = exact.curve(3);
    EXPECT_EQ(std::count_if(curve.begin(), curve.end(),
                            [](const CurvePoint& point) { return point.x >= 0 && point.x <= 600; }),
              161 + 81)
        << "all readings in view";
    EXPECT_LT(curve.front().x, 0) << "up to the edges";
    EXPECT_GT(curve.back().x, 600);
    const auto second =
        std::find_if(curve.begin() + 1, curve.end(), [](const CurvePoint& p) { return p.start; });
    ASSERT_NE(second, curve.end());
    EXPECT_NEAR(second->x, exact.xPixel(70), 1e-9);
    EXPECT_NEAR(second->y, exact.yPixel(ChartBench::wave(4, 70)), 1e-4);
    bench.feed(100.25, 4000);
    bench.graph.appendGap();
    for (double t = 4010; t < 4110; t += 0.25) { // series 4 comes some columns later than the gap ends
        bench.graph.append(1, t, 1);
        if (t > 4050.3) {
            bench.graph.append(4, t, 1);
        }
    }
    for (const auto& [view, pieces] :
         {std::pair(ValueSpan{20, 90}, 2), {{0, 4110}, 3}, {{3000, 4110}, 2}, {{-400, 4050}, 3}}) {
        bench.model.setXView(view);
        const ChartCurves curves(bench.model, 600, 400);
        EXPECT_EQ(curves.thinned(), view.size() > 100);
        for (const int series : {0, 3}) {
            const std::vector<CurvePoint> drawn = curves.curve(series);
            EXPECT_EQ(std::count_if(drawn.begin(), drawn.end(), [](const CurvePoint& p) { return p.start; }),
                      pieces)
                << series << " from " << view.from;
        }
    }
}

TEST(ChartCurves, RunUpToTheEdgesHoweverFarAsideTheReadingsOrTheirInkLie) {
    ChartBench bench;
    bench.feed(0, 100);
    for (double t = 120; t < 4000; t += 20) { // a link that has become slow
        bench.graph.append(1, t, 1);
    }
    for (const double width : {100.0, 500.0}) { // exact, thinned
        bench.model.setXView({1005, 1005 + width});
        const std::vector<CurvePoint> curve = ChartCurves(bench.model, 600, 400).curve(0);
        EXPECT_LT(curve.front().x, 0) << width;
        EXPECT_GT(curve.back().x, 600) << width;
    }
    bench.model.setXView({50, 110});
    const ChartCurves curves(bench.model, 6000, 400); // a reading each 25 pixels, with 40 pixels of ink
    EXPECT_LT(curves.curve(1, 0, 6000, 40).front().x, -40);
}

TEST(ChartCurves, AreThinnedOrNotWhateverPartOfTheRunIsInView) {
    ChartBench bench;
    bench.feed(0, 900);
    for (double t = 901; t < 1800; t += 1) { // a slow link
        bench.graph.append(1, t, 1);
    }
    for (const auto& [width, thinned] : {std::pair{299.0, false}, {301.0, true}}) { // two readings a column
        for (const double from : {-200.0, 0.0, 100.3, 800.0, 1200.0, 1700.0}) {
            bench.model.setXView({from, from + width});
            EXPECT_EQ(ChartCurves(bench.model, 600, 400).thinned(), thinned) << width << " " << from;
        }
    }
}

TEST(ChartModel, ViewsAndFit) {
    ChartBench bench;
    bench.model.setXView({0, 1});
    bench.model.fitY();
    EXPECT_EQ(bench.model.yView(), (ValueSpan{0, 20})) << "nothing to fit";
    bench.feed(0, 400);
    bench.model.viewWholeRun();
    EXPECT_EQ(bench.model.xView(), (ValueSpan{0, 400}));
    bench.model.setXView({1, 2});
    bench.model.setSeriesShown(5, false);
    bench.model.setSensorCount(3); // 1 to 3 are left
    bench.model.fitY();
    const double least = std::min(ChartBench::wave(1, 1), ChartBench::wave(1, 2));
    EXPECT_LT(bench.model.yView().from, least);
    EXPECT_GT(bench.model.yView().from, least - 0.3);
    EXPECT_LT(bench.model.yView().to, 3.8);
    bench.graph.setXMin(75);
    bench.graph.setXwide(300);
    EXPECT_EQ(bench.model.xView(), (ValueSpan{1, 2})) << "the operator's view stays";
    bench.model.follow();
    EXPECT_EQ(bench.model.xView(), (ValueSpan{75, 375}));
    EXPECT_EQ(bench.model.yView(), (ValueSpan{0, 20}));
}

TEST(AxisTicks, StandAtWholeMultiplesAndLeaveOutWhatHasNoRoom) {
    // Spacing, view, whether it is a time; the labels, and how many grid lines and ticks there are.
    using Case = std::tuple<double, ValueSpan, bool, const char*, std::size_t, std::size_t>;
    const Case cases[] = {
        {60, {75, 375}, true, "00:02:00 00:03:00 00:04:00 00:05:00 00:06:00", 5, 50},
        {60, {0, 86400}, true, "00:00:00 04:00:00 08:00:00 12:00:00 16:00:00 20:00:00 24:00:00", 7, 61},
        {5, {3, 17}, false, "5 10 15", 3, 29},
        {1, {0, 9999}, false, "0 2000 4000 6000 8000", 5, 50}, // too fine
        {5, {6, 8}, false, "6 6.5 7 7.5 8", 0, 41},            // nothing in view
        {60, {-1, 0.4}, true, "-00:00:01.000 -00:00:00.500 00:00:00.000", 1, 29},
        {2.5, {0, 6}, true, "00:00:00.000 00:00:02.500 00:00:05.000", 3, 25},
    };
    for (const auto& [spacing, view, time, expected, grid, small] : cases) {
        const AxisLook axis{0, 1, spacing, spacing, spacing / 10, kGridOn, 2, "", time ? "%H:%M:%S" : "%g"};
        const AxisTicks ticks = axisTicks(axis, view, {500, time ? 80.0 : 60.0, time});
        std::string labels;
        for (const AxisLabel& label : ticks.labels) {
            labels += (labels.empty() ? "" : " ") + label.text;
        }
        EXPECT_EQ(labels, expected);
        EXPECT_EQ(ticks.grid.size(), grid) << labels;
        EXPECT_EQ(ticks.ticks.size(), small) << labels;
    }
    EXPECT_EQ(elapsedText(90061), "25:01:01");
    EXPECT_EQ(axisValueText(2.5, "%.2f", ','), "2,50");
}

} // namespace
} // namespace drx9
