#include <cstdio>
#include <memory>
#include <string>

#include "simulator/Options.h"
#include "simulator/Simulator.h"
#include "simulator/os/Host.h"

namespace {
using namespace drx9::sim;

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

void greet(const Options& options) {
    const InstrumentOptions& instrument = options.simulator.instrument;
    std::fprintf(stderr, "drx9sim: \"%s\", %d sensors, %d films. Type help for what can be told to it.\n",
                 instrument.versionText.c_str(), instrument.sensors, instrument.films);
}

int run(const Options& options) {
    std::unique_ptr<std::FILE, FileCloser> file;
    if (!options.traceFile.empty()) {
        file.reset(std::fopen(options.traceFile.c_str(), "w"));
        if (!file) {
            std::fprintf(stderr, "drx9sim: cannot write %s\n", options.traceFile.c_str());
            return 1;
        }
    }
    std::FILE* out = file ? file.get() : stderr;
    Simulator::TraceSink trace;
    if (options.trace) {
        trace = [out](const std::string& line) {
            std::fprintf(out, "%s\n", line.c_str());
            std::fflush(out);
        };
    }
    Simulator simulator(options.simulator, trace);
    if (!options.quiet) {
        greet(options);
    }
    return runHost(simulator, options);
}
} // namespace

int main(int argc, char** argv) {
    const Options options = parseOptions({argv + 1, argv + argc});
    if (!options.error.empty()) {
        std::fprintf(stderr, "drx9sim: %s (drx9sim --help tells more)\n", options.error.c_str());
        return 2;
    }
    if (options.help) {
        std::fputs(helpText().c_str(), stdout);
        return 0;
    }
    if (options.version) {
        std::puts("drx9sim " DRX9_VERSION);
        return 0;
    }
    return run(options);
}
