// The exchange, over each of the three links.
#include "link/LinkBench.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <stdexcept>

namespace drx9 {
namespace {

constexpr std::int16_t kEthernet = 2;

class EachLink : public testing::TestWithParam<std::int16_t> {
protected:
    LinkBench bench{GetParam()};
    Link& link = bench.link;
};

std::string linkName(const testing::TestParamInfo<std::int16_t>& tested) {
    return tested.param == 0 ? "RS232" : tested.param == 1 ? "USB" : "Ethernet";
}

INSTANTIATE_TEST_SUITE_P(Links, EachLink, testing::Values(0, 1, kEthernet), linkName);

struct Case {
    const char* what;
    std::string bytes;
    std::uint16_t status;
    std::string reply;
    std::uint16_t statusWholeChunk; ///< over Ethernet, which feeds all that it fetched
    std::string replyWholeChunk;
};

std::string withZeros(const std::string& bytes) {
    std::string spread;
    for (const char c : bytes) {
        spread += std::string(2, '\0') + c;
    }
    return spread;
}

std::vector<Case> replyCases() {
    const std::string reply = good("1.25");
    std::string wrongCheck = reply;
    wrongCheck.back() = static_cast<char>(wrongCheck.back() + 1);
    std::string passedOver = reply;
    passedOver.insert(1, "\x01\x02");
    const auto same = [](const char* what, const std::string& bytes, std::uint16_t status,
                         const std::string& data = "") {
        return Case{what, bytes, status, data, status, data};
    };
    return {
        same("number", reply, 0, "1.25"),
        same("blanks around", good("  1.25 "), 0, "1.25"),
        same("no data", good(""), 0),
        same("not ready", replyPacket('B', ""), 3),
        same("bad command", replyPacket('C', "no"), 4),
        same("bad data", replyPacket('D', ""), 5),
        same("bad mode", replyPacket('E', ""), 6),
        same("unknown letter", replyPacket('Z', ""), 5),
        same("wrong check characters", wrongCheck, 7),
        same("longest", good(std::string(219, 'x')), 0, std::string(219, 'x')),
        same("zero bytes are skipped", withZeros(reply), 0, "1.25"),
        same("noise before", "A#4" + reply, 0, "1.25"),
        same("a new start within", "!(A9.9" + reply, 0, "1.25"),
        same("length bytes passed over shift the data", passedOver, 0, "(A1.25"),
        same("length of noise", "!\x05\x41\x42" + reply, 0, "1.25"),
        same("silence", "", 1),
        same("cut", reply.substr(0, reply.size() - 1), 1),
        {"shortest packet, then a good one", "!\"x" + reply, 7, "", 0, "1.25"},
        {"packet without data, then a good one", "!#xx" + reply, 7, "", 0, "1.25"},
        {"stray byte behind", reply + "x", 0, "1.25", 7, ""},
        {"second reply behind", reply + replyPacket('E', ""), 0, "1.25", 6, ""},
    };
}

TEST_P(EachLink, TakesReplies) {
    const bool whole = GetParam() == kEthernet;
    for (const Case& c : replyCases()) {
        SCOPED_TRACE(c.what);
        LinkBench fresh(GetParam());
        fresh.wire().answer(c.bytes);
        EXPECT_EQ(fresh.link.Comm_Send("P1"), whole ? c.replyWholeChunk : c.reply);
        EXPECT_EQ(fresh.link.CommStatus(), whole ? c.statusWholeChunk : c.status);
        EXPECT_EQ(fresh.wire().packets().back(), commandPacket("P1"));
        fresh.wire().answer(good("next"));
        EXPECT_EQ(fresh.link.Comm_Send("P2"), "next") << "after it";
    }
}

TEST_P(EachLink, NoiseBehindAnEarlierPacketIsCheckedWithIt) {
    bench.wire().answer(good("1.25"));
    link.Comm_Send("P1");
    bench.wire().answer("x" + good("2.5"));
    const bool whole = GetParam() == kEthernet;
    EXPECT_EQ(link.Comm_Send("P2"), whole ? "2.5" : "");
    EXPECT_EQ(link.CommStatus(), whole ? comm::kOk : comm::kChecksum);
}

TEST_P(EachLink, EveryFlippedBitEndsInAStatus) {
    for (const char* data : {"12.345", "", "ALUMIN__  2.700 100 1.080 1.000 0.500  60  3"}) {
        const std::string packet = replyPacket('A', data);
        for (std::size_t bit = 0; bit < packet.size() * 8; ++bit) {
            std::string damaged = packet;
            damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << bit % 8));
            bench.wire().answer(damaged);
            EXPECT_EQ(link.Comm_Send("P1"), "") << "bit " << bit;
            EXPECT_TRUE(link.CommStatus() == comm::kChecksum || link.CommStatus() == comm::kTimeout)
                << "bit " << bit << " status " << link.CommStatus();
        }
    }
    bench.wire().answer(good("1"));
    EXPECT_EQ(link.Comm_Send("P1"), "1");
}

TEST_P(EachLink, AnyBytesLeaveItSane) {
    std::mt19937 random(20240517);
    const auto byte = [&random] {
        return static_cast<char>(random() % 3 == 0 ? random() % 256 : 33 + random() % 12);
    };
    for (int round = 0; round < 300; ++round) {
        std::string stream(random() % 400, ' ');
        std::generate(stream.begin(), stream.end(), byte);
        LinkBench inOne(GetParam());
        inOne.wire().answer(stream);
        const std::string reply = inOne.link.Comm_Send("P1");
        LinkBench byByte(GetParam());
        for (std::size_t i = 0; i < stream.size(); ++i) {
            byByte.pump.atTime(byByte.clock.monotonic() + 0.001 * static_cast<double>(i + 1),
                               [&byByte, &stream, i] { byByte.wire().arrive(stream.substr(i, 1)); });
        }
        EXPECT_EQ(byByte.link.Comm_Send("P1"), reply);
        // A chunk that came over Ethernet is fed past the packet that ends the wait.
        if (GetParam() != kEthernet) {
            EXPECT_EQ(byByte.link.CommStatus(), inOne.link.CommStatus()) << "round " << round;
        }
        for (LinkBench* after : {&inOne, &byByte}) {
            after->pump.runFor(1);
            after->wire().answer(good("next"));
            EXPECT_EQ(after->link.Comm_Send("P2"), "next") << "round " << round;
        }
    }
}

TEST_P(EachLink, TimesOutAfterASecondAsleep) {
    const double start = bench.clock.monotonic();
    EXPECT_EQ(link.Comm_Send("P1"), "");
    EXPECT_EQ(link.CommStatus(), comm::kTimeout);
    EXPECT_DOUBLE_EQ(bench.clock.monotonic() - start, 1.0);
    EXPECT_LE(bench.pump.pumps(), GetParam() == 1 ? 200 : 10);
}

TEST_P(EachLink, DropsALateReply) {
    bench.wire().answer(good("late"), 1.2);
    EXPECT_EQ(link.Comm_Send("P1"), "");
    bench.clock.advance(0.5);
    bench.wire().answer(good("own"), 0.2);
    EXPECT_EQ(link.Comm_Send("P2"), "own");
}

TEST_P(EachLink, TakesAReplyThatComesInPieces) {
    const std::string reply = good("12.345");
    bench.wire().answer(reply.substr(0, 3), 0.2);
    bench.wire().arrive(reply.substr(3), 0.9);
    EXPECT_EQ(link.Comm_Send("P1"), "12.345");
}

TEST_P(EachLink, NothingSentTimesOutAtOnce) {
    bench.transports.closeAll();
    const double start = bench.clock.monotonic();
    EXPECT_EQ(link.Comm_Send("P1"), "");
    EXPECT_EQ(link.CommStatus(), comm::kTimeout);
    EXPECT_EQ(bench.clock.monotonic(), start);
    EXPECT_EQ(bench.pump.sleeps().size(), 0U);
    EXPECT_TRUE(bench.wire().packets().empty());
}

TEST_P(EachLink, ACommandGivenInAWaitGoesNext) {
    for (const char* second : {"D5", "D7"}) {
        bench.wire().answer(good("1.5"), 0.1);
        bench.wire().answer(replyPacket('E', ""), 0.1);
        bench.wire().forget();
        std::string inner = "none";
        bench.pump.atPump(2, [&] { inner = link.Comm_Send("T"); });
        bench.pump.atPump(2, [&] { inner = link.Comm_Send(second); }); // replaces the one before
        EXPECT_EQ(link.Comm_Send("P1"), "1.5");
        EXPECT_EQ(inner, "");
        EXPECT_EQ(bench.wire().commands(), (std::vector<std::string>{"P1", second}));
        EXPECT_EQ(link.CommStatus(), comm::kBadMode) << "of the pending one";
        EXPECT_EQ(link.outcome(), comm::kOk) << "of the first one";
        EXPECT_FALSE(bench.actions.busy());
    }
}

TEST_P(EachLink, AnExceptionLeavesNoBusyBehind) {
    bench.pump.atPump(2, [this] {
        link.Comm_Send("T");
        throw std::runtime_error("handler");
    });
    EXPECT_THROW(link.Comm_Send("P1"), std::runtime_error);
    EXPECT_NE(link.CommStatus(), comm::kBusy);
    EXPECT_FALSE(link.exchanging());
    EXPECT_FALSE(bench.actions.busy());
    bench.wire().answer(good("1"));
    EXPECT_EQ(link.Comm_Send("P2"), "1");
    EXPECT_EQ(bench.wire().commands(), (std::vector<std::string>{"P1", "P2"})) << "T belonged to what failed";
}

TEST_P(EachLink, WaitsOutADeadPort) {
    bench.pump.atPump(2, [this] { bench.transports.closeAll(); });
    const double start = bench.clock.monotonic();
    EXPECT_EQ(link.Comm_Send("P1"), "");
    EXPECT_EQ(link.CommStatus(), comm::kTimeout);
    EXPECT_NEAR(bench.clock.monotonic() - start, 1.0, 1e-9);
}

TEST_P(EachLink, AMenuActionWaitsForTheExchange) {
    std::vector<std::string> order;
    bench.wire().answer(good("1"), 0.1);
    bench.pump.atPump(2, [&] { bench.actions.runWhenIdle([&] { order.emplace_back("action"); }); });
    link.Comm_Send("P1");
    order.emplace_back("exchange");
    EXPECT_TRUE(bench.actions.waiting());
    bench.pump.runPosted();
    EXPECT_EQ(order, (std::vector<std::string>{"exchange", "action"}));
}

TEST(Link, AStatusOfOneUnderTheWaitMeansLost) {
    LinkBench bench(0);
    bench.pump.atPump(3, [&] {
        bench.clock.advance(2);
        bench.link.setCommStatus(comm::kTimeout);
    });
    bench.link.Comm_Send("P1");
    EXPECT_EQ(bench.link.CommStatus(), comm::kLost);
}

TEST(Link, AFailedUsbWriteClosesTheDevice) {
    for (const bool flush : {true, false}) {
        LinkBench bench(1);
        EXPECT_EQ(bench.usb.baud, 115200U);
        (flush ? bench.usb.flushFails : bench.usb.writeFails) = true;
        bench.link.Comm_Send("P1");
        EXPECT_EQ(bench.link.CommStatus(), comm::kTimeout);
        EXPECT_TRUE(bench.usb.handles().empty());
        EXPECT_EQ(bench.transports.usb.USBHandle(), 0);
    }
}

TEST(Link, VersionsDecideTheFilmSlots) {
    const struct {
        std::string reply;
        std::string version;
        int films;
    } cases[] = {
        {"DRX-9 4.08", "4.08", 9}, {"DRX-9 4.09", "4.09", 99}, {"4.08", "", 99},         {"", "", 99},
        {"X1.00", "1.00", 9},      {"DRX-9 beta", "beta", 99}, {"0.00 0.00", "0.00", 99}};
    for (const auto& c : cases) {
        LinkBench bench(0);
        bench.wire().answer(good(c.reply));
        bench.link.Comm_Send("@");
        bench.wire().answer(good("not a version"));
        bench.link.Comm_Send("J");
        EXPECT_EQ(bench.link.CommVersion(), c.reply);
        EXPECT_EQ(bench.link.Comm_VersionText(), c.version);
        EXPECT_EQ(bench.link.FilmCount(), c.films) << c.reply;
    }
}

TEST(Link, StatusTexts) {
    const char* texts[] = {"",
                           "Timeout",
                           "No Data",
                           "Not Ready",
                           "Bad Command",
                           "Bad Data",
                           "Bad Mode",
                           "Checksum Error",
                           "Port Not Ready",
                           "Instrument Busy",
                           "Lost Communications",
                           "Unknown Error"};
    for (std::uint16_t status = 0; status < std::size(texts); ++status) {
        EXPECT_EQ(commStatusText(status), texts[status]);
    }
    EXPECT_EQ(commStatusText(65535), "Unknown Error");
}

} // namespace
} // namespace drx9
