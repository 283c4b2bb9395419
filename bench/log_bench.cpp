// One line of the data log with six sensors: through the program's log and file port, beside the bare
// opening, writing and closing of the same bytes, and beside the log over a file port that does nothing.
#include "monitor/DataLog.h"
#include "platform/os/OsFilePort.h"
#include "platform/qt/QtClock.h"

#include "fakes/FakeClock.h"
#include "fakes/FakeEventPump.h"
#include "fakes/FakeMessageBoxes.h"
#include "fakes/MemoryFilePort.h"

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>

using namespace drx9;

namespace {

constexpr int kLines = 100000; ///< a repetition; the files stay small enough

Readings sixSensors() {
    Readings readings;
    readings.averageRate = 9.97;
    readings.averageThickness = 1.495;
    for (std::size_t s = 0; s < kMaxSensors; ++s) {
        readings.rate[s] = 9.8 + 0.05 * static_cast<double>(s);
        readings.thickness[s] = 1.49 + 0.003 * static_cast<double>(s);
        readings.frequency[s] = 5902495.8 - 3000 * static_cast<double>(s);
    }
    return readings;
}

/// A log in every reading of which a line is due.
struct Bench {
    Bench(FilePort& files, const std::string& folder)
        : paths{folder, folder}
        , log(files, clock, locale, paths, boxes, pump, settings) {
        settings.File = "drx9.txt";
        settings.Type = LogMode::Append;
        settings.Interval = 0;
        settings.End = 360000;
        log.InitDataLog();
    }
    void lines(benchmark::State& state) {
        const Readings readings = sixSensors();
        double elapsed = 0;
        for ([[maybe_unused]] auto _ : state) {
            log.UpdateDataLog(readings, elapsed += 0.25, kMaxSensors);
        }
        if (log.linesLost() > 0) {
            state.SkipWithError("lines were lost");
        }
    }

    QtClock clock;
    const NumberLocale locale;
    Paths paths;
    FakeMessageBoxes boxes;
    FakeClock standing;
    FakeEventPump pump{standing};
    DataLogSettings settings;
    DataLog log;
};

std::string emptyFolder() {
    const auto folder = std::filesystem::temp_directory_path() / "drx9-log-bench";
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    return folder.string();
}

void BM_Line(benchmark::State& state) {
    const std::unique_ptr<FilePort> files = makeOsFilePort();
    Bench bench(*files, emptyFolder());
    bench.lines(state);
}

void BM_LineInMemory(benchmark::State& state) {
    MemoryFilePort files;
    Bench bench(files, "/");
    bench.lines(state);
}

void BM_BareOpenWriteClose(benchmark::State& state) {
    const std::string path = emptyFolder() + "/bare.txt";
    const std::string line(165, 'x');
    for ([[maybe_unused]] auto _ : state) {
        const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
        if (::write(fd, line.data(), line.size()) < 0) {
            return state.SkipWithError("not written");
        }
        ::close(fd);
    }
}

BENCHMARK(BM_Line)->Iterations(kLines)->Repetitions(9)->ReportAggregatesOnly();
BENCHMARK(BM_BareOpenWriteClose)->Iterations(kLines)->Repetitions(9)->ReportAggregatesOnly();
BENCHMARK(BM_LineInMemory)->Iterations(kLines)->Repetitions(9)->ReportAggregatesOnly();

} // namespace

BENCHMARK_MAIN();
