// The configuration and data files, and the export.
#include "fakes/FuzzSeeds.h"
#include "graphs/ChartBench.h"
#include "graphs/ChartFile.h"
#include "graphs/ChartFileChecks.h"

#include <gtest/gtest.h>

#include <ctime>

namespace drx9 {
namespace {

std::string golden(const std::string& name) {
    return bytesOf(std::string(DRX9_SOURCE_DIR) + "/tests/graphs/golden/" + name);
}

const ChartLook kDesign = designLook(chartDesign(GraphKind::cAvgGraph));

TEST(ChartFile, GoldenFilesAreReadAndWrittenAsTheyStand) {
    EXPECT_EQ(chartLookText(kDesign), golden("design.oc2"));
    const std::optional<ChartLook> look = parseChartLook(golden("changed.oc2"), kDesign);
    ASSERT_TRUE(look);
    EXPECT_EQ(look->y.maximum, 12.5);
    EXPECT_EQ(look->y.gridPattern, kGridOff);
    EXPECT_EQ(look->series[0].color, 0xC00040U);
    EXPECT_EQ(look->series[0].width, 2.5F);
    EXPECT_FALSE(look->legend);
    EXPECT_EQ(chartLookText(*look), golden("changed.oc2")) << "what is not known is kept";
}

TEST(ChartFile, RefusesWhatIsBroken) {
    const std::string whole = golden("design.oc2");
    const auto with = [&whole](const std::string& from, const std::string& to) {
        std::string text = whole;
        text.replace(text.find(from), from.size(), to);
        return text;
    };
    const std::string broken[] = {"",
                                  std::string(4000, '\0'),
                                  with("settings 1", "settings 2"),
                                  with("Maximum=300", "Maximum=nan"),
                                  with("Maximum=300", "Maximum=1e300"),
                                  with("GridSpacing=60", "GridSpacing=0"),
                                  with("Width=2", "Width=200"),
                                  with("Grid=yes", "Grid=perhaps"),
                                  with("Color=program", "Color=#12345"),
                                  with("Title=Elapsed", "Title=\xff"),
                                  with("Title=", "Title=" + std::string(201, 'x')),
                                  whole + "x",
                                  whole + whole};
    for (const std::string& text : broken) {
        EXPECT_FALSE(parseChartLook(text, kDesign)) << text.substr(0, 200);
    }
    for (std::size_t end = 0; end + 1 < whole.size(); ++end) { // cut anywhere but at the last line's end
        EXPECT_FALSE(parseChartLook(whole.substr(0, end), kDesign)) << end;
    }
    std::string windows;
    for (const char c : whole) {
        windows += c == '\n' ? "\r\n" : std::string(1, c);
    }
    EXPECT_TRUE(parseChartLook(windows, kDesign));
}

TEST(ChartFile, TitlesCannotBreakTheFile) {
    ChartLook look = kDesign;
    look.y.title = "a\nEnd of chart settings\n" + std::string(300, 'e') + "\xc3\xa9";
    look.x.title = std::string(199, 'e') + "\xc3\xa9"; // would be cut within a character
    EXPECT_TRUE(parseChartLook(chartLookText(look), kDesign));
}

TEST(ChartFile, ExportHoldsWhatIsShownAndIsReadBack) {
    ChartBench bench;
    bench.feed(0, 1);
    bench.graph.appendGap();
    bench.graph.append(1, 2, 9.91);
    bench.graph.append(3, 2, 1e-9);
    bench.model.setSensorCount(3);
    bench.model.setSeriesShown(1, false);
    bench.model.setXView({0.5, 1});
    bench.model.setXView({0.9, 2});
    const std::string text = chartExport(bench.model);
    EXPECT_EQ(
        text,
        "Elapsed Time (s)\tSensor 1\tSensor 3\n1.000\t1.4207355\t3.07056\n\n2.000\t9.91\t0.000000001\n");
    const std::unique_ptr<RunPoints> points = parseChartData(text, 6);
    ASSERT_NE(points, nullptr);
    EXPECT_EQ(points->rows(), 2U);
    EXPECT_TRUE(points->gapBefore(1));
    EXPECT_EQ(points->value(0, 1), 9.91F);
}

TEST(ChartFile, DataThatAreBrokenGiveNoPoints) {
    for (const char* text : {"", "x", "0\t1\n1\t2\n", "t\ta\n1\t2\n1\t3\n", "t\ta\n1\tx\n", "t\ta\n1\t2\t3\n",
                             "t\ta\nnan\t1\n", "t\ta\n1e300\t1\n"}) {
        EXPECT_EQ(parseChartData(text, 1), nullptr) << text;
    }
    EXPECT_NE(parseChartData("t\ta\tb\n1\t\t2\n", 2), nullptr);
}

TEST(ChartFile, HoldsForEverySeed) {
    replaySeeds("chart_files", [](const std::string& bytes) { checkChartFiles(bytes); });
}

TEST(ChartFile, FilesOfAnySizeCostLittle) {
    MemoryFilePort files;
    std::string rows = "t\ta\n";
    for (int i = 0; rows.size() < 15U << 20U; ++i) {
        rows += std::to_string(i) + "\t1\n";
    }
    files.put("/app/a.dat", rows);
    files.put("/app/b.dat", std::string(40U << 20U, '1'));
    files.put("/app/a.oc2", "DRX9 chart settings 1\n" + std::string(40U << 20U, '['));
    std::string lines = "DRX9 chart settings 1\n";
    while (lines.size() < 255U << 10U) {
        lines += "[" + std::to_string(lines.size()) + "]\nx\n";
    }
    files.put("/app/b.oc2", lines + "End of chart settings\n");
    for (const char* path :
         {"/app/a.dat", "/app/b.dat", "/app/a.oc2", "/app/b.oc2"}) { // too many rows, too large
        const std::clock_t begin = std::clock();                     // of this process alone
        EXPECT_EQ(loadChartData(files, path, 1), nullptr) << path;
        EXPECT_FALSE(loadChartLook(files, path, kDesign)) << path;
        EXPECT_LT(std::clock() - begin, CLOCKS_PER_SEC) << path;
    }
    EXPECT_FALSE(loadChartLook(files, "/app", kDesign));
}

} // namespace
} // namespace drx9
