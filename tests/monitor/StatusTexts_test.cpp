// What notices and the status bar say in each state.
#include "monitor/StatusTexts.h"

#include <gtest/gtest.h>

#include <functional>

namespace drx9 {
namespace {

using Change = std::function<void(StatusFacts&)>;

/// On line and idle, everything well, appending to a log.
StatusFacts wellFacts() {
    StatusFacts facts;
    facts.runMode = RunState::Idle;
    facts.onLine = facts.started = facts.hasReading = true;
    facts.link.CommType = LinkType::Ethernet;
    facts.lastReading = {2026, 11, 25, 14, 9, 4, 0};
    facts.runStart = {2026, 11, 25, 14, 2, 2, 0};
    facts.log.Type = LogMode::Append;
    facts.logPath = "/runs/drx9.txt";
    return facts;
}

void silentFor(StatusFacts& facts, double seconds) {
    facts.stale = true;
    facts.readingAge = facts.replyAge = seconds;
}

TEST(StatusTexts, ReadingsAreDatedFromTwoSeconds) {
    StatusFacts facts = wellFacts();
    silentFor(facts, 1.9);
    EXPECT_EQ(readingAgeMark(facts), "");
    EXPECT_EQ(silenceNote(facts), "");
    silentFor(facts, 14.2);
    EXPECT_EQ(readingAgeMark(facts), "14 s old");
    EXPECT_EQ(silenceNote(facts), "No readings since 14:09:04");
}

TEST(StatusTexts, ThePlateShowsTheGravestOnly) {
    StatusFacts all = wellFacts();
    all.runMode = RunState::Running;
    silentFor(all, 14);
    all.logError = "disk full";
    all.crystals = 0b010100;
    const std::pair<Change, const char*> cases[] = {
        {[](StatusFacts&) {}, "No reply for 14 s"},
        {[](StatusFacts& f) { f.pauseReason = "System Parameters is open"; }, "Log not written"},
        {[](StatusFacts& f) { f.logError.clear(); }, "Readings paused"},
        {[](StatusFacts& f) { f.pauseReason.clear(), f.stale = false; }, "Check crystals 3, 5"},
        {[](StatusFacts& f) { f.crystals.reset(); }, ""},
        {[](StatusFacts& f) { f.started = f.onLine = false, f.runMode = RunState::Starting; },
         "Connecting, Ethernet"},
    };
    for (const auto& [change, brief] : cases) { // each on top of the ones before
        change(all);
        EXPECT_EQ(gravestNotice(all).brief, brief);
        EXPECT_EQ(gravestNotice(all).text.rfind(brief, 0), 0U) << gravestNotice(all).text;
    }
}

TEST(StatusTexts, FieldsOfTheBarSayOnlyWhatIsSo) {
    using enum Tone;
    const struct {
        Change change;
        StatusText (*field)(const StatusFacts&);
        const char* text;
        Tone tone = Plain;
    } cases[] = {
        {[](auto& f) { silentFor(f, 14); }, staLink, "Ethernet 192.168.1.200:2101, no reply for 14 s", Warn},
        {[](auto& f) {
             silentFor(f, 3), f.runMode = RunState::Running, f.requests = {true, true, true, true};
         },
         staRun, "Running since 14:02:02, waiting: film, zero, shutter, stop", Warn},
        {[](auto& f) { f.pauseReason = "Film Setup is open", f.linkOpen = false; }, staLink,
         "Ethernet 192.168.1.200:2101, off line", Alarm},
        {[](auto& f) { silentFor(f, 3), f.shutter = 1; }, staShutter, "Shutter was open"},
        {[](auto& f) { f.shutter = RequestDesk::kShutterUnknown; }, staShutter, "Shutter unknown"},
        {[](auto& f) { f.systemKnown = f.simulate = f.etch = true; }, staMode, "Simulate, Etch", Warn},
        {[](auto& f) { f.simulate = true; }, staMode, "System parameters not read", Warn}, // of the file only
        {[](auto& f) { f.log.Type = LogMode::Overwrite, f.log.Start = 60; }, staLog,
         "Log: /runs/drx9.txt (Overwrite), from 0:01:00 until 0:05:00"},
        {[](auto& f) {
             f.runMode = RunState::Running, f.logging = true, f.elapsed = 300.1, f.logLines = 418;
         },
         staLog, "Log: /runs/drx9.txt (Append), span ended, 418 lines"},
    };
    for (const auto& c : cases) {
        StatusFacts facts = wellFacts();
        c.change(facts);
        EXPECT_EQ(c.field(facts).text, c.text);
        EXPECT_EQ(c.field(facts).tone, c.tone) << c.text;
        EXPECT_LE(c.field(facts).brief.size(), std::string(c.text).size()) << c.text;
    }
}

} // namespace
} // namespace drx9
