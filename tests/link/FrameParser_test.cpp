// Packets, check characters, and the parser on its own.
#include "LinkChecks.h"
#include "fakes/FuzzSeeds.h"

#include <random>

namespace drx9 {
namespace {

TEST(Packets, AreFramedByteForByte) {
    EXPECT_EQ(commandPacket("@"), "\x21\x23\x40\x4F\x37");
    EXPECT_EQ(commandPacket("J"), "\x21\x23\x4A\x4F\x38");
    EXPECT_EQ(Comm_CRCText("#@"), "\x4F\x37");
    const std::string film = commandPacket(filmCommand(99) + "?");
    EXPECT_EQ(film.substr(0, 5), "!%A\x93?");
}

TEST(FrameParser, TheTextStopsGrowing) {
    FrameParser parser;
    for (const char c : "!\x01" + std::string(5000, 'x')) {
        parser.push(static_cast<std::uint8_t>(c));
    }
    EXPECT_EQ(parser.Text().size(), FrameParser::kTextLimit);
    EXPECT_EQ(parser.Bytes().size(), std::size_t{'x'} - 31);
}

TEST(FrameParser, SurvivesAnyBytes) {
    std::mt19937 random(17);
    for (int round = 0; round < 500; ++round) {
        std::string bytes(random() % 700, ' ');
        for (char& c : bytes) {
            c = static_cast<char>(random() % 4 == 0 ? random() % 256 : 33 + random() % 16);
        }
        checkReplyStream(bytes);
        checkReplies(bytes);
    }
}

TEST(FuzzSeeds, Hold) {
    replaySeeds("link_parser", checkReplyStream);
    replaySeeds("link_replies", checkReplies);
}

} // namespace
} // namespace drx9
