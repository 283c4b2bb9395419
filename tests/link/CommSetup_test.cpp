// What the communications window computes.
#include "link/CommSetup.h"

#include "fakes/FakeLinks.h"
#include "link/CommandHistory.h"
#include "link/Link.h"

#include <gtest/gtest.h>

#include <functional>

namespace drx9 {
namespace {

using Tone = CommState::Tone;
using Change = std::function<void(LinkSettings&)>;

LinkSettings settingsOf(std::int16_t type) {
    LinkSettings settings;
    settings.CommType = type;
    settings.Port = 3;
    settings.USBSerNum = "0A7C21";
    return settings;
}

TEST(CommSetupTest, AnotherLinkIsOneThatLeadsElsewhere) {
    const Change port = [](LinkSettings& s) { s.Port = 4; };
    const Change baud = [](LinkSettings& s) { s.Baud = 9600; };
    const Change serial = [](LinkSettings& s) { s.USBSerNum = "0A7C22"; };
    const Change letters = [](LinkSettings& s) { s.USBSerNum = "0a7c21"; };
    const Change address = [](LinkSettings& s) { s.EAddress = "10.0.0.1"; };
    const Change ethernetPort = [](LinkSettings& s) { s.EPort = "2102"; };
    const Change type = [](LinkSettings& s) { s.CommType = static_cast<std::int16_t>((s.CommType + 1) % 3); };
    const Change unknownType = [](LinkSettings& s) { s.CommType = 7; };
    const struct {
        const char* name;
        Change change;
        std::array<bool, 3> same; ///< by the type that was chosen at opening
    } cases[] = {
        {"nothing", [](LinkSettings&) {}, {true, true, true}},
        {"port", port, {false, true, true}},
        {"rate", baud, {false, true, true}},
        {"serial number", serial, {true, false, true}},
        {"its letters' case", letters, {true, true, true}},
        {"address", address, {true, true, false}},
        {"Ethernet port", ethernetPort, {true, true, false}},
        {"type", type, {false, false, false}},
        {"a type that counts as RS-232", unknownType, {true, false, false}},
    };
    for (const auto& c : cases) {
        for (std::int16_t opened = 0; opened < 3; ++opened) {
            SCOPED_TRACE(std::string(c.name) + " of type " + std::to_string(opened));
            LinkSettings now = settingsOf(opened);
            const bool same = c.same[static_cast<std::size_t>(opened)];
            const CommSetup lost(now, {}, "");
            const CommSetup good(now, {true, "4.12"}, "");
            c.change(now);
            EXPECT_EQ(lost.isSameLink(now), same);
            EXPECT_EQ(lost.reopens(now, {}), !same);
            EXPECT_TRUE(lost.reopens(now, {true, "4.12"})) << "found meanwhile";
            EXPECT_TRUE(good.reopens(now, {})) << "had been good";
        }
    }
}

TEST(CommSetupTest, TheBottomLineTellsOnlyWhatIsKnownOfTheLinkThatIsSet) {
    LinkSettings now = settingsOf(2);
    const CommSetup::Facts ok{true, "4.12"};
    CommSetup setup(now, ok, "");
    EXPECT_EQ(setup.state(now, ok), (CommState{"On line: Ver. 4.12", Tone::Plain}));
    EXPECT_EQ(setup.state(now, {true, ""}).text, "On line");
    EXPECT_EQ(setup.state(now, {true, "4.12", false}),
              (CommState{"Off line: 192.168.1.200:2101 is no longer open", Tone::Alarm}));
    now.EAddress = "10.0.0.1";
    EXPECT_EQ(setup.state(now, ok).text.rfind("Not tried yet: 10.0.0.1:2101.", 0), 0U);
    setup.searched(now, "No connection to 10.0.0.1 port 2101: refused");
    EXPECT_EQ(setup.state(now, {}),
              (CommState{"Off line: No connection to 10.0.0.1 port 2101: refused", Tone::Alarm}));
    EXPECT_EQ(setup.state(settingsOf(2), {}).text.rfind("Not tried yet: 192.168.1.200:2101.", 0), 0U);

    now.CommType = 0;
    setup.portOpened(3, "/dev/ttyUSB0 is in use by another program.");
    EXPECT_EQ(setup.state(now, ok),
              (CommState{"Off line: Comm Port 3 not available. /dev/ttyUSB0 is in use by another program.",
                         Tone::Alarm}));
    setup.portOpened(3, "");
    EXPECT_EQ(setup.state(now, ok).text.rfind("Not tried yet: COM3 at 19200.", 0), 0U);
    setup.searched(now, "");
    EXPECT_EQ(setup.state(now, {}).text, "Off line: no answer on COM3 at 19200");
    EXPECT_EQ(CommSetup::silence(now, ok).tone, Tone::Warn);
    EXPECT_EQ(CommSetup::silence(now, {}).text, "Off line: no answer on COM3 at 19200");
}

TEST(CommSetupTest, TypedCommandsAreFramedWholeOrRefusedInWords) {
    const std::string longest(221, 'x');
    const struct {
        std::string typed;
        std::string bytes; ///< empty: refused
        std::string said;  ///< part of the refusal
        bool changesFilm = false;
    } cases[] = {
        {"P1", "P1", ""},
        {"  @ ", "  @ ", ""},
        {"", "", ""},
        {"A\xE2\x80\x9C?", "A\x93?", ""}, // film 99
        {"\xC3\xA9?", "\xE9?", ""},
        {"D12", "D12", "", true},
        {"Z", "Z", "", true},
        {" d1", " d1", "", true},
        {"PZ", "PZ", ""},
        {longest, longest, ""},
        {longest + "x", "", "222 characters"},
        {"P\xCE\xA9", "", "\"\xCE\xA9\""},
        {"\xF0\x9F\x98\x80", "", "\"\xF0\x9F\x98\x80\""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.typed);
        const RawCommand command = rawCommand(c.typed);
        EXPECT_EQ(command.refusal.empty(), c.said.empty()) << command.refusal;
        EXPECT_NE(command.refusal.find(c.said), std::string::npos) << command.refusal;
        if (c.said.empty()) {
            EXPECT_EQ(command.bytes, c.bytes);
        }
        EXPECT_EQ(command.changesFilm, c.changesFilm);
    }
}

TEST(CommSetupTest, TheResponseIsTheReplyOrTheStatusText) {
    EXPECT_EQ(responseText(comm::kOk, "caf\xE9"), "caf\xC3\xA9");
    EXPECT_EQ(responseText(comm::kOk, ""), "");
    EXPECT_EQ(responseText(comm::kTimeout, "x"), "Timeout");
    EXPECT_EQ(responseText(comm::kBadCommand, ""), "Bad Command");
    EXPECT_EQ(responseText(77, ""), "Unknown Error");
}

TEST(CommSetupTest, BridgesAreCountedWithoutOpeningThem) {
    FakeClock clock;
    FakeEventPump pump(clock);
    FakeUsb usb(pump);
    EXPECT_EQ(attachedBridges(usb), 0);
    usb.devices = {{"83f5", "A"}, {"EA60", "B"}, {"83F5", "C", false}};
    EXPECT_EQ(attachedBridges(usb), 2);
    EXPECT_TRUE(usb.handles().empty());
    EXPECT_EQ(bridgeText(0, 0), "No DRX-9 bridge attached");
    EXPECT_EQ(bridgeText(1, 1), "1 DRX-9 bridge attached");
    EXPECT_EQ(bridgeText(1, 2), "2 DRX-9 bridges attached, 1 listed: press Find");
    EXPECT_EQ(serialNumberText(2, false, "0A7C21"), "0A7C21 is set: choose one");
    EXPECT_EQ(serialNumberText(2, true, "0A7C21"), "serial number");
}

TEST(CommSetupTest, SettingsOutsideTheListsAreSaidNotChanged) {
    EXPECT_EQ(baudEntry(19200), std::optional<std::size_t>(3));
    EXPECT_EQ(baudEntry(14400), std::nullopt);
    EXPECT_EQ(baudText(14400), "14400 baud is set");
    EXPECT_EQ(portEntry(9), std::optional<std::size_t>(8));
    EXPECT_EQ(portEntry(0), std::nullopt);
    EXPECT_EQ(portEntry(10), std::nullopt);
    EXPECT_EQ(deviceText(12, ""), "COM12 is set: choose another");
    EXPECT_EQ(deviceText(3, ""), "no device");
}

TEST(CommandHistoryTest, WalksBothWaysAndGivesTheTypedLineBack) {
    CommandHistory history;
    EXPECT_EQ(history.older("typed"), "typed");
    EXPECT_EQ(history.newer("typed"), "typed");
    for (const char* command : {"@", "P1", "P1", ""}) {
        history.add(command);
    }
    EXPECT_EQ(history.older("half"), "P1");
    EXPECT_EQ(history.older("P1"), "@");
    EXPECT_EQ(history.older("@"), "@") << "the oldest";
    EXPECT_EQ(history.newer("@"), "P1");
    EXPECT_EQ(history.newer("P1"), "half");
    EXPECT_EQ(history.newer("half"), "half");
    for (std::size_t i = 0; i < 2 * CommandHistory::kMost; ++i) {
        history.add("P" + std::to_string(i));
    }
    std::string line;
    for (std::size_t i = 0; i < 2 * CommandHistory::kMost; ++i) {
        line = history.older(line);
    }
    EXPECT_EQ(line, "P100");
}

} // namespace
} // namespace drx9
