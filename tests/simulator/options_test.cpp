#include "simulator/Bench.h"
#include "simulator/BridgeDevices.h"
#include "simulator/Control.h"
#include "simulator/Options.h"
#include "simulator/Text.h"

namespace drx9::sim {
namespace {

/// The options in one line of text, as far as they differ by command line.
std::string summary(const Options& options) {
    if (!options.error.empty()) {
        return "error: " + options.error;
    }
    const InstrumentOptions& instrument = options.simulator.instrument;
    std::string text = options.tcp ? "tcp " + options.tcp->host + ":" + options.tcp->port + " " : "";
    text += options.pty ? "pty[" + options.ptyLink + "] " : "";
    text += options.trace ? "trace[" + options.traceFile + "] " : "";
    return text + std::to_string(instrument.sensors) + "/" + std::to_string(instrument.films) + " " +
           instrument.versionText;
}

TEST(Options, AreReadOrExplained) {
    struct {
        std::vector<std::string> arguments;
        std::string summary;
    } const cases[] = {
        {{}, "tcp 127.0.0.1:2101 6/99 DRX-9 Ver 4.12"},
        {{"--tcp", "0"}, "tcp 127.0.0.1:0 6/99 DRX-9 Ver 4.12"},
        {{"--tcp=0.0.0.0:2102", "--films", "9"}, "tcp 0.0.0.0:2102 6/9 DRX-9 Ver 4.08"},
        {{"--pty", "--sensors", "3"}, "pty[] 3/99 DRX-9 Ver 4.12"},
        {{"--pty", "COM1", "--tcp"}, "tcp 127.0.0.1:2101 pty[COM1] 6/99 DRX-9 Ver 4.12"},
        {{"--version-text", "X 4.08", "--films=99", "--trace"}, "tcp 127.0.0.1:2101 trace[] 6/99 X 4.08"},
        {{"--version-text=", "--trace", "t.txt"}, "tcp 127.0.0.1:2101 trace[t.txt] 6/99 "},
        {{"--tcp", "70000"}, "error: no sensible value for --tcp: 70000"},
        {{"--tcp", ":80"}, "error: no sensible value for --tcp: :80"},
        {{"--films", "10"}, "error: no sensible value for --films: 10"},
        {{"--speed", "0"}, "error: no sensible value for --speed: 0"},
        {{"--baud", "x"}, "error: no sensible value for --baud: x"},
        {{"--seed"}, "error: needs a value: --seed"},
        {{"--sensors", "--quiet"}, "error: needs a value: --sensors"},
        {{"--quiet=1"}, "error: takes no value: --quiet"},
        {{"--faults", "bogus"}, "error: fault not understood: \"bogus\""},
        {{"--bogus"}, "error: unknown option: --bogus"},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(summary(parseOptions(one.arguments)), one.summary);
    }
    const Options rest = parseOptions(
        {"--seed", "5", "--speed", "2.5", "--baud", "19200", "--frozen", "--quiet", "--faults", "lose=2"});
    EXPECT_EQ(rest.simulator.instrument.seed, 5U);
    EXPECT_EQ(rest.simulator.speed, 2.5);
    EXPECT_EQ(rest.simulator.baud, 19200U);
    EXPECT_TRUE(rest.simulator.instrument.frozen && rest.quiet);
    EXPECT_EQ(rest.simulator.faults.size(), 1U);
}

TEST(Control, EachLineGetsOneAnswer) {
    struct {
        const char* line;
        const char* answer; ///< how it begins
        LinkAction action = LinkAction::None;
    } const cases[] = {{"", ""},
                       {"faults lose=1", "ok faults lose=1"},
                       {"faults none", "ok faults none"},
                       {"faults", "error: "},
                       {"faults lose=x", "error: fault not understood: \"lose=x\""},
                       {"crystal 3 fail", "ok crystal 3 fail"},
                       {"crystal 3", "error: "},
                       {"crystal 3 shine", "error: "},
                       {"shutter?", "ok shutter 0"},
                       {"shutter open", "ok shutter 1"},
                       {"state?", "ok film 1 shutter 1 timer 7.0 rate "},
                       {"count P1", "ok count P1 1"},
                       {"count reset", "ok count reset"},
                       {"count P*", "ok count P* 0"},
                       {"  drop  ", "ok drop", LinkAction::Drop},
                       {"unplug", "ok unplug", LinkAction::Unplug},
                       {"plug", "ok plug", LinkAction::Plug},
                       {"help", "ok help\n"},
                       {"quit", "ok quit", LinkAction::Quit},
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
    const auto devices = bridgeDevices("localhost:2101;10.0.0.1:99,SER;h:1,S,83f5;h:2,,1234;nohost;:1;h:;;");
    std::string text;
    for (const BridgeDevice& one : devices) {
        text += one.host + ' ' + one.port + ' ' + one.serial + ' ' + one.product + '|';
    }
    EXPECT_EQ(text, "localhost 2101 0A7C21 83F5|10.0.0.1 99 SER 83F5|h 1 S 83f5|h 2 0A7C21 1234|");
    EXPECT_TRUE(bridgeDevices("").empty());
    EXPECT_EQ(bridgeDevices("h:1," + std::string(999, 's'))[0].serial.size(), 255U);
}

TEST(Text, NumbersAsTheInstrumentShowsThem) {
    EXPECT_EQ(fixedText(-0.004, 2), "0.00");
    EXPECT_EQ(fixedText(-0.006, 2), "-0.01");
    EXPECT_EQ(plainText(100000), "100000");
    EXPECT_EQ(plainText(0.25), "0.25");
}

} // namespace
} // namespace drx9::sim
