#include <algorithm>

#include "simulator/Bench.h"
#include "simulator/Options.h"

namespace drx9::sim {
namespace {

TEST(Options, AreReadOrExplained) {
    const Options options = parseOptions({"--films=9", "--sensors", "3", "--baud", "9600", "--frozen"});
    const InstrumentOptions& instrument = options.simulator.instrument;
    EXPECT_EQ(options.tcp->host + ":" + options.tcp->port, "127.0.0.1:2101");
    EXPECT_EQ(instrument.versionText, "DRX-9 Ver 4.08");
    EXPECT_TRUE(instrument.frozen && instrument.sensors == 3 && options.simulator.baud == 9600);
    EXPECT_EQ(parseOptions({"--tcp", "70000"}).error, "no sensible value for --tcp: 70000");
    EXPECT_EQ(parseOptions({"--sensors", "--quiet"}).error, "needs a value: --sensors");
    EXPECT_EQ(parseOptions({"--bogus"}).error, "unknown option: --bogus");
}

TEST(Faults, ListIsReadOrRefusedAsAWhole) {
    EXPECT_EQ(parseFaults("none").faults.size(), 0U);
    EXPECT_EQ(parseFaults("late,cut=2:4,split=1:20ms,silent,refuse=*,crystal6=2m:out").faults.size(), 6U);
    for (const char* wrong : {"lost=5", "lose=x", "lose=0", "lose=101%", "late=7:-1s", "late=7:1h", "cut=2:0",
                              "refuse", "refuse=L1:BB", "crystal7=20s", "crystal3=20s:in", ""}) {
        const FaultList list = parseFaults(std::string("lose=5,") + wrong + ",cut");
        EXPECT_TRUE(list.faults.empty()) << wrong;
        EXPECT_NE(list.error.find('"' + std::string(wrong) + '"'), std::string::npos) << list.error;
    }
    for (const FaultName& name : faultTable()) {
        EXPECT_EQ(parseFaults(name.form).error, "") << "the help's own example";
    }
}

TEST(Faults, EachFallsOnEveryNthReply) {
    using Text = const std::string&;
    static const std::string good = replyPacket('A', "0");
    struct {
        const char* list;
        bool (*struck)(Text bytes);
    } const cases[] = {
        {"lose=3", [](Text bytes) { return bytes.empty(); }},
        {"cut=3", [](Text bytes) { return bytes.size() < good.size() && good.starts_with(bytes); }},
        {"corrupt=3", [](Text bytes) { return bytes.size() == good.size() && bytes != good; }},
        {"noise=3",
         [](Text bytes) { return bytes.size() > good.size() && bytes.find(good) == bytes.find('!'); }},
        {"stray=3", [](Text bytes) { return bytes.size() == good.size() + 1 && bytes.starts_with(good); }},
        {"zeros=3", [](Text bytes) { return bytes.find('\0') < bytes.size(); }},
    };
    for (const auto& one : cases) {
        Bench bench(withFaults(one.list));
        int struck = 0;
        for (int i = 1; i <= 60; ++i) {
            const std::string bytes = bench.raw("U?");
            EXPECT_TRUE(i % 3 == 0 || bytes == good) << one.list << " at " << i;
            struck += i % 3 == 0 && one.struck(bytes) ? 1 : 0;
        }
        EXPECT_GE(struck, 18) << one.list; // now and then chance puts no zeros in
    }
}

TEST(Faults, ALostReplyIsStillAnObeyedCommandARefusedOneIsNot) {
    Bench lost(withFaults("lose=1"));
    EXPECT_EQ(lost.raw("U1"), "");
    lost.simulator.setFaults({}, 0);
    EXPECT_EQ(lost.ask("U?"), "A1");
    Bench refused(withFaults("refuse=U1:E,refuse=L:Z"));
    EXPECT_EQ(refused.ask("U1"), "E");
    EXPECT_EQ(refused.ask("U?"), "A0");
    EXPECT_EQ(refused.ask("L4"), "Z");
    EXPECT_EQ(refused.ask("P4").front(), 'A');
    Bench busy(withFaults("refuse=*"));
    EXPECT_EQ(busy.ask("@"), "B");
}

/// When each byte of a reply leaves.
std::vector<double> times(Bench& bench, double from, double to) {
    std::vector<double> when;
    for (double t = from; (t = std::max(t, bench.line.nextDue())) <= to;) {
        when.insert(when.end(), bench.sentBy(t).size(), t);
    }
    return when;
}

TEST(Line, PacesBothDirectionsAtTenBitsAByte) {
    for (const unsigned baud : {300U, 19200U}) {
        SimulatorOptions options;
        options.baud = baud;
        Bench bench(options);
        const double byte = 10.0 / baud;
        bench.line.receive(commandPacket("@"), 2); // 5 bytes in, 19 out
        const std::vector<double> when = times(bench, 2, 60);
        ASSERT_EQ(when.size(), 19U);
        EXPECT_NEAR(when.front(), 2 + (5 + 8) * byte, 1e-9) << "a handful of eight at a time";
        EXPECT_NEAR(when.back(), 2 + (5 + 19) * byte, 1e-9);
        for (std::size_t i = 0; i < when.size(); ++i) {
            EXPECT_GE(when[i], 2 + static_cast<double>(6 + i) * byte - 1e-9) << "no byte before its time";
        }
        EXPECT_EQ(bench.line.nextDue(), kNever);
    }
}

TEST(Line, RepliesKeepTheirOrderAndASplitOneItsGaps) {
    Bench late(withFaults("late=2:1500ms"));
    EXPECT_EQ(late.ask("U?", 0), "A0");
    EXPECT_EQ(late.raw("@", 1), "");
    EXPECT_EQ(late.raw("J", 2), "") << "waits behind the late one";
    EXPECT_DOUBLE_EQ(late.line.nextDue(), 2.5);
    EXPECT_EQ(late.sentBy(2.5), replyPacket('A', "DRX-9 Ver 4.12") + replyPacket('A', "SENSORS 6"));

    Bench split(withFaults("split=1:20ms"));
    split.line.receive(commandPacket("U?"), 1);
    const std::vector<double> when = times(split, 1, 10);
    ASSERT_EQ(when.size(), replyPacket('A', "0").size());
    for (std::size_t i = 0; i < when.size(); ++i) {
        EXPECT_NEAR(when[i], 1 + 0.02 * static_cast<double>(i), 1e-9);
    }
}

} // namespace
} // namespace drx9::sim
