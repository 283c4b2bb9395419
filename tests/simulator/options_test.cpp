#include "simulator/Bench.h"
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
        {{"--faults", "bogus"}, "fault not understood: \"bogus\""},
        {{"--bogus"}, "unknown option: --bogus"},
    };
    for (const auto& [arguments, error] : wrong) {
        EXPECT_EQ(parseOptions(arguments).error, error);
    }
}

} // namespace
} // namespace drx9::sim
