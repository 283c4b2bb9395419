// What a chart costs, beside QCustomPlot on the same readings: painting the whole of it into a picture of the
// window's size, and what a tick adds. Measures and asserts nothing.
#include "graphs/ChartGraph.h"
#include "graphs/controls/ChartPainter.h"

#include <QApplication>
#include <QPainter>

#include <qcustomplot.h>

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <memory>

namespace drx9 {
namespace {

constexpr double kPeriod = 0.25; // s between readings
constexpr int kDay = 345600;     // readings
const QSize kSize(1200, 600);

/// A rate that ripples, with some noise.
double reading(int series, int i) {
    const double noise = std::fabs(std::sin(i * 12.9898 + series * 78.233) * 43758.5453);
    return 9 + series * 0.5 + std::sin(i * 0.002 * series) + 0.3 * (noise - std::floor(noise));
}

/// From nothing to the top in every reading: the worst that a chart can be given.
double wildReading(int series, int i) {
    const double noise = std::fabs(std::sin(i * 12.9898 + series * 78.233) * 43758.5453);
    return 20 * (noise - std::floor(noise));
}

struct Charts {
    explicit Charts(int readings, double (*value)(int, int) = reading) {
        for (std::size_t i = 0; i < 4; ++i) {
            models[i] = std::make_unique<ChartModel>(chartDesign(static_cast<GraphKind>(i)), points);
            graphs[i] = std::make_unique<ChartGraph>(*models[i], GraphPorts{});
        }
        for (int i = 1; i <= readings; ++i) {
            append(i, value);
        }
        newest = readings;
    }
    void append(int i, double (*value)(int, int) = reading) {
        for (std::size_t g = 0; g < 4; ++g) {
            for (int s = 1; s <= graphs[g]->seriesCount(); ++s) {
                graphs[g]->append(s, i * kPeriod, value(s, i));
            }
        }
    }
    RunPoints points{kRunColumns};
    std::array<std::unique_ptr<ChartModel>, 4> models;
    std::array<std::unique_ptr<ChartGraph>, 4> graphs;
    int newest = 0;
};

/// Paints the sensor rates as its window does.
class Window {
public:
    Window(const ChartModel& model, QSize size, double scale)
        : model_(model)
        , size_(size)
        , scale_(scale)
        , window_(size * scale, QImage::Format_RGB32) {
        window_.setDevicePixelRatio(scale);
    }
    void paint() {
        QPainter painter(&window_);
        ChartPainter(model_, Theme::light(), QApplication::font(), '.')
            .paint(painter, QRect(QPoint(), size_), scale_, &surface_);
    }

private:
    const ChartModel& model_;
    QSize size_;
    double scale_;
    QImage window_;
    ChartSurface surface_;
};

void showAll(ChartModel& model) {
    model.viewWholeRun();
}

/// The view stays where it is, as it does between two leaps of the time window.
void showSame(ChartModel& model) {
    model.redraw();
}

void showLast300(ChartModel& model) {
    const double end = model.points().time(model.points().rows() - 1);
    model.setXView({end - 300, end});
}

/// One tick: a reading to the four charts, and the visible one painted whole.
void tick(benchmark::State& state, int readings, void (*show)(ChartModel&), QSize size, double scale) {
    Charts charts(readings);
    ChartModel& model = *charts.models[1];
    Window window(model, size, scale);
    for (auto _ : state) {
        charts.append(++charts.newest);
        show(model);
        window.paint();
    }
}

void appendAlone(benchmark::State& state, int readings) {
    Charts charts(readings);
    for (auto _ : state) {
        charts.append(++charts.newest);
    }
}

void zoomStep(benchmark::State& state) {
    Charts charts(kDay);
    ChartModel& model = *charts.models[1];
    Window window(model, kSize, 1);
    double width = kDay * kPeriod;
    for (auto _ : state) {
        width = width < 60 ? kDay * kPeriod : width * 0.85;
        model.setXView({40000 - width / 2, 40000 + width / 2});
        window.paint();
    }
}

/// The slowest of many zooms, for readings that leap over the whole height.
void worstCase(benchmark::State& state) {
    Charts charts(kDay, wildReading);
    ChartModel& model = *charts.models[1];
    ChartLook look = model.look();
    for (SeriesLook& series : look.series) {
        series.width = kMostLine;
    }
    look.x.gridSpacing = look.x.labelSpacing = 1;
    look.x.tickSpacing = 0.1;
    model.setLook(look);
    Window window(model, {1280, 720}, 2);
    const double width = static_cast<double>(state.range(0));
    for (double start = 40000; [[maybe_unused]] auto _ : state) {
        model.setXView({start, start + width}); // elsewhere each time: all is painted anew
        window.paint();
        start = start > 41000 ? 40000 : start + 0.37;
    }
}

/// QCustomPlot as it comes, with its hint for fast lines.
void plain(benchmark::State& state, int readings, double shown) {
    QCustomPlot plot;
    plot.setPlottingHint(QCP::phFastPolylines, true);
    plot.resize(kSize);
    for (int s = 1; s <= 6; ++s) {
        QCPGraph* graph = plot.addGraph();
        graph->setPen(QPen(Theme::light().sensor(s), 1.5));
        QVector<double> keys;
        QVector<double> values;
        for (int i = 1; i <= readings; ++i) {
            keys.append(i * kPeriod);
            values.append(reading(s, i));
        }
        graph->setData(keys, values, true);
    }
    plot.yAxis->setRange(0, 20);
    QImage window(kSize, QImage::Format_RGB32);
    int newest = readings;
    for (auto _ : state) {
        ++newest;
        for (int s = 1; s <= 6; ++s) {
            plot.graph(s - 1)->addData(newest * kPeriod, reading(s, newest));
        }
        const double end = newest * kPeriod;
        plot.xAxis->setRange(shown > 0 ? end - shown : 0, end);
        plot.replot(QCustomPlot::rpImmediateRefresh);
        QPainter painter(&window);
        plot.render(&painter);
    }
}

void memory(benchmark::State& state) {
    for (auto _ : state) {
        Charts charts(kDay);
        benchmark::DoNotOptimize(charts.points.rows());
        state.counters["rows"] = static_cast<double>(charts.points.rows());
    }
}

void registerAll() {
    const auto add = [](const char* name, auto function) {
        benchmark::RegisterBenchmark(name, function)->Unit(benchmark::kMillisecond);
    };
    add("tick/500 readings", [](auto& s) { tick(s, 500, showAll, kSize, 1); });
    add("tick/500 readings, the view stays", [](auto& s) { tick(s, 500, showSame, kSize, 1); });
    add("tick/a day, whole", [](auto& s) { tick(s, kDay, showAll, kSize, 1); });
    add("tick/a day, last 300 s", [](auto& s) { tick(s, kDay, showLast300, kSize, 1); });
    add("tick/a day, whole, at 200 %", [](auto& s) { tick(s, kDay, showAll, kSize, 2); });
    add("tick/last 300 s at 200 %", [](auto& s) { tick(s, kDay, showLast300, kSize, 2); });
    add("append/first hour", [](auto& s) { appendAlone(s, 3600); });
    add("append/after a day", [](auto& s) { appendAlone(s, kDay); });
    add("zoom step on a day", zoomStep);
    benchmark::RegisterBenchmark("worst case 2560x1440, s shown", worstCase)
        ->Unit(benchmark::kMillisecond)
        ->Arg(10)
        ->Arg(60)
        ->Arg(150)
        ->Arg(300)
        ->Arg(600)
        ->Arg(1200)
        ->Arg(3600)
        ->Arg(40000);
    add("filling a day", memory);
    add("QCustomPlot/500 readings", [](auto& s) { plain(s, 500, 0); });
    add("QCustomPlot/a day, whole", [](auto& s) { plain(s, kDay, 0); });
    add("QCustomPlot/a day, last 300 s", [](auto& s) { plain(s, kDay, 300); });
}

} // namespace
} // namespace drx9

int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QApplication application(argc, argv);
    drx9::registerAll();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
