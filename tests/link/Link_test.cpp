// The exchange, over each of the three links.
#include "link/LinkBench.h"

#include <gtest/gtest.h>

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

/// Status and reply of one exchange: "0 1.25".
std::string exchanged(LinkBench& bench, const std::string& command = "P1") {
    const std::string reply = bench.link.Comm_Send(command).reply;
    return std::to_string(bench.link.CommStatus()) + " " + reply;
}

TEST_P(EachLink, TakesReplies) {
    const std::string reply = good("1.25");
    std::string wrongCheck = reply;
    wrongCheck.back() = static_cast<char>(wrongCheck.back() + 1);
    std::string passedOver = reply;
    passedOver.insert(1, "\x01\x02");
    std::string zeros = reply;
    zeros.insert(1, 3, '\0').insert(6, 2, '\0');
    const struct {
        const char* what;
        std::string bytes;
        std::string result;
        std::string wholeChunk = {}; ///< over Ethernet, which feeds all that it fetched; empty: the same
    } cases[] = {
        {"blanks around", good("  1.25 "), "0 1.25"},
        {"no data", good(""), "0 "},
        {"not ready", replyPacket('B', ""), "3 "},
        {"bad command", replyPacket('C', "no"), "4 "},
        {"bad mode", replyPacket('E', ""), "6 "},
        {"unknown letter", replyPacket('Z', ""), "5 "},
        {"wrong check characters", wrongCheck, "7 "},
        {"longest", good(std::string(219, 'x')), "0 " + std::string(219, 'x')},
        {"zero bytes are skipped", zeros, "0 1.25"},
        {"noise before", "A#4" + reply, "0 1.25"},
        {"a new start within", "!(A9.9" + reply, "0 1.25"},
        {"length bytes passed over shift the data", passedOver, "0 (A1.25"},
        {"a length of noise ends the packet", "!\x05" + reply.substr(1), "1 "},
        {"silence", "", "1 "},
        {"cut", reply.substr(0, reply.size() - 1), "1 "},
        {"shortest packet, then a good one", "!\"x" + reply, "7 ", "0 1.25"},
        {"no room for a letter, then a good one", "!#xx" + reply, "7 ", "0 1.25"},
        {"stray byte behind", reply + "x", "0 1.25", "7 "},
        {"second reply behind", reply + replyPacket('E', ""), "0 1.25", "6 "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        LinkBench fresh(GetParam());
        fresh.wire().answer(c.bytes);
        fresh.wire().answer(good("next"));
        const bool whole = GetParam() == kEthernet && !c.wholeChunk.empty();
        EXPECT_EQ(exchanged(fresh), whole ? c.wholeChunk : c.result);
        EXPECT_EQ(exchanged(fresh, "P2"), "0 next");
        EXPECT_EQ(fresh.wire().packets(),
                  (std::vector<std::string>{commandPacket("P1"), commandPacket("P2")}));
    }
}

TEST_P(EachLink, NoiseBehindAnEarlierPacketIsCheckedWithIt) {
    bench.wire().answer(good("1.25"));
    bench.wire().answer("x" + good("2.5"));
    bench.wire().answer(good("3"));
    link.watch().begin();
    exchanged(bench);
    EXPECT_EQ(exchanged(bench), GetParam() == kEthernet ? "0 2.5" : "7 ");
    EXPECT_EQ(exchanged(bench), "0 3");
    link.listen(0.1);
    EXPECT_FALSE(link.watch().broken()) << "the packet behind the noise was its own command's";
}

TEST_P(EachLink, EveryFlippedBitEndsInAStatus) {
    for (const char* data : {"12.345", "", "ALUMIN__  2.700 100 1.080 1.000 0.500  60  3"}) {
        const std::string packet = good(data);
        for (std::size_t bit = 0; bit < packet.size() * 8; ++bit) {
            std::string damaged = packet;
            damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << bit % 8));
            bench.wire().answer(damaged);
            const std::string result = exchanged(bench);
            EXPECT_TRUE(result == "7 " || result == "1 ") << "bit " << bit << ": " << result;
        }
    }
    bench.wire().answer(good("1"));
    EXPECT_EQ(exchanged(bench), "0 1");
}

TEST_P(EachLink, WaitsASecondAsleepButNotWhenNothingWasSent) {
    for (const int closedAtPump : {0, 2, 999}) { // before it, in mid-exchange, never
        if (closedAtPump == 0) {
            bench.transports.closeAll();
        }
        bench.pump.atPump(closedAtPump, [this] { bench.transports.closeAll(); });
        const double start = bench.clock.monotonic();
        const int pumps = bench.pump.pumps();
        EXPECT_EQ(exchanged(bench), "1 ");
        EXPECT_NEAR(bench.clock.monotonic() - start, closedAtPump == 0 ? 0.0 : 1.0, 1e-9) << closedAtPump;
        EXPECT_LE(bench.pump.pumps() - pumps, closedAtPump == 0 ? 1 : GetParam() == 1 ? 200 : 10);
        bench.use(GetParam());
        link.forget(); // as an opening does
    }
}

TEST_P(EachLink, TakesPieces) {
    const std::string reply = good("12.345");
    bench.wire().answer(reply.substr(0, 3), 0.2);
    bench.wire().arrive(reply.substr(3), 0.9);
    EXPECT_EQ(exchanged(bench), "0 12.345");
}

TEST_P(EachLink, ACommandWaitsForTheLateAnswerOfTheOneBefore) {
    // s from the send to the first answer (0: never); whether the program is asked to close meanwhile; s from
    // the time-out to the next send.
    const std::tuple<double, bool, double> cases[] = {
        {1.2, false, 0.2}, {0, false, 0.5}, {0, true, 0}, {1.45, false, 0.45}};
    for (const auto& [late, closes, wait] : cases) {
        LinkBench fresh(GetParam());
        fresh.wire().answer(late > 0 ? good("late") : "", late);
        fresh.wire().answer(good("own"), 0.01);
        EXPECT_EQ(exchanged(fresh), "1 ");
        if (closes) {
            fresh.pump.atPump(1, [&] { fresh.actions.runWhenIdle([] {}, ActionQueue::For::Close); });
        }
        fresh.link.watch().begin();
        const double start = fresh.clock.monotonic();
        EXPECT_EQ(exchanged(fresh, "S"), "0 own") << late;
        EXPECT_NEAR(fresh.clock.monotonic() - start - 0.01, wait, 0.021) << late;
        EXPECT_FALSE(fresh.link.watch().broken()) << "what came before the watch's first send is not its own";
    }
    bench.wire().answer(good("late"), 1.2);
    link.watch().begin();
    exchanged(bench);
    link.settle();
    EXPECT_TRUE(link.watch().late());
    EXPECT_EQ(link.CommStatus(), comm::kTimeout) << "of the exchange that timed out";
}

TEST_P(EachLink, TheRestOfALateAnswerIsNoiseToTheNextExchange) {
    bench.wire().answer(good("late").substr(0, 5), 1.3);
    bench.wire().arrive(good("late").substr(5), 1.55);
    EXPECT_EQ(exchanged(bench), "1 ");
    bench.wire().answer(good("own"), 0.2);
    EXPECT_EQ(exchanged(bench, "S"), "0 own");
}

TEST_P(EachLink, NothingIsSentOnceTheSessionEnds) {
    bench.wire().answer("");
    bench.pump.atPump(2, [this] { bench.actions.hurry(); });
    const double start = bench.clock.monotonic();
    EXPECT_EQ(exchanged(bench, "S"), "1 ");
    EXPECT_EQ(exchanged(bench, "T"), "1 ");
    EXPECT_EQ(bench.wire().commands(), std::vector<std::string>{"S"});
    EXPECT_LE(bench.clock.monotonic() - start, 1.0 + 1e-9);
}

TEST_P(EachLink, ACommandGivenInAWaitGoesNext) {
    bench.wire().answer(good("1.5"), 0.1);
    bench.wire().answer(replyPacket('E', ""), 0.1);
    for (const char* inner : {"T", "D5"}) { // the second replaces the first
        bench.pump.atPump(2, [this, inner] { EXPECT_EQ(link.Comm_Send(inner).reply, ""); });
    }
    const Exchange first = link.Comm_Send("P1");
    EXPECT_EQ(first.reply, "1.5");
    EXPECT_EQ(first.status, comm::kOk);
    EXPECT_EQ(link.CommStatus(), comm::kBadMode) << "that of the pending one";
    EXPECT_EQ(bench.wire().commands(), (std::vector<std::string>{"P1", "D5"}));
    EXPECT_FALSE(bench.actions.busy());
}

TEST_P(EachLink, AStatusSetInAWaitLetsNoSecondCommandIn) {
    bench.pump.atPump(2, [this] {
        link.setCommStatus(comm::kOk);
        link.Comm_Send("T");
        EXPECT_EQ(bench.wire().commands(), std::vector<std::string>{"P1"});
    });
    EXPECT_EQ(exchanged(bench), "1 ") << "of T, sent when the exchange was over";
}

TEST_P(EachLink, AnExceptionLeavesNoBusyBehind) {
    bench.pump.atPump(2, [this] {
        link.Comm_Send("T");
        throw std::runtime_error("handler");
    });
    EXPECT_THROW(link.Comm_Send("P1"), std::runtime_error);
    EXPECT_NE(link.CommStatus(), comm::kBusy);
    EXPECT_FALSE(link.exchanging() || bench.actions.busy());
    bench.wire().answer(good("1"));
    EXPECT_EQ(exchanged(bench, "P2"), "0 1");
    EXPECT_EQ(bench.wire().commands(), (std::vector<std::string>{"P1", "P2"})) << "T belonged to what failed";
}

TEST_P(EachLink, ActionsWaitForTheExchangeAndForNoOther) {
    std::string order;
    bench.wire().answer(good("1"), 0.1);
    bench.actions.setFaultHandler([&](const std::exception& error) { order += error.what(); });
    bench.pump.atPump(2, [&] {
        bench.actions.runWhenIdle([&] {
            order += "dialog ";
            bench.pump.runPosted(); // it runs the event loop: the action behind it takes its turn
            EXPECT_FALSE(bench.actions.waiting()) << "polling must go on under the dialog";
            throw std::runtime_error("fault ");
        });
        bench.actions.runWhenIdle([&] { order += "second "; });
    });
    link.Comm_Send("P1");
    order += "exchange ";
    bench.pump.runPosted();
    EXPECT_EQ(order, "exchange dialog second fault ");
    {
        const ActionQueue::Scope busy(bench.actions);
        bench.actions.runWhenIdle([&] { order += "dropped"; });
        bench.actions.runWhenIdle([&] { order += "close"; }, ActionQueue::For::Close);
        bench.actions.runWhenIdle([&] { order += "dropped"; });
    }
    bench.pump.runPosted();
    EXPECT_EQ(order, "exchange dialog second fault close");
}

TEST(Link, AFailedUsbWriteClosesTheDevice) {
    for (const bool flush : {true, false}) {
        LinkBench bench(1);
        EXPECT_EQ(bench.usb.baud, 115200U);
        (flush ? bench.usb.flushFails : bench.usb.writeFails) = true;
        EXPECT_EQ(exchanged(bench), "1 ");
        EXPECT_TRUE(bench.usb.handles().empty() && !bench.transports.usb.isOpen());
    }
}

TEST(Link, VersionsDecideTheFilmSlots) {
    const std::tuple<const char*, const char*, int> cases[] = {
        {"DRX-9 4.08", "4.08", 9}, {"DRX-9 4.09", "4.09", 99}, {"4.08", "", 99},         {"", "", 99},
        {"X1.00", "1.00", 9},      {"DRX-9 beta", "beta", 99}, {"0.00 0.00", "0.00", 99}};
    for (const auto& [reply, version, films] : cases) {
        LinkBench bench(0);
        bench.wire().answer(good(reply));
        exchanged(bench, "@");
        bench.wire().answer(good("not a version"));
        exchanged(bench, "J");
        EXPECT_EQ(bench.link.Comm_VersionText(), version);
        EXPECT_EQ(bench.link.FilmCount(), films) << reply;
    }
}

} // namespace
} // namespace drx9
