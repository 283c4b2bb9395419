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
    facts.runMode = kIdle;
    facts.controlsVisible = facts.started = facts.hasReading = true;
    facts.link.CommType = 2;
    facts.lastReading = {2026, 11, 25, 14, 9, 4, 0};
    facts.runStart = {2026, 11, 25, 14, 2, 2, 0};
    facts.log.Type = kLogAppend;
    facts.logPath = "/runs/drx9.txt";
    return facts;
}

void silentFor(StatusFacts& facts, double seconds) {
    facts.stale = true;
    facts.readingAge = facts.replyAge = seconds;
}

void runLogged(StatusFacts& facts, double elapsed) {
    facts.runMode = kRunning;
    facts.logging = true;
    facts.elapsed = elapsed;
    facts.logLines = 418;
}

TEST(StatusTexts, AgesGrowCoarser) {
    const std::pair<double, const char*> cases[] = {{2, "2 s"},     {14.9, "14 s"}, {99.9, "99 s"},
                                                    {100, "2 min"}, {150, "3 min"}, {5999, "100 min"},
                                                    {6000, "2 h"},  {90000, "25 h"}};
    for (const auto& [seconds, text] : cases) {
        EXPECT_EQ(ageText(seconds), text) << seconds;
    }
}

TEST(StatusTexts, ReadingsAreDatedFromTwoSeconds) {
    StatusFacts facts = wellFacts();
    silentFor(facts, 1.9);
    EXPECT_EQ(readingAgeMark(facts), "");
    EXPECT_EQ(silenceNote(facts), "");
    silentFor(facts, 14.2);
    EXPECT_EQ(readingAgeMark(facts), "14 s old");
    EXPECT_EQ(silenceNote(facts), "No readings since 14:09:04");
    facts.hasReading = false;
    EXPECT_EQ(readingAgeMark(facts), "");
}

TEST(StatusTexts, ThePlateShowsTheGravestOnly) {
    StatusFacts all = wellFacts();
    all.runMode = kRunning;
    silentFor(all, 14);
    all.logError = "disk full";
    all.crystals = 0b010100;
    struct Case {
        Change change;
        const char* text;
        const char* brief;
    };
    const Case cases[] = {
        {[](StatusFacts&) {}, "No reply for 14 s. Trying again.", "No reply for 14 s"},
        {[](StatusFacts& f) { f.replyAge = 0.2; }, "Log not written: disk full", "Log not written"},
        {[](StatusFacts& f) { f.pauseReason = "System Parameters is open"; }, "Log not written: disk full",
         "Log not written"},
        {[](StatusFacts& f) { f.logError.clear(); }, "Readings paused: System Parameters is open",
         "Readings paused"},
        {[](StatusFacts& f) { f.pauseReason.clear(), f.stale = false; },
         "Check crystals 3, 5: frequency outside the limits", "Check crystals 3, 5"},
        {[](StatusFacts& f) { f.crystals = 0b1; }, "Check crystal 1: frequency outside the limits",
         "Check crystal 1"},
        {[](StatusFacts& f) { f.crystals.reset(); }, "", ""},
        {[](StatusFacts& f) { f.started = f.controlsVisible = false, f.runMode = kStarting; },
         "Connecting, Ethernet 192.168.1.200:2101", "Connecting, Ethernet"},
    };
    for (const Case& c : cases) { // each on top of the ones before
        c.change(all);
        EXPECT_EQ(gravestNotice(all).text, c.text);
        EXPECT_EQ(gravestNotice(all).brief, c.brief);
    }
}

struct FieldCase {
    const char* what;
    Change change;
    StatusText (*field)(const StatusFacts&);
    const char* text;
    const char* brief;
    StatusText::Tone tone = StatusText::Tone::Plain;
};

TEST(StatusTexts, FieldsOfTheBar) {
    using Tone = StatusText::Tone;
    const FieldCase cases[] = {
        {"ethernet", [](StatusFacts&) {}, staLink, "Ethernet 192.168.1.200:2101, on line",
         "Ethernet, on line"},
        {"serial", [](StatusFacts& f) { f.link.CommType = 0, f.link.Port = 3; }, staLink,
         "COM3 at 19200, on line", "COM3, on line"},
        {"usb", [](StatusFacts& f) { f.link.CommType = 1, f.link.USBSerNum = "0A7C21"; }, staLink,
         "USB 0A7C21, on line", "USB, on line"},
        {"off line", [](StatusFacts& f) { f.controlsVisible = false; }, staLink,
         "Ethernet 192.168.1.200:2101, off line", "Ethernet, off line", Tone::Alarm},
        {"silent", [](StatusFacts& f) { silentFor(f, 14); }, staLink,
         "Ethernet 192.168.1.200:2101, no reply for 14 s", "Ethernet, no reply for 14 s", Tone::Warn},
        {"paused is not silent",
         [](StatusFacts& f) {
             silentFor(f, 14);
             f.pauseReason = "Films is open";
         },
         staLink, "Ethernet 192.168.1.200:2101, on line", "Ethernet, on line"},
        {"failed exchange", [](StatusFacts& f) { f.lastExchange = "P3: Timeout"; }, staReply,
         "Last exchange: P3: Timeout", "P3: Timeout"},
        {"idle", [](StatusFacts&) {}, staRun, "Idle", "Idle"},
        {"running", [](StatusFacts& f) { f.runMode = kRunning; }, staRun, "Running since 14:02:02",
         "Running"},
        {"a request while all is well goes unsaid", [](StatusFacts& f) { f.requests.zero = true; }, staRun,
         "Idle", "Idle"},
        {"waiting requests",
         [](StatusFacts& f) {
             silentFor(f, 3);
             f.runMode = kRunning;
             f.requests = {true, true, true, true};
         },
         staRun, "Running since 14:02:02, waiting: film, zero, shutter, stop",
         "Running, waiting: film, zero, shutter, stop", Tone::Warn},
        {"shutter", [](StatusFacts& f) { f.shutter = 1; }, staShutter, "Shutter open", "Shutter open"},
        {"shutter was", [](StatusFacts& f) { silentFor(f, 3), f.shutter = 1; }, staShutter,
         "Shutter was open", "Shutter was open"},
        {"shutter query failed", [](StatusFacts& f) { f.shutter = RequestDesk::kShutterUnknown; }, staShutter,
         "Shutter unknown", "Shutter unknown"},
        {"shutter before any reading", [](StatusFacts& f) { f.hasReading = false; }, staShutter, "", ""},
        {"modes", [](StatusFacts& f) { f.systemKnown = f.simulate = f.etch = true; }, staMode,
         "Simulate, Etch", "Simulate, Etch", Tone::Warn},
        {"modes of the file only", [](StatusFacts& f) { f.simulate = true; }, staMode,
         "System parameters not read", "No parameters", Tone::Warn},
        {"another instrument",
         [](StatusFacts& f) {
             f.message = "Another instrument answers now: X", f.messageBrief = "Another instrument";
         },
         staMode, "Another instrument answers now: X", "Another instrument", Tone::Warn},
        {"log off", [](StatusFacts& f) { f.log.Type = kLogNone; }, staLog, "Log: /runs/drx9.txt, off",
         "Log off"},
        {"log, idle", [](StatusFacts&) {}, staLog, "Log: /runs/drx9.txt (Append), until 0:05:00",
         "Log: drx9.txt (Append), until 0:05:00"},
        {"overwrite, later start", [](StatusFacts& f) { f.log.Type = kLogOverwrite, f.log.Start = 60; },
         staLog, "Log: /runs/drx9.txt (Overwrite), from 0:01:00 until 0:05:00",
         "Log: drx9.txt (Overwrite), from 0:01:00 until 0:05:00"},
        {"empty span", [](StatusFacts& f) { f.log.Start = 300; }, staLog,
         "Log: /runs/drx9.txt (Append), empty span", "Log: drx9.txt (Append), empty span"},
        {"within", [](StatusFacts& f) { runLogged(f, 300); }, staLog,
         "Log: /runs/drx9.txt (Append), until 0:05:00, 418 lines", "Log: drx9.txt (Append), 418 lines"},
        {"ended", [](StatusFacts& f) { runLogged(f, 300.1); }, staLog,
         "Log: /runs/drx9.txt (Append), span ended, 418 lines",
         "Log: drx9.txt (Append), span ended, 418 lines"},
        {"one line lost", [](StatusFacts& f) { runLogged(f, 1), f.logLost = 1; }, staLog,
         "Log: /runs/drx9.txt, 1 line not written", "Log not written, 1 line lost", Tone::Alarm},
    };
    for (const FieldCase& c : cases) {
        StatusFacts facts = wellFacts();
        c.change(facts);
        const StatusText got = c.field(facts);
        EXPECT_EQ(got.text, c.text) << c.what;
        EXPECT_EQ(got.brief, c.brief) << c.what;
        EXPECT_EQ(got.tone, c.tone) << c.what;
    }
}

} // namespace
} // namespace drx9
