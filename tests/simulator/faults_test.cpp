#include <algorithm>
#include <map>

#include "simulator/Bench.h"

namespace drx9::sim {
namespace {

TEST(Faults, ListIsReadOrRefusedAsAWhole) {
    const std::pair<const char*, std::size_t> good[] = {
        {"", 0},
        {"none", 0},
        {"lose=5,late=7:1500ms,cut=3,corrupt=2%,refuse=L1:B,noise,close=30s,silent=10s:5s,crystal3=20s,split,"
         "stray,zeros",
         12},
        {"late,cut=2:4,split=1:20ms,silent,close,refuse=*,crystal6=2m:out", 7}};
    for (const auto& [text, count] : good) {
        const FaultList list = parseFaults(text);
        EXPECT_EQ(list.faults.size(), count) << text;
        EXPECT_EQ(list.error, "") << text;
    }
    for (const char* wrong : {"lost=5", "lose=x", "lose=0", "lose=0%", "lose=101%", "late=7:-1s", "late=7:1h",
                              "cut=2:0", "refuse", "refuse=L1:BB", "crystal7=20s", "crystal3=20s:in", ""}) {
        const FaultList list = parseFaults(std::string("lose=5,") + wrong + ",cut");
        EXPECT_TRUE(list.faults.empty()) << wrong;
        EXPECT_NE(list.error.find('"' + std::string(wrong) + '"'), std::string::npos) << list.error;
    }
    for (const FaultName& name : faultTable()) {
        EXPECT_EQ(parseFaults(name.form).error, "") << "the help's own example";
    }
}

int differingBits(const std::string& one, const std::string& other) {
    int bits = 0;
    for (std::size_t i = 0; i < one.size() * 8; ++i) {
        bits += ((one[i / 8] ^ other[i / 8]) >> (i % 8)) & 1;
    }
    return bits;
}

/// What became of a reply, seen from the other end; "good" also when zeros or noise happen to be none.
std::string seen(const std::string& bytes, const std::string& good) {
    std::string squeezed = bytes;
    std::erase(squeezed, '\0');
    if (bytes == good || bytes.empty()) {
        return bytes.empty() ? "nothing" : "good";
    }
    if (squeezed == good) {
        return "zeros";
    }
    if (bytes.size() == good.size()) {
        return differingBits(bytes, good) == 1 ? "bit" : "bits";
    }
    if (good.starts_with(bytes)) {
        return "cut";
    }
    if (bytes.starts_with(good)) {
        return bytes.size() == good.size() + 1 ? "stray" : "tail";
    }
    return bytes.ends_with(good) && bytes.find('!') == bytes.size() - good.size() ? "noise" : "?";
}

TEST(Faults, EachFallsOnEveryNthReply) {
    struct {
        const char* list;
        const char* struck;
    } const cases[] = {{"lose=3", "nothing"}, {"cut=3", "cut"},        {"cut=3:4", "cut"},
                       {"corrupt=3", "bit"},  {"noise=3", "noise"},    {"stray=3", "stray"},
                       {"zeros=3", "zeros"},  {"silent=0s", "nothing"}};
    const std::string good = replyPacket('A', "0");
    for (const auto& one : cases) {
        Bench bench(withFaults(one.list));
        const std::string list = one.list;
        int struck = 0;
        for (int i = 1; i <= 60; ++i) {
            const std::string bytes = bench.raw("U?");
            const bool due = i % 3 == 0 || list == "silent=0s";
            EXPECT_TRUE(!due || list != "cut=3:4" || bytes.size() == 4);
            EXPECT_TRUE(due || bytes == good) << list << " at " << i;
            struck += due && seen(bytes, good) == one.struck ? 1 : 0;
        }
        EXPECT_GE(struck, list == "zeros=3" ? 18 : 20) << list; // now and then chance puts no zeros in
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

TEST(Faults, AShareIsRandomAndTheSeedDecides) {
    std::map<std::uint64_t, std::string> patterns;
    for (const std::uint64_t seed : {1U, 2U}) {
        SimulatorOptions options = withFaults("lose=30%");
        options.instrument.seed = seed;
        for (int repeat = 0; repeat < 2; ++repeat) {
            Bench bench(options);
            std::string pattern;
            for (int i = 0; i < 500; ++i) {
                pattern += bench.raw("S").empty() ? 'x' : '.';
            }
            const auto lost = std::count(pattern.begin(), pattern.end(), 'x');
            EXPECT_GT(lost, 100);
            EXPECT_LT(lost, 200);
            EXPECT_TRUE(repeat == 0 || patterns[seed] == pattern);
            patterns[seed] = pattern;
        }
    }
    EXPECT_NE(patterns[1], patterns[2]);
}

TEST(Faults, SilenceHasAStartAndAnEndAndConnectionsATerm) {
    Bench bench(withFaults("silent=10s:5s,close=30s"));
    for (const double t : {0.0, 9.9, 15.1}) {
        EXPECT_EQ(bench.ask("U?", t), "A0") << t;
    }
    bench.simulator.setFaults(withFaults("silent=10s:5s").faults, 16); // counted from when it was set
    struct {
        double time;
        const char* reply;
    } const cases[] = {{16, "A0"}, {25.9, "A0"}, {26, ""}, {30.9, ""}, {31.1, "A0"}};
    for (const auto& one : cases) {
        EXPECT_EQ(bench.ask("U?", one.time), one.reply) << one.time;
    }
    EXPECT_EQ(bench.simulator.dropTime(bench.line), kNever);
    bench.simulator.setFaults(withFaults("close=30s").faults, 40);
    const Line later = bench.simulator.openLine("test", 100);
    EXPECT_EQ(bench.simulator.dropTime(later), 130);
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
    for (const unsigned baud : {300U, 9600U, 19200U, 115200U}) {
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

TEST(Simulator, TracesAndCountsEveryCommand) {
    Bench bench(withFaults("lose=3"));
    bench.ask("P1", 0.5);
    bench.ask("A1?", 1);
    bench.ask("P1", 1.5);
    bench.ask("Q\x01\\", 2);
    EXPECT_EQ(bench.trace[1], "1.000\tA1?\tA\tALUMINUM 2.700 100 1.080 5.000 2.500 60 63\ttest");
    EXPECT_EQ(bench.trace[2].substr(0, 11), "1.500\tP1\tA\t");
    EXPECT_TRUE(bench.trace[2].ends_with("\ttest\tlose")) << bench.trace[2];
    EXPECT_EQ(bench.trace[3], "2.000\tQ\\x01\\\\\tC\t\ttest");
    EXPECT_EQ(bench.simulator.count("P1"), 2U);
    EXPECT_EQ(bench.simulator.count("A*"), 1U);
    EXPECT_EQ(bench.simulator.count("A"), 0U);
    EXPECT_EQ(bench.simulator.count("*"), 4U);
    bench.simulator.resetCounts();
    EXPECT_EQ(bench.simulator.count(""), 0U);
}

TEST(Simulator, NoStreamOfBytesUpsetsIt) {
    SimulatorOptions options = withFaults("corrupt=3,cut=5,noise=7,zeros=4,split=6,late=11");
    Bench bench(options);
    Random random(5);
    double now = 0;
    for (int i = 0; i < 20000; ++i) {
        std::string bytes(1 + random.below(6), ' ');
        for (char& byte : bytes) {
            byte = static_cast<char>(random.below(256));
        }
        std::string text = std::string(1, "@JPLNMODABCSTUZQ"[random.below(16)]) + bytes;
        bench.line.receive(random.below(2) == 0 ? bytes : commandPacket(text), now);
        bench.sentBy(now += 0.001);
    }
    bench.simulator.setFaults({}, now);
    bench.sentBy(now + 1e4);
    EXPECT_EQ(bench.ask("@", now + 1e4), "ADRX-9 Ver 4.12");
}

} // namespace
} // namespace drx9::sim
