#include "simulator/Bench.h"
#include "simulator/Control.h"
#include "simulator/Options.h"

namespace drx9::sim {
namespace {

TEST(Options, AreReadOrExplained) {
    const Options usual = parseOptions({});
    EXPECT_EQ(usual.tcp->host + ":" + usual.tcp->port, "127.0.0.1:2101");
    const Options options = parseOptions(
        {"--pty", "COM1", "--films=9", "--speed", "2.5", "--trace", "--frozen", "--faults", "lose=2,noise"});
    EXPECT_EQ(options.error, "");
    EXPECT_TRUE(options.pty && options.trace && options.simulator.instrument.frozen && !options.tcp);
    EXPECT_EQ(options.ptyLink + options.simulator.instrument.versionText, "COM1DRX-9 Ver 4.08");
    EXPECT_EQ(options.simulator.speed, 2.5);
    EXPECT_EQ(options.simulator.faults.size(), 2U);
    const std::pair<std::vector<std::string>, const char*> wrong[] = {
        {{"--tcp", "70000"}, "no sensible value for --tcp: 70000"},
        {{"--sensors", "--quiet"}, "needs a value: --sensors"},
        {{"--quiet=1"}, "takes no value: --quiet"},
        {{"--faults", "bogus"}, "fault not understood: \"bogus\""},
        {{"--bogus"}, "unknown option: --bogus"},
    };
    for (const auto& [arguments, error] : wrong) {
        EXPECT_EQ(parseOptions(arguments).error, error);
    }
}

TEST(Control, WhatItDoesNotUnderstandChangesNothing) {
    Bench bench;
    for (const char* line : {"faults lose=x", "crystal 3 shine", "dance"}) {
        EXPECT_TRUE(control(bench.simulator, line, 7).text.starts_with("error: ")) << line;
    }
    EXPECT_EQ(bench.ask("P3", 7).substr(0, 2), "A5");
    for (const char* line : {"crystal 3 fail", "shutter open", "count P3"}) {
        EXPECT_TRUE(control(bench.simulator, line, 7).text.starts_with("ok ")) << line;
    }
    EXPECT_EQ(bench.ask("P3", 7) + bench.ask("U?", 7), "A0.0A1");
    EXPECT_EQ(control(bench.simulator, "  drop  ", 7).action, LinkAction::Drop);
}

} // namespace
} // namespace drx9::sim
