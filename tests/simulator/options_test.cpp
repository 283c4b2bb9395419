#include "simulator/Bench.h"
#include "simulator/BridgeDevices.h"
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

TEST(Control, EachLineGetsOneAnswer) {
    struct {
        const char* line;
        const char* answer; ///< how it begins
        LinkAction action = LinkAction::None;
    } const cases[] = {{"", ""},
                       {"faults lose=1", "ok faults lose=1"},
                       {"faults none", "ok faults none"},
                       {"faults lose=x", "error: fault not understood: \"lose=x\""},
                       {"crystal 3 fail", "ok crystal 3 fail"},
                       {"crystal 3 shine", "error: "},
                       {"shutter open", "ok shutter 1"},
                       {"state?", "ok film 1 shutter 1 timer 7.0 rate "},
                       {"count P1", "ok count P1 1"},
                       {"count reset", "ok count reset"},
                       {"count P*", "ok count P* 0"},
                       {"  drop  ", "ok drop", LinkAction::Drop},
                       {"dance", "error: unknown: dance"}};
    Bench bench;
    bench.ask("P1");
    for (const auto& one : cases) {
        const ControlAnswer answer = control(bench.simulator, one.line, 7);
        EXPECT_TRUE(answer.text.starts_with(one.answer)) << one.line << " -> " << answer.text;
        EXPECT_EQ(answer.action, one.action) << one.line;
    }
    EXPECT_EQ(bench.ask("P3", 7), "A0.0");
    EXPECT_EQ(bench.ask("U?", 7), "A1");
}

TEST(BridgeDevices, AreListedInOrder) {
    const auto devices = bridgeDevices("localhost:2101;10.0.0.1:99,SER;h:2,,1234;nohost;:1;h:;;");
    std::string text;
    for (const BridgeDevice& one : devices) {
        text += one.host + ' ' + one.port + ' ' + one.serial + ' ' + one.product + '|';
    }
    EXPECT_EQ(text, "localhost 2101 0A7C21 83F5|10.0.0.1 99 SER 83F5|h 2 0A7C21 1234|");
    EXPECT_EQ(bridgeDevices("h:1," + std::string(999, 's'))[0].serial.size(), 255U);
}

} // namespace
} // namespace drx9::sim
