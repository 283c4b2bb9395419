// Ink on pixels: as much of it everywhere, and where the curve is.
#include "graphs/ChartBench.h"
#include "graphs/CurveInk.h"
#include "graphs/PlotPixels.h"

#include <gtest/gtest.h>

#include <cmath>

namespace drx9 {
namespace {

struct Picture {
    Picture()
        : pixels(200 * 100, 0xffffffff) {}
    [[nodiscard]] PixelArea area() { return {pixels.data(), 200, 100, 200}; }
    [[nodiscard]] double ink(int x, int y) const {
        return 1 - (pixels[static_cast<std::size_t>(y * 200 + x)] & 0xff) / 255.0;
    }
    [[nodiscard]] double column(int x) const {
        double sum = 0;
        for (int y = 0; y < 100; ++y) {
            sum += ink(x, y);
        }
        return sum;
    }
    std::vector<std::uint32_t> pixels;
};

TEST(CurveInk, IsEvenAtAnySlopeAndHoweverManyPiecesThereAre) {
    for (const double slope : {0.0, 0.3, 1.0, 3.0}) {
        for (const int pieces : {1, 400}) {
            Picture picture;
            std::vector<CurvePoint> curve;
            for (int i = 0; i <= pieces; ++i) {
                const double x = 190.0 * i / pieces;
                curve.push_back({x, 20.3 + slope * x, i == 0});
            }
            CurveInk().line(picture.area(), curve, 1.5, 0);
            const double expected = 1.5 * std::hypot(1, slope); // of a line this wide in a column
            for (int x = 5; 20 + slope * x < 90 && x < 185; ++x) {
                EXPECT_NEAR(picture.column(x), expected, 0.12 * expected)
                    << slope << " " << pieces << " " << x;
            }
        }
    }
}

TEST(CurveInk, ThinLinesCoverEachColumnsHeightsAndJoin) {
    Picture picture;
    const std::vector<CurvePoint> curve{{10.5, 20, true},  {10.5, 40, false}, {11.5, 60, false},
                                        {11.5, 50, false}, {14.5, 50, false}, {20.5, 30, true}};
    CurveInk().thinLine(picture.area(), curve, 1, 0);
    EXPECT_NEAR(picture.column(10), 31, 0.1) << "20 to 50, half way to the next";
    EXPECT_NEAR(picture.column(11), 11, 0.1);
    EXPECT_NEAR(picture.column(13), 1, 0.1) << "no reading here";
    EXPECT_NEAR(picture.column(17), 0, 0.01) << "a gap";
    EXPECT_NEAR(picture.column(20), 1, 0.1) << "one reading alone";
    Picture wide;
    CurveInk().thinLine(wide.area(), curve, 2, 0);
    EXPECT_NEAR(wide.column(13), 2, 0.1);
}

TEST(CurveInk, JoinsNothingOverAGapHoweverWideTheLine) {
    Picture picture;
    const std::vector<CurvePoint> curve{{20, 10, true}, {100, 10, false}, {101, 90, true}, {180, 90, false}};
    CurveInk().line(picture.area(), curve, 10, 0);
    for (int x = 90; x < 110; ++x) {
        EXPECT_EQ(picture.ink(x, 50), 0) << x;
    }
}

TEST(PlotPixels, WhatATickAddsIsWhatAWholePaintingShows) {
    const PlotColors colors{
        0xffffffff, 0xff808080, {0xff0000ff, 0xff00ff00, 0xffff0000, 0xff004488, 0xff0, 0}};
    // Exact and thinned, with lines of one and of two columns.
    for (const auto& [width, scale] : {std::pair(90.0, 1.5), {3000.0, 1.5}, {3000.0, 2.0}}) {
        ChartBench bench;
        ChartLook look = bench.model.look();
        look.series[1].width = 5;
        look.series[3].shown = false;
        bench.model.setLook(look);
        bench.model.setXView({0, width});
        const AxisTicks x = axisTicks(look.x, {0, width}, {200, 60, true});
        const AxisTicks y = axisTicks(look.y, bench.model.yView(), {100, 20, false});
        Picture grown;
        PlotPixels ticks;
        for (int step = 0; step < 40; ++step) {
            if (step % 9 == 8) {
                bench.graph.appendGap();
            }
            const double from = width / 40 * step;
            bench.feed(from, from + width / 80);
            const ChartCurves curves(bench.model, 200, 100);
            const PlotPixels::Columns news = ticks.news(bench.model, curves, 200, scale);
            EXPECT_LT(news.to - news.from, step > 8 ? 20 : 201);
            ticks.paint(grown.area(), news, bench.model, curves, {x, y, colors, scale});
            Picture whole;
            PlotPixels().paint(whole.area(), {0, 200}, bench.model, curves, {x, y, colors, scale});
            for (std::size_t i = 0; i < whole.pixels.size(); ++i) { // but for rounding
                for (const int shift : {0, 8, 16}) {
                    ASSERT_NEAR((grown.pixels[i] >> shift) & 0xff, (whole.pixels[i] >> shift) & 0xff, 2)
                        << width << " " << step << " at " << i % 200 << " " << i / 200;
                }
            }
            EXPECT_TRUE(ticks.news(bench.model, curves, 200, scale).empty());
        }
    }
}

TEST(CurveInk, TakesAnyCurve) {
    Picture picture;
    const double far = 1e30;
    const std::vector<CurvePoint> curve{{-far, -far, true}, {far, far, false}, {50, -far, false},
                                        {50, far, true},    {150, 50, true},   {151, far, false}};
    CurveInk ink;
    ink.line(picture.area(), curve, 5, 0);
    ink.thinLine(picture.area(), curve, 2, 0);
    ink.line({picture.pixels.data(), 0, 0, 0}, curve, 5, 0);
    ink.line(picture.area(), {}, 5, 0);
    EXPECT_GT(picture.column(150), 10);
}

} // namespace
} // namespace drx9
