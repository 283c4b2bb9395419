#include "monitor/Settings.h"

#include "fakes/FaultyFilePort.h"
#include "fakes/MemoryFilePort.h"
#include "link/Commands.h"
#include "monitor/cFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <utility>

namespace drx9 {
namespace {

constexpr const char* kIni = "/data/Monitor.ini";
const NumberLocale kPoint;
const NumberLocale kComma{',', '.', "dd.MM.yyyy"};
const NumberLocale kCommaAndBlank{',', ' ', "dd/MM/yyyy"};

class SettingsTest : public testing::Test {
protected:
    MemoryFilePort files;
    FaultyFilePort faulty{files};
    Paths paths{"/program", "/data"};
    cFile file{faulty};
    Settings settings;

    SettingsTest() { files.makeFolder("/data"); }
    void load(const std::string& bytes, const NumberLocale& locale = kPoint) {
        files.put(kIni, bytes);
        LoadSettings(settings, file, faulty, paths, locale);
    }
    bool save(const NumberLocale& locale = kPoint) {
        return SaveSettings(settings, file, faulty, paths, locale);
    }
    bool savedLine(const std::string& line) const {
        return files.text(kIni).find(line + "\r\n") != std::string::npos;
    }
};

TEST_F(SettingsTest, AMissingFileGivesTheDefaultsAndIsCreated) {
    LoadSettings(settings, file, faulty, paths, kPoint);
    EXPECT_EQ(file.FileName(), "");
    EXPECT_TRUE(save());
    EXPECT_TRUE(savedLine("EAddresst=192.168.1.200") && savedLine("Rate Max=10.000"));
}

TEST_F(SettingsTest, NumbersUseTheLocale) {
    // Text of Timebase; its value, that of the default "5.0" of FreqMin; and what is saved.
    const std::tuple<const NumberLocale&, const char*, double, double, const char*> cases[] = {
        {kPoint, "", 25, 5, "Timebase=25.00"},         {kComma, "", 2.5, 50, "Timebase=2,50"},
        {kCommaAndBlank, "", 2.5, 5, "Timebase=2,50"}, {kComma, "0,25", 0.25, 50, "Timebase=,25"},
        {kComma, "2,5 s", 2.5, 50, "Timebase=2,50"}, // no number: the default
    };
    for (const auto& [locale, text, timebase, freqMin, saved] : cases) {
        load("[System]\r\nTimebase=" + std::string(text) + "\r\n", locale);
        EXPECT_DOUBLE_EQ(settings.system.Timebase, timebase) << text;
        EXPECT_DOUBLE_EQ(settings.system.FreqMin, freqMin);
        EXPECT_TRUE(save(locale));
        EXPECT_TRUE(savedLine(saved)) << saved;
    }
}

TEST_F(SettingsTest, EveryKeyIsReadAndWrittenBack) {
    const std::string bytes =
        "[DBFile]\r\nName=films.mdb\r\n[Display]\r\nView=2\r\n[Graph]\r\nView=4\r\n"
        "[CommSettings]\r\nCommType=2\r\nBaud=9600\r\nPort=3\r\nUSBSerNum=0A7C\r\nEPort=4001\r\n"
        "EAddress=10.0.0.5\r\nEAddresst=10.0.0.9\r\n"
        "[DataLog]\r\nFile=run.txt\r\nType=2\r\nStart=70000\r\nEnd=80000\r\nInterval=5\r\n"
        "[System]\r\nSimulate=1\r\nResolution=2\r\nDisplay=3\r\nFilter=4,5\r\nTimebase=0,25\r\n"
        "Tool1=101\r\nTool2=102\r\nTool3=103\r\nTool4=104\r\nTool5=105\r\nTool6=106\r\nEtch=6\r\n"
        "FreqMin=5,1\r\nFreqMax=6,2\r\nThickMin=7\r\nThickMax=8,125\r\nRateMin=9\r\nRate Max=10,5\r\n";
    load(bytes, kComma);
    const LinkSettings& link = settings.link;
    EXPECT_EQ(settings.DBFileName + link.USBSerNum + link.EPort + link.EAddress, "films.mdb0A7C400110.0.0.5");
    EXPECT_EQ((std::array{settings.log.Start, settings.log.End, link.Baud}),
              (std::array{70000, 80000, 9600}));
    // As they go to the instrument.
    EXPECT_EQ(systemPayloadB(settings.system), "B .25  1  3  2  4.5  101  102  103  104  105  106 ");
    EXPECT_EQ(systemPayloadC(settings.system), "C 5.1  6.2  9  10.5  7  8.125  6 ");

    faulty.fillAfter(100);
    EXPECT_FALSE(save(kComma));
    EXPECT_EQ(files.text(kIni), bytes);
    faulty.heal();
    EXPECT_TRUE(save(kComma));
    EXPECT_EQ(std::count(faulty.steps().begin(), faulty.steps().end(), FileStep::Rename), 1);
    std::string expected = bytes;
    for (const auto& [from, to] :
         {std::pair("EAddresst=10.0.0.9", "EAddresst=10.0.0.5"), // and EAddress as it was
          std::pair("Timebase=0,25", "Timebase=,25"), std::pair("Max=10,5", "Max=10,500")}) {
        expected.replace(expected.find(from), std::string(from).size(), to);
    }
    EXPECT_EQ(files.text(kIni), expected);
}

TEST_F(SettingsTest, WhatIsNoNumberOrNoFile) {
    files.put("/logs/there.txt", "");
    // A line under [Display] and [DataLog]; the log file and the view that it gives.
    const std::tuple<std::string, const char*, const char*, int> cases[] = {
        {"View", "2.5", "drx9.txt", 2},
        {"View", "99999", "drx9.txt", 32767},
        {"File", "C:\\nowhere\\run.txt", "run.txt", 0},
        {"File", "/logs/there.txt", "/logs/there.txt", 0},
        {"File", "\"a b.txt\"", "a b.txt", 0},
    };
    for (const auto& [key, value, logFile, view] : cases) {
        const std::string line = key + "=" + value + "\r\n";
        load("[Display]\r\n" + line + "[DataLog]\r\n" + line);
        EXPECT_EQ(settings.log.File, logFile);
        EXPECT_EQ(settings.Display, view) << value;
    }
    EXPECT_TRUE(save());
    EXPECT_TRUE(savedLine("File=\"a b.txt\"")); // reads the same, so it stays as the operator wrote it
}

TEST_F(SettingsTest, TheUploadDatabaseIsNotRemembered) {
    const std::pair<std::string, bool> cases[] = {
        {"UploadData.mdb", true},         {"/data/UploadData.mdb", true}, {"/alias.mdb", true},
        {"/other/UploadData.mdb", false}, {"uploads.mdb", false},
    };
    files.put("/data/UploadData.mdb", "x");
    files.link("/alias.mdb", "/data/UploadData.mdb");
    for (const auto& [name, skipped] : cases) {
        load("[DBFile]\r\nName=mine.mdb\r\n");
        settings.DBFileName = name;
        EXPECT_TRUE(save());
        EXPECT_TRUE(savedLine("Name=" + (skipped ? "mine.mdb" : name))) << name;
    }
}

} // namespace
} // namespace drx9
