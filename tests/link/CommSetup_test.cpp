// What the communications window computes.
#include "link/CommSetup.h"

#include "link/Link.h"
#include "link/Texts.h"

#include <gtest/gtest.h>

#include <functional>

namespace drx9 {
namespace {

LinkSettings settingsOf(std::int16_t type) {
    LinkSettings settings;
    settings.CommType = LinkType{type};
    settings.Port = 3;
    settings.USBSerNum = "0A7C21";
    return settings;
}

TEST(CommSetupTest, AnotherLinkIsOneThatLeadsElsewhere) {
    // A change, and whether the link is the same by the type that was chosen at opening.
    const std::tuple<std::string, std::function<void(LinkSettings&)>, std::array<bool, 3>> cases[] = {
        {"nothing", [](auto&) {}, {true, true, true}},
        {"port", [](auto& s) { s.Port = 4; }, {false, true, true}},
        {"rate", [](auto& s) { s.Baud = 9600; }, {false, true, true}},
        {"serial number", [](auto& s) { s.USBSerNum = "0A7C22"; }, {true, false, true}},
        {"its letters' case", [](auto& s) { s.USBSerNum = "0a7c21"; }, {true, true, true}},
        {"address", [](auto& s) { s.EAddress = "10.0.0.1"; }, {true, true, false}},
        {"Ethernet port", [](auto& s) { s.EPort = "2102"; }, {true, true, false}},
        {"type",
         [](auto& s) { s.CommType = s.CommType == LinkType::Usb ? LinkType::Ethernet : LinkType::Usb; },
         {false, false, false}},
        {"a type that counts as RS-232", [](auto& s) { s.CommType = LinkType{7}; }, {true, false, false}},
    };
    for (const auto& [name, change, sameByType] : cases) {
        for (std::int16_t opened = 0; opened < 3; ++opened) {
            SCOPED_TRACE(std::string(name) + " of type " + std::to_string(opened));
            LinkSettings now = settingsOf(opened);
            const bool same = sameByType[static_cast<std::size_t>(opened)];
            const CommSetup lost(now, {}, "");
            const CommSetup good(now, {true, "4.12"}, "");
            change(now);
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
    now.EAddress = "10.0.0.1";
    EXPECT_EQ(setup.state(now, ok).text.rfind("Not tried yet: 10.0.0.1:2101.", 0), 0U);
    now.CommType = LinkType::Serial;
    setup.portOpened(3, "In use.");
    EXPECT_EQ(setup.state(now, ok), (CommState{"Off line: Comm Port 3 not available. In use.", Tone::Alarm}));
    setup.portOpened(3, "");
    EXPECT_EQ(setup.state(now, ok).text.rfind("Not tried yet: COM3 at 19200.", 0), 0U);
    EXPECT_EQ(setup.answered(now, ok, true).text, linkText::kAnswers) << "the program is not connected there";
    EXPECT_FALSE(setup.isSameLink(now));
    setup.searched(now, "");
    EXPECT_TRUE(setup.isSameLink(now)) << "attempts go on for the link that was found";
    EXPECT_TRUE(setup.reopens(now, {}));
    EXPECT_EQ(setup.answered(now, ok, false).text, linkText::kAccepted);
    EXPECT_EQ(setup.answered(now, ok, true), setup.state(now, ok));
    EXPECT_EQ(setup.state(now, {}).text, "Off line: no answer on COM3 at 19200");
}

TEST(CommSetupTest, TypedCommandsAreFramedWholeOrRefusedInWords) {
    const std::string longest(221, 'x');
    const struct {
        std::string typed;
        std::string bytes; ///< empty: refused
        std::string said;  ///< part of the refusal
        bool changesFilm = false;
    } cases[] = {
        {"", "", ""},
        {"A\xE2\x80\x9C?", "A\x93?", ""}, // film 99
        {"D12", "D12", "", true},
        {" d1", " d1", "", true},
        {"PZ", "PZ", ""},
        {longest, longest, ""},
        {longest + "x", "", "222 characters"},
        {"P\xCE\xA9", "", "\"\xCE\xA9\""},
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
    EXPECT_EQ(responseText({comm::kOk, "caf\xE9"}), "caf\xC3\xA9");
    EXPECT_EQ(responseText({77, "x"}), "Unknown Error");
}

} // namespace
} // namespace drx9
