#include "monitor/DataLog.h"

#include "fakes/FakeEventPump.h"
#include "fakes/FakeMessageBoxes.h"
#include "fakes/FaultyFilePort.h"
#include "fakes/MemoryFilePort.h"

#include <gtest/gtest.h>

#include <vector>

namespace drx9 {
namespace {

constexpr const char* kPath = "/data/drx9.txt";

class DataLogTest : public testing::Test {
protected:
    MemoryFilePort files;
    FaultyFilePort faulty{files};
    FakeClock clock;
    FakeEventPump pump{clock};
    FakeMessageBoxes boxes;
    NumberLocale locale;
    Paths paths{"/program", "/data"};
    DataLogSettings settings;
    DataLog log{faulty, clock, locale, paths, boxes, pump, settings};
    Readings readings;

    DataLogTest() {
        files.makeFolder("/data");
        settings.Type = LogMode::Append;
        clock.setLocal({2026, 3, 7, 14, 2, 5, 0});
    }
    /// Readings every 0.25 s; gives the elapsed times of those that were logged.
    std::vector<double> run(double seconds, double from = 0) {
        std::vector<double> logged;
        for (double elapsed = from + 0.25; elapsed <= from + seconds; elapsed += 0.25) {
            clock.advance(0.25);
            const int before = log.linesWritten();
            log.UpdateDataLog(readings, elapsed, 0);
            logged.insert(logged.end(), static_cast<std::size_t>(log.linesWritten() - before), elapsed);
        }
        return logged;
    }
};

TEST_F(DataLogTest, ABlockIsWrittenByteForByte) {
    readings.averageThickness = 1234.5;
    readings.averageRate = 9.905;
    readings.thickness = {0.5, 12.5, 123.4, 1000, -1.5, 9.9996};
    readings.rate = {1.005, -0.001, 0, 2.675, 10, 1};
    readings.frequency = {5987654.25, 0, 1, 2, 3, 4};
    locale = {',', '.', "dd.MM.yyyy"};
    log.InitDataLog();
    log.startBlock("AL\xC5 5K  ");
    clock.advance(1);
    log.UpdateDataLog(readings, 1.005, 6);
    log.endBlock("AL\xC5 5K  ");
    EXPECT_EQ(
        files.text(kPath),
        "Start:   Date: 07.03.2026   Time: 14:02:05   Film: AL\xC5 5K  \r\n\r\n"
        "Time\tAvgThk\tAvgRate\tThk1\tRate1\tFreq1\tThk2...\r\n\r\n"
        "1,01\t\t9,91\t0,500\t1,01\t5987654,3\t12,50\t0,00\t0,0\t123,4\t0,00\t1,0\t\t2,68\t2,0\t-1,500\t10,00"
        "\t3,0\t10,000\t1,00\t4,0\r\n"
        "\r\nEnd:     Date: 07.03.2026   Time: 14:02:06   Film: AL\xC5 5K  \r\n\r\n");
}

TEST_F(DataLogTest, SpanAndInterval) {
    // Start, end and interval, and the readings of 12 s that are logged.
    const std::tuple<int, int, std::int16_t, std::vector<double>> cases[] = {
        {0, 300, 5, {5, 10}}, // not before a whole interval
        {0, 4, 1, {1, 2, 3, 4}}, {3, 5, 1, {3, 4, 5}},
        {6, 7, 5, {6}}, // the interval counts inside the span only
        {5, 5, 1, {}},           {0, 1, 0, {0.25, 0.5, 0.75, 1}},
    };
    for (const auto& [start, end, interval, logged] : cases) {
        settings.Start = start;
        settings.End = end;
        settings.Interval = interval;
        log.InitDataLog();
        EXPECT_EQ(run(12), logged) << start << " " << end << " " << interval;
    }
}

TEST_F(DataLogTest, TheIntervalGoesOnOverMidnightAndClockChanges) {
    settings.Interval = 2;
    clock.setLocal({2026, 3, 7, 23, 59, 57, 0});
    log.InitDataLog();
    EXPECT_EQ(run(8), (std::vector<double>{2, 4, 6, 8}));
    clock.setLocal({2026, 3, 8, 12, 0, 0, 0}); // set on: due at once
    EXPECT_EQ(run(4, 8), (std::vector<double>{8.25, 10.25}));
    clock.setLocal({2026, 3, 8, 11, 0, 0, 0}); // set back: taken for midnight, due at once
    EXPECT_EQ(run(4, 12), (std::vector<double>{12.25, 14.25}));
}

TEST_F(DataLogTest, ALargeFileIsOfferedForDeletionWithoutHoldingTheRunUp) {
    const std::string old(1000000, 'x');
    const std::string question = "Log file size is 1000002. Delete?";
    const struct {
        LogMode type;
        std::size_t size;
        bool asks;
        int answer;       ///< 1 yes, 0 no, -1 none before the next run
        const char* left; ///< of what was there before
    } cases[] = {
        {LogMode::Append, 999999, false, -1, "all"}, {LogMode::Append, 1000000, true, 0, "all"},
        {LogMode::Append, 1000000, true, 1, "none"}, {LogMode::Overwrite, 1000000, false, -1, "none"},
        {LogMode{7}, 1000000, true, -1, "all"}, // a mode that is none counts as Append
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.size);
        files.put(kPath, old.substr(0, c.size));
        settings.Type = c.type;
        settings.File = "drx9.txt";
        if (c.asks) {
            pump.atPump(1, [&] { files.append(kPath, "yz"); }); // the size is read again after the pump
            boxes.expect(FakeMessageBoxes::Kind::Later, question);
        }
        log.InitDataLog();
        log.startBlock("FILM    ");
        run(1);
        settings.File = "other.txt"; // the log window stays open
        if (c.answer >= 0) {
            boxes.answerLater(c.answer == 1);
        }
        const std::string text = files.text(kPath);
        EXPECT_EQ(text.find("Start:"), c.left == std::string("all") ? c.size + (c.asks ? 2 : 0) : 0U);
        EXPECT_NE(text.find("1.00\t"), std::string::npos) << "the run's lines are there";
    }
    // A Yes that cannot be carried out is told, and the file is whole.
    files.put(kPath, old + "yz");
    settings.Type = LogMode::Append;
    settings.File = "drx9.txt";
    boxes.expect(FakeMessageBoxes::Kind::Later, question);
    log.InitDataLog();
    log.startBlock("FILM    ");
    const std::string whole = files.text(kPath);
    faulty.fillAfter(10);
    boxes.answerLater(true);
    EXPECT_EQ(log.cutError(), "No space left on device");
    EXPECT_EQ(files.text(kPath), whole);
    // Another file of that name was not asked about.
    faulty.heal();
    boxes.expect(FakeMessageBoxes::Kind::Later,
                 "Log file size is " + std::to_string(whole.size()) + ". Delete?");
    log.InitDataLog();
    files.remove(kPath);
    files.put(kPath, old + old);
    boxes.answerLater(true);
    EXPECT_EQ(files.text(kPath).size(), 2 * old.size());
}

TEST_F(DataLogTest, LostTextsAreCountedAndNeverQueued) {
    run(2); // logging switched on in the middle of a run counts as one
    EXPECT_TRUE(log.isWriting());
    faulty.fillAfter(0);
    run(3, 2);
    EXPECT_EQ(log.linesLost(), 3);
    EXPECT_EQ(log.lastError(), "No space left on device");
    EXPECT_EQ(log.lastLineTime()->second, 6);
    const std::string full = files.text(kPath);
    faulty.heal();
    run(1, 5);
    EXPECT_EQ(log.lastError(), "");
    EXPECT_EQ(log.linesWritten(), 3);
    EXPECT_EQ(log.linesLost(), 3) << "until the next run";
    EXPECT_EQ(files.text(kPath), full + "5.25\t0.000\t0.00\r\n");

    log.endBlock("FILM    ");
    EXPECT_FALSE(log.isWriting());
    log.InitDataLog();
    EXPECT_EQ(log.runNumber(), 2);
    EXPECT_EQ(log.linesLost() + log.linesWritten(), 0);
}

} // namespace
} // namespace drx9
