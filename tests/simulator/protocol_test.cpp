#include "simulator/Bench.h"
#include "simulator/CommandParser.h"

namespace drx9::sim {
namespace {

const std::string kNewFilm = "2.700 100 1.080 5.000 2.500  60  63";

// Every letter, its good and its bad forms. Film characters: "1" is film 1, ":" film 10, code 147 film 99.
TEST(Protocol, AnswersEachCommand) {
    const std::string gold = "A2GOLD____ " + kNewFilm;
    const std::pair<const char*, std::vector<std::string>> alike[] = {
        {"A", {"D99", "S", "T", gold}},
        {"C", {"Q", "p1", "\x01"}},
        {"D",
         {"@1", "P7", "P0", "P", "Lx", "D100", "A\x94?", "A0?", "A", "U2", "B 1 2 3",
          "B 1 2 3 4 5 6 7 8 9 10 11 12", "B 0,25 2 3 4 5 6 7 8 9 10 11", "C 1 2 3 4 5 6"}}};
    for (const auto& [reply, commands] : alike) {
        for (const std::string& command : commands) {
            EXPECT_EQ(Bench().ask(command), reply) << command;
        }
    }
    // What is sent before, "" for nothing; the command; its reply.
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {"", "A:?", "AFILM10   1.000 100 1.000 0.000 0.000 0 63"},
        {"", "A\x93?", "AFILM99   1.000 100 1.000 0.000 0.000 0 63"},
        {"U1", gold, "E"},
        {"B .25  1  0  0  7  90  91  92  93  94  95 ", "B?", "A0.25 1 0 0 7 90 91 92 93 94 95"},
        {"C 4.5  6.1 -1  25  .125  12.5  1 ", "C?", "A4.5 6.1 -1 25 0.125 12.5 1"},
        {"U1", "Z", "E"},
    };
    for (const auto& [before, command, reply] : cases) {
        Bench bench;
        if (!before.empty()) {
            bench.ask(before);
        }
        EXPECT_EQ(bench.ask(command), reply) << before << " then " << command;
    }
}

TEST(Films, KeepWhatWasWrittenInTheirOwnDigits) {
    // A film as it is written, and as it reads back; "" where it is refused and stays as it was.
    const std::pair<std::string, std::string> cases[] = {
        {"ALU_____ " + kNewFilm, "ALU      2.700 100 1.080 5.000 2.500 60 63"},
        {"MY_F?!__ " + kNewFilm, "MY_F?!   2.700 100 1.080 5.000 2.500 60 63"}, // only padding becomes blank
        {"A_______ 2.7004 99.6 1 5 .0005 -1.5 1", "A        2.700 100 1.000 5.000 0.001 -1.5 1"},
        {"ALU_____ 2.700 100 1.080 5.000 2.500  60", ""},
        {"ALU_____ 2,700 100 1.080 5.000 2.500  60  63", ""},
        {"ALU_____ 2.7 100 1.080 5.000 2.500  1e-200  63", ""}, // no reply could hold its digits
    };
    for (const auto& [written, readBack] : cases) {
        Bench bench;
        const std::string before = bench.ask("A2?");
        EXPECT_EQ(bench.ask("A2" + written), readBack.empty() ? "D" : "A") << written;
        EXPECT_EQ(bench.ask("A2?"), readBack.empty() ? before : "A" + readBack) << written;
        EXPECT_EQ(bench.ask("Z"), "A");
        EXPECT_EQ(bench.ask("A2?"), before) << "default films are back";
    }
}

/// The commands that a parser finds in `bytes`, "|" behind each; "#" for a bad packet.
std::string parsed(std::string_view bytes) {
    CommandParser parser;
    std::string found;
    for (const char byte : bytes) {
        const auto outcome = parser.feed(byte);
        found += outcome == CommandParser::Outcome::Command  ? parser.text() + '|'
                 : outcome == CommandParser::Outcome::BadCrc ? "#"
                                                             : "";
    }
    return found;
}

TEST(Framing, NoFlippedBitIsTakenForACommand) {
    const std::string good = commandPacket("A1GOLD____ " + kNewFilm);
    for (std::size_t bit = 0; bit < good.size() * 8; ++bit) {
        std::string flipped = good;
        flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << (bit % 8)));
        EXPECT_EQ(parsed(flipped).find('|'), std::string::npos) << bit;
        const std::string next = commandPacket("P1");
        EXPECT_NE(parsed(flipped + next).find("P1|"), std::string::npos) << "lost after bit " << bit;
    }
}

} // namespace
} // namespace drx9::sim
