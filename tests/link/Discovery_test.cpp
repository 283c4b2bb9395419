// Finding the instrument and connecting.
#include "link/DiscoveryBench.h"
#include "util/Text.h"

#include <gtest/gtest.h>

namespace drx9 {
namespace {

constexpr const char* kNotFound = "Instrument not found.";

class DiscoveryTest : public testing::Test {
protected:
    DiscoveryTest() {
        for (FakeWire* wire : {&bench.serial.wire, &bench.usb.wire, &bench.socket.wire}) {
            answer(*wire, good("DRX-9 Ver 5.01"), good("type 3"));
        }
    }
    static void answer(FakeWire& wire, const std::string& version, const std::string& type) {
        wire.setAnswerer([=](const std::string& command) { return command == "@" ? version : type; });
    }
    void expectLost() {
        EXPECT_EQ(link.CommStatus(), comm::kLost);
        EXPECT_FALSE(link.CommOK());
        EXPECT_EQ(link.InstrumentType(), 0);
        EXPECT_NE(discovery.failure(), "");
        EXPECT_TRUE(bench.usb.handles().empty());
    }
    void expectOnLine(int type) {
        EXPECT_EQ(link.CommStatus(), comm::kOk);
        EXPECT_TRUE(link.CommOK());
        EXPECT_EQ(link.InstrumentType(), type);
        EXPECT_EQ(discovery.failure(), "");
        EXPECT_EQ(bench.wire().commands(), (std::vector<std::string>{"@", "J"}));
    }
    DiscoveryBench bench;
    Link& link = bench.link;
    Discovery& discovery = bench.discovery;
};

TEST_F(DiscoveryTest, OpensEachLinkAndClosesTheOthers) {
    for (std::int16_t type = 0; type < 4; ++type) { // an unknown one counts as RS-232
        bench.use(type);
        bench.settings.Baud = 9600;
        bench.serial.wire.forget();
        EXPECT_TRUE(discovery.Comm_Open());
        EXPECT_EQ(link.Comm_VersionText(), "5.01");
        EXPECT_EQ(bench.transports.serial.isOpen(), type % 3 == 0);
        EXPECT_EQ(bench.transports.usb.isOpen(), type == 1);
        EXPECT_EQ(bench.transports.socket.isOpen(), type == 2);
    }
    EXPECT_EQ(bench.serial.settings, "9600,N,8,1");
    EXPECT_EQ(bench.usb.baud, 115200U);
    EXPECT_EQ(bench.socket.host + ":" + std::to_string(bench.socket.port), "192.168.1.200:2101");
}

TEST_F(DiscoveryTest, NoAnswerIsSaidInASystemModalBox) {
    for (std::int16_t type = 0; type < 3; ++type) {
        bench.settings.CommType = LinkType{type};
        answer(bench.wire(), type == 0 ? "" : replyPacket('B', ""), good("3"));
        bench.boxes.expectShow(kNotFound, [this] {
            expectLost();
            EXPECT_FALSE(discovery.Comm_Open()) << "from an event handler under the box";
        });
        EXPECT_FALSE(discovery.Comm_Open());
        EXPECT_TRUE(bench.boxes.shown().back().systemModal);
        EXPECT_EQ(bench.boxes.shown().back().title, "DRX9 Comm");
        EXPECT_FALSE(bench.actions.busy());
    }
}

TEST_F(DiscoveryTest, UsbBridges) {
    const std::vector<FakeUsb::Device> ten(10, {"83F5", "x"});
    const struct {
        const char* what;
        std::vector<FakeUsb::Device> devices;
        bool found;
        std::string serial; ///< the setting afterwards; before it is "ab12"
        std::vector<std::string> listed;
    } cases[] = {
        {"none", {}, false, "ab12", {}},
        {"its own", {{"EA60", "ab12"}, {"83F5", "AB12"}}, true, "ab12", {"AB12"}},
        {"lower case", {{"83f5", "ab12"}}, true, "ab12", {"ab12"}},
        {"a single other one is adopted", {{"83F5", "77"}, {"EA60", "9"}}, true, "77", {"77"}},
        {"two others", {{"83F5", "77"}, {"83F5", "78"}}, false, "ab12", {"77", "78"}},
        {"held by another program", {{"83F5", "ab12", false}}, false, "ab12", {}},
        {"among others", {{"83F5", "77"}, {"83F5", "ab12"}}, true, "ab12", {"77", "ab12"}},
        {"more than eight", ten, false, "ab12", std::vector<std::string>(8, "x")},
    };
    bench.settings.CommType = LinkType::Usb;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        bench.settings.USBSerNum = "ab12";
        bench.usb.devices = c.devices;
        bench.usb.wire.forget();
        EXPECT_EQ(discovery.Comm_Open(), c.found);
        EXPECT_EQ(bench.settings.USBSerNum, c.serial);
        EXPECT_EQ(discovery.USBSerialList(), c.listed);
        c.found ? expectOnLine(3) : expectLost();
        if (c.found) {
            ASSERT_EQ(bench.usb.handles().size(), 1U);
            const std::uint32_t opened = bench.usb.handles().begin()->second;
            EXPECT_EQ(upperAscii(bench.usb.devices.at(opened).serial), upperAscii(c.serial));
        }
    }
    EXPECT_FALSE(discovery.Comm_FindUSBDRX9("none"));
    EXPECT_TRUE(bench.usb.handles().empty());
}

TEST_F(DiscoveryTest, TheEthernetWaitEndsWithItsReason) {
    bench.settings.CommType = LinkType::Ethernet;
    using Case = std::tuple<double, std::string, double>;
    for (const auto& [delay, refusal, lasts] :
         {Case{0.4, "", 0.4}, {0, "refused", 0}, {0.3, "refused", 0.3}, {-1, "", 1.0}, {1.5, "", 1.0}}) {
        bench.socket.connectDelay = delay;
        bench.socket.refusal = refusal;
        bench.socket.wire.forget();
        const double start = bench.clock.monotonic();
        const bool open = discovery.Comm_Open();
        const double watched = open ? 0.05 : 0; // for answers that belong to the link as it was
        EXPECT_NEAR(bench.clock.monotonic() - start, lasts + watched, 1e-9);
        EXPECT_EQ(open, refusal.empty() && lasts < 1);
        open ? expectOnLine(3) : expectLost();
        bench.pump.runFor(2);
        EXPECT_EQ(bench.socket.state() == SocketControl::kConnected, open) << "a late connection is not kept";
    }
}

TEST_F(DiscoveryTest, ALossIsToldOnceWithoutBlocking) {
    for (int loss = 0; loss < 2; ++loss) {
        answer(bench.serial.wire, "", "");
        bench.boxes.expectNonBlocking(kNotFound);
        for (int attempt = 0; attempt < 3; ++attempt) {
            EXPECT_FALSE(discovery.Comm_Open(Messages::NonBlocking));
        }
        EXPECT_EQ(bench.boxes.nonBlockingText(), kNotFound);
        answer(bench.serial.wire, good("DRX-9 Ver 5.01"), loss == 0 ? replyPacket('C', "2") : good("12"));
        EXPECT_TRUE(discovery.Comm_Open(Messages::NonBlocking));
        EXPECT_EQ(link.InstrumentType(), loss == 0 ? 0 : 2) << "the last character; it may be missing";
        EXPECT_EQ(bench.boxes.nonBlockingText(), "");
    }
}

TEST_F(DiscoveryTest, WhateverRunsInItsWaitsChangesNothing) {
    bench.settings.CommType = LinkType::Ethernet;
    bench.socket.connectDelay = 0.2;
    bench.socket.wire.setAnswerer(
        [](const std::string& command) { return good(command == "@" ? "DRX-9 Ver 5.01" : "3"); }, 0.1);
    discovery.Comm_Open();
    const int pumps = bench.pump.pumps();
    for (int n = 1; n <= pumps; ++n) {
        SCOPED_TRACE(n);
        bench.socket.wire.forget();
        const int connects = bench.socket.connects;
        bool ran = false;
        bench.pump.atPump(n, [&] {
            ran = true;
            discovery.Comm_Open();
            if (link.CommStatus() == comm::kBusy && !link.exchanging()) {
                EXPECT_EQ(link.Comm_Send("T").reply, "") << "no link is open yet: dropped";
            }
        });
        EXPECT_TRUE(discovery.Comm_Open());
        EXPECT_TRUE(ran);
        EXPECT_EQ(bench.socket.connects, connects + 1);
        expectOnLine(3);
    }
}

} // namespace
} // namespace drx9
