// What goes over the wire for each command, and what becomes of the answers.
#include "link/LinkBench.h"

#include <gtest/gtest.h>

#include <map>
#include <optional>

namespace drx9 {
namespace {

class CommandsTest : public testing::Test {
protected:
    CommandsTest() {
        bench.link.setInstrumentType(2);
        wire.setAnswerer([this](const std::string& command) {
            const auto packet = packets.find(command);
            return packet == packets.end() ? good("") : packet->second;
        });
    }
    std::vector<std::string> sent() {
        std::vector<std::string> texts = wire.commands();
        wire.forget();
        return texts;
    }
    /// The instrument takes its commands one by one, as long as `seconds` says for each: a slow answer delays
    /// all behind it. `arrive` also brings what comes beside the answer, which leaves at that time.
    void takeOneByOne(std::function<double(const std::string&)> seconds,
                      std::function<void(const std::string&, double)> beside = {}) {
        bench.wire().setAnswerer([=, this, free = 0.0](const std::string& command) mutable {
            const double now = bench.clock.monotonic();
            free = std::max(now, free) + seconds(command);
            bench.wire().arrive(packets[command], free - now);
            if (beside) {
                beside(command, free - now);
            }
            return std::string();
        });
    }
    Commands::ReadResult read() {
        const Commands::ReadOutcome reading = commands.Comm_GetData(readings, bench.link.sensorCount(), {});
        failure = reading.failure;
        return reading.end;
    }

    LinkBench bench{2};
    FakeWire& wire = bench.socket.wire;
    Commands& commands = bench.commands;
    Readings readings;
    std::string failure; ///< of the last reading
    /// What the instrument answers: a command without an entry gets no data, one with "" no answer.
    std::map<std::string, std::string> packets = {
        {"P1", good("5981234.5")}, {"P2", good("5985678.9")}, {"L1", good("1.5")}, {"N1", good("0.25")},
        {"L2", good("2.5")},       {"N2", good("0.5")},       {"M", good("2.0")},  {"O", good("0.375")}};
};

using Sent = std::vector<std::string>;

TEST_F(CommandsTest, AReadingTakesRatesOnlyWhereTheFrequencyMoved) {
    readings.startTime = bench.clock.monotonic() - 12.5;
    EXPECT_EQ(read(), Commands::ReadResult::Done);
    EXPECT_EQ(sent(), (Sent{"P1", "L1", "N1", "P2", "L2", "N2", "M", "O"}));
    EXPECT_EQ(readings.frequency[1], 5985678.9);
    EXPECT_EQ(readings.rate[0], 1.5);
    EXPECT_EQ(readings.thickness[1], 0.5);
    EXPECT_EQ(readings.averageRate, 2.0);
    EXPECT_EQ(readings.averageThickness, 0.375);
    EXPECT_EQ(readings.elapsed, 12.5);
    EXPECT_TRUE(readings.failed.none());

    packets["L1"] = packets["N2"] = good("9");
    packets["P2"] = good("5985678.8");
    EXPECT_EQ(read(), Commands::ReadResult::Done);
    EXPECT_EQ(sent(), (Sent{"P1", "P2", "L2", "N2", "M", "O"}));
    EXPECT_EQ(readings.rate[0], 1.5) << "stands, as the frequency does";
    EXPECT_EQ(readings.thickness[1], 9);
}

TEST_F(CommandsTest, SixUnchangedSensorsCostEightCommands) {
    for (const std::int16_t type : std::initializer_list<std::int16_t>{6, 0, 9}) {
        bench.link.setInstrumentType(type);
        read();
        sent();
        EXPECT_EQ(read(), Commands::ReadResult::Done);
        EXPECT_EQ(sent(), (Sent{"P1", "P2", "P3", "P4", "P5", "P6", "M", "O"})) << type;
    }
}

TEST_F(CommandsTest, AFailedExchangeCountsAsZeroAndTwoTimeOutsEndTheReading) {
    read();
    packets["P1"] = replyPacket('B', "");
    packets["O"] = good("1") + "x";
    packets["L1"] = packets["M"] = "";
    EXPECT_EQ(read(), Commands::ReadResult::Done) << "two time-outs with answers between do not end it";
    EXPECT_EQ(readings.frequency[0] + readings.rate[0] + readings.averageRate + readings.averageThickness, 0);
    EXPECT_EQ(readings.thickness[0], 0.25);
    EXPECT_EQ(failure, "O: Checksum Error");
    std::bitset<kValueCount> marks;
    marks.set(valueIndex(Value::Frequency)).set(valueIndex(Value::Rate)).set(valueIndex(Value::AverageRate));
    EXPECT_EQ(readings.failed, marks.set(valueIndex(Value::AverageThickness)));

    packets["L1"] = packets["M"] = good("2");
    packets["O"] = good("1");
    bench.link.setCommStatus(comm::kOk);
    sent();
    EXPECT_EQ(read(), Commands::ReadResult::Done);
    EXPECT_EQ(sent(), (Sent{"P1", "L1", "P2", "M", "O"})) << "the letter that failed, alone";
    EXPECT_EQ(readings.rate[0], 2);

    bench.link.setCommStatus(comm::kOk);
    packets = {{"P1", good("7")}, {"L1", good("8")}, {"N1", ""}, {"P2", ""}};
    sent();
    EXPECT_EQ(read(), Commands::ReadResult::LinkDead);
    EXPECT_EQ(sent(), (Sent{"P1", "L1", "N1", "P2"}));
    EXPECT_EQ(failure, "P2: Timeout");
    EXPECT_EQ(readings.rate[0], 2) << "nothing of it was stored";

    bench.link.setCommStatus(comm::kOk);
    packets["N1"] = packets["P2"] = packets["L2"] = packets["N2"] = good("9");
    packets["M"] = good("ready");
    packets["O"] = good(" -.5 kA");
    EXPECT_EQ(read(), Commands::ReadResult::Done);
    EXPECT_EQ(readings.averageThickness, -0.5);
    EXPECT_EQ(failure, "M: No Data");
    EXPECT_EQ(readings.failed.count(), 1U);
}

TEST_F(CommandsTest, ALateAnswerIsNotTakenForAnotherValue) {
    std::map<std::string, double> seconds;
    takeOneByOne(
        [&](const std::string& command) { return seconds.contains(command) ? seconds[command] : 0.02; });
    // The command that is answered late, and how late.
    const std::tuple<const char*, double, Commands::ReadResult, const char*> cases[] = {
        {"P1", 1.3, Commands::ReadResult::OutOfStep, "P1: Timeout, answered late"},
        {"N2", 1.9, Commands::ReadResult::OutOfStep, "N2: Timeout, answers out of step"},
        {"O", 1.2, Commands::ReadResult::OutOfStep, "O: Timeout, answered late"},
        {"M", 0.9, Commands::ReadResult::Done, ""},
        {"U?", 1.2, Commands::ReadResult::Done, ""}, // before the reading
        {"O", 1.6, Commands::ReadResult::OutOfStep, "O: Timeout, answers out of step"},
    };
    packets["U?"] = good("1");
    for (const auto& [late, by, result, said] : cases) {
        readings = {};
        seconds = {{late, by}};
        bench.link.Comm_Send("U?");
        bench.link.setCommStatus(comm::kOk);
        EXPECT_EQ(read(), result) << late;
        EXPECT_EQ(failure, said);
        if (result == Commands::ReadResult::Done) {
            EXPECT_EQ(readings.frequency[0], 5981234.5) << late;
            EXPECT_EQ(readings.averageRate, 2.0) << late;
        } else {
            EXPECT_EQ(readings.frequency[0], 0) << "nothing of it was stored";
        }
        bench.link.setCommStatus(comm::kOk);
    }
}

TEST_F(CommandsTest, AnAnswerThatComesTwiceMovesNoValue) {
    constexpr std::int16_t kSerial = 0;
    constexpr std::int16_t kSocket = 2;
    using enum Commands::ReadResult;
    const struct {
        std::int16_t link;
        const char* twice;
        double exchange; ///< s that each takes
        double later;    ///< by which share of that the answer comes again
        Commands::ReadResult result;
    } cases[] = {
        {kSocket, "", 0.02, 0, Done},
        {kSocket, "P1", 0.02, 0.25, OutOfStep},
        {kSocket, "N2", 0.0002, 0.25, OutOfStep},
        {kSerial, "M", 0.02, 0.25, OutOfStep},
        {kSerial, "P1", 0.02, 1, OutOfStep}, // before that of L1, which waits when N1 is sent
        {kSocket, "P1", 0.02, 1, OutOfStep}, // in one piece with that of L1
        {kSerial, "O", 0.02, 0.25, Done},    // nothing came behind it
        {kSerial, "", 0.03, 0, Done},        // no room in the tick: not watched
    };
    for (const auto& c : cases) {
        bench.use(c.link);
        std::string twice = c.twice;
        takeOneByOne([&](const std::string&) { return c.exchange; },
                     [&](const std::string& command, double leaves) {
                         bench.wire().arrive(command == twice ? packets[command] : "",
                                             leaves + c.exchange * c.later);
                     });
        SCOPED_TRACE(testing::Message() << c.twice << " again after " << c.later << ", link " << c.link);
        readings = {};
        const double start = bench.clock.monotonic();
        EXPECT_EQ(read(), c.result);
        const double watched = bench.clock.monotonic() - start - 8 * c.exchange;
        EXPECT_LT(watched, c.exchange > 0.025 ? 1e-9 : 0.1);
        EXPECT_EQ(readings.rate[0], c.result == Done ? 1.5 : 0.0);
        twice.clear();
        EXPECT_EQ(read(), Done) << "in step again";
        EXPECT_EQ(readings.thickness[1], 0.5);
        bench.pump.runFor(1);
    }
}

TEST_F(CommandsTest, AReadingIsAbandonedBetweenExchangesButNotOnceComplete) {
    int asked = 0;
    EXPECT_EQ(commands.Comm_GetData(readings, bench.link.sensorCount(), [&] { return ++asked == 3; }).end,
              Commands::ReadResult::Abandoned);
    EXPECT_EQ(sent(), (Sent{"P1", "L1", "N1"}));
    EXPECT_EQ(readings.rate[0], 0);
    EXPECT_EQ(
        commands
            .Comm_GetData(readings, bench.link.sensorCount(), [this] { return wire.commands().size() == 8; })
            .end,
        Commands::ReadResult::Done);
}

TEST_F(CommandsTest, ABusyLinkIsSaidAndNothingSent) {
    bench.link.setCommStatus(comm::kChecksum);
    bench.boxes.expectNonBlocking("Get Data Error");
    bench.boxes.expectShow("Get Film Error: Busy");
    EXPECT_EQ(read(), Commands::ReadResult::Busy);
    EXPECT_FALSE(commands.Comm_GetFilm(3).film);
    EXPECT_EQ(sent(), Sent{});
}

TEST_F(CommandsTest, AValueIsThatOfItsOwnCommandNotOfThePendingOne) {
    packets["T"] = replyPacket('E', "");
    bench.pump.atPump(1, [this] { bench.link.Comm_Send("T"); });
    EXPECT_EQ(read(), Commands::ReadResult::Done);
    EXPECT_EQ(sent().at(1), "T");
    EXPECT_EQ(readings.frequency[0], 5981234.5);
    EXPECT_FALSE(readings.failed[valueIndex(Value::Frequency)]);
}

TEST_F(CommandsTest, FilmsAreAddressedByOneByte) {
    for (const auto& [number, byte] :
         std::map<int, int>{{1, '1'}, {9, '9'}, {10, ':'}, {12, 60}, {99, 147}}) {
        packets[filmCommand(number) + "?"] = good("GOLD____  19.3 100 .381 1.08  .5 60 3");
        const FilmRecord film = commands.Comm_GetFilm(number).film.value();
        commands.Comm_SetFilm(number, film);
        const std::string head = {'A', static_cast<char>(byte)};
        EXPECT_EQ(sent(), (Sent{head + "?", head + "GOLD____ 19.300 100 0.381 1.080 0.500  60  3"}));
        EXPECT_EQ(film.FilmNum, number);
    }
}

TEST(Payloads, FilmWrite) {
    FilmRecord film;
    film.FilmName = "Alum 2";
    film.Density = 2.7005;
    film.Tooling = 99.5;
    film.ZFactor = 1;
    film.TimeSet = 0.25;
    film.SensorAvg = 63;
    EXPECT_EQ(filmPayload(film), "ALUM_2__ 2.701 100 1.000 0.000 0.000  .25  63");
    film.FilmName = "\xE9l\xDF\xFF\x9A";
    EXPECT_EQ(filmPayload(film).substr(0, 9), "\xC9L\xDF\x9F\x8A___ ");
    film.FilmName = "longer than eight";
    EXPECT_EQ(filmPayload(film).substr(0, 9), "LONGER_T ");
}

TEST_F(CommandsTest, FilmReplies) {
    // An answer, and the name and density in it.
    const std::tuple<const char*, const char*, double> cases[] = {
        {"Al  2   2.7  100   1.08 1  .5  60  3 99", "Al  2   ", 2.7},
        {"ALUMIN__x", "ALUMIN__", 0},
        {"  AL     2.7 100 1 1 1 60 3 ", "  AL    ", 2.7}, // blanks before it are the name's
    };
    for (const auto& [reply, name, density] : cases) {
        packets["A5?"] = good(reply);
        const FilmRecord film = commands.Comm_GetFilm(5).film.value();
        EXPECT_EQ(film.FilmName, name);
        EXPECT_EQ(film.Density, density);
    }
    packets["A7?"] = good("\xE9shorter");
    packets["A8?"] = replyPacket('E', "");
    bench.boxes.expectShow("Get Film Error: \xC3\xA9shorter");
    bench.boxes.expectShow("Get Film Error: ");
    EXPECT_FALSE(commands.Comm_GetFilm(7).film);
    EXPECT_FALSE(commands.Comm_GetFilm(8).film);
}

TEST_F(CommandsTest, SystemRecordsAreTakenWholeOrNotAtAll) {
    const std::array<double, 7> kept{9, 9, 9, 9, 9, 9, 9};
    const std::tuple<const char*, bool, std::array<double, 7>> cases[] = {
        {"4.5 6.1 -5 100 0 1.5 1", true, {4.5, 6.1, -5, 100, 0, 1.5, 1}},
        {" .5   +2  1E2 100 0 1.5 1  ", true, {.5, 2, 100, 100, 0, 1.5, 1}},
        {"5.0MHz 2 3 4 5 6 7on", true, {5, 2, 3, 4, 5, 6, 7}},
        {"1 2 3 4 5 6", false, kept},
        {"1 2,5 3 4 5 6 7", false, kept},
        {"1 2 x 4 5 6 7", false, kept},
        {"1 nan 3 4 5 6 7", false, kept},
        {"1 2 3 4 5 6 1E999", false, kept},
    };
    for (const auto& [reply, taken, values] : cases) {
        SystemParameters p{9, 9, 9, 9, 9, {}, 9, 9, 9, 9, 9, 9, 9};
        packets["B?"] = good("1 0 1 0 2.5 101 102 103 104 105 106");
        packets["C?"] = good(reply);
        EXPECT_EQ(commands.Comm_GetSystem(p).taken, taken) << reply;
        const std::array second{p.FreqMin,  p.FreqMax,  p.RateMin, p.RateMax,
                                p.ThickMin, p.ThickMax, p.EtchMode};
        EXPECT_EQ(second, values) << reply;
        EXPECT_EQ(p.Tooling, (std::array<double, 6>{101, 102, 103, 104, 105, 106}))
            << "the first stands alone";
    }

    // A film's answer, and then the first record's, come too late.
    wire.setAnswerer([&](const std::string& command) {
        wire.arrive(packets[command], command == "C?" ? 0 : 1.1);
        return std::string();
    });
    packets["A1?"] = good("GOLD 1 1 2 3 4 5 6 7 8 9");
    packets["C?"] = good("1 2 3 4 5 6 7");
    bench.link.Comm_Send("A1?");
    SystemParameters p;
    p.Simulate = p.EtchMode = 9;
    EXPECT_FALSE(commands.Comm_GetSystem(p).taken);
    EXPECT_EQ(p.Simulate, 9) << "neither the film nor an answer after its time-out";
    EXPECT_EQ(p.EtchMode, 7) << "in step";
}

TEST_F(CommandsTest, AShutterQueryIsAnsweredOrNot) {
    const std::pair<std::string, std::optional<std::int16_t>> cases[] = {
        {good("1"), std::int16_t{1}}, {good(" 2.5x"), std::int16_t{2}},      {good("open"), std::int16_t{0}},
        {good(""), std::nullopt},     {replyPacket('B', "1"), std::nullopt}, {"", std::nullopt}};
    for (const auto& [packet, answer] : cases) {
        packets["U?"] = packet;
        EXPECT_EQ(commands.Comm_GetUnit().unit, answer) << packet;
    }
    bench.pump.atPump(2, [this] {
        EXPECT_EQ(commands.Comm_GetUnit().status, comm::kBusy) << "not that of the one before";
    });
    bench.link.Comm_Send("M");
}

} // namespace
} // namespace drx9
