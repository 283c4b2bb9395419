#include "monitor/cFile.h"

#include "IniChecks.h"
#include "fakes/FaultyFilePort.h"
#include "fakes/MemoryFilePort.h"
#include "util/Text.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace drx9 {
namespace {

constexpr const char* kPath = "/data/test.ini";

class cFileTest : public testing::Test {
protected:
    MemoryFilePort files;
    FaultyFilePort faulty{files};
    cFile ini{faulty};

    void hold(std::string_view bytes) {
        files.put(kPath, bytes);
        ini.setFileName(kPath);
    }
    std::string read(const char* section, const char* key) { return ini.ReadIniStr(section, key, "none", 0); }
};

TEST_F(cFileTest, FindsValuesAsTheyAreWritten) {
    const struct {
        const char *bytes, *value; ///< of key K in section S
    } cases[] = {
        {"[s]\r\nk=1=2\r\n", "1=2"},
        {"  [ S ] tail\n\t K \t=\t a b \t\r\n", "a b"},
        {"[S]\nK=\" a \"\n", " a "},
        {"[S]\nK=\"a'\n", "\"a'"},
        {"[S]\nK=1\nK=2\n[S]\nK=3\n", "1"}, // the first one counts
        {"[S]\n[T]\n[S]\nK=2\n", "none"},   // also among sections
        {"[S]\n;K=1\n ; K=2\nK=3 ; no comment\n", "3 ; no comment"},
        {"[S]\nK\nK=2\n", "2"},
        {"K=1\n[S]\n", "none"},
        {"[S]\n[T\nK=1\n", "1"}, // "[" without "]" opens nothing
        {"[S]\nK=\n", "none"},
        {"\xEF\xBB\xBF[S]\nK=\xC3\xA4\n", "\xC3\xA4"},
        {"[S]\nK=\xE4\n", "\xC3\xA4"},                    // Windows-1252
        {"[S]\nK=\xC3\xA4\n;\xE4\n", "\xC3\x83\xC2\xA4"}, // one byte that is no UTF-8: none of it is
    };
    for (const auto& c : cases) {
        hold(c.bytes);
        EXPECT_EQ(read("S", "K"), c.value) << c.bytes;
    }
    hold({"\xFF\xFE[\0S\0]\0\n\0K\0=\0\xE4\0", 16});
    EXPECT_EQ(read("S", "K"), "\xC3\xA4");
}

TEST_F(cFileTest, WritesChangeNothingElse) {
    const struct {
        const char *before, *value, *after;
    } cases[] = {
        {"", "1", "[S]\r\nK=1\r\n"},
        {"[S]\nK=1\nL=2\n", "9", "[S]\nK=9\nL=2\n"},
        {"[S]\n  k = \"1\" \nK=2\n", "9", "[S]\n  k = 9 \nK=2\n"},
        {"[S]\nK= ' 1'\n", " 1", "[S]\nK= ' 1'\n"}, // reads the same already
        {"[S]\nK=1", "9", "[S]\nK=9"},
        {"; top\r\n[S]\r\nL=1\r\n; end\r\n\r\n[T]\r\nK=0\r\n", "9",
         "; top\r\n[S]\r\nL=1\r\n; end\r\nK=9\r\n\r\n[T]\r\nK=0\r\n"},
        {"[T]\nK=0", "9", "[T]\nK=0\n[S]\nK=9\n"},
        {"[T]\nK=0\n\n", "9", "[T]\nK=0\n\n[S]\nK=9\n"},
        {"[S]\nL=1\r\n", "9", "[S]\nL=1\r\nK=9\n"}, // ends as the first line does
        {"[S]\nK=1\n", "a\nL=2", "[S]\nK=a\n"},     // never more than one line
        {"[S]\nL=\xE4\n", "\xC3\xB6", "[S]\nL=\xE4\nK=\xF6\n"},
        {"[S]\nL=\xE4\n", "\xCE\xA9", "[S]\nL=\xC3\xA4\nK=\xCE\xA9\n"}, // not in Windows-1252
        {"\xEF\xBB\xBF[S]\n", "\xC3\xB6", "\xEF\xBB\xBF[S]\nK=\xC3\xB6\n"},
        {"[S]\nK=1\n", "\xF6", "[S]\nK=\xC3\xB6\n"}, // bytes of a device
    };
    for (const auto& c : cases) {
        hold(c.before);
        EXPECT_EQ(ini.WriteIniStr("S", "K", c.value), 1);
        EXPECT_EQ(files.text(kPath), c.after);
    }
}

TEST_F(cFileTest, EveryOperationOfTheClass) {
    ini.setFileName(kPath);
    EXPECT_EQ(ini.WriteIniStr("S", "K", "1"), 0) << "a missing file has no name";
    hold("[S]\nOne=1.5e1x\nComma=2,5\nInt=-7up\nHex=0x1F\nBig=65537\nWord=up\nYes=yEs\nOn=On\nBit=1\n"
         "Two=2\nT=T\nEmpty=\nList=a,b,,d\nWide=" +
         std::string(300, '\xE4') + "\n");
    EXPECT_EQ(ini.ReadIniSingle("S", "One", 3), 15);
    EXPECT_EQ(ini.ReadIniSingle("S", "Comma", 3), 2);
    EXPECT_EQ(ini.ReadIniSingle("S", "Empty", 0.1F), 0.1F);
    EXPECT_EQ(ini.lastResult(), 0);
    EXPECT_EQ(ini.ReadIniSingle("S", "Missing", 0.1F), 0.1F);
    EXPECT_EQ(ini.lastResult(), 3);

    const struct {
        const char* key;
        int value, result;
    } ints[] = {{"Int", -7, -7}, {"Hex", 31, 31},   {"Big", 1, 65537}, {"Word", 0, 0},
                {"One", 1, 1},   {"Missing", 5, 5}, {"Empty", 5, 5}};
    for (const auto& c : ints) {
        EXPECT_EQ(ini.ReadIniInt("S", c.key, 5), c.value) << c.key;
        EXPECT_EQ(ini.lastResult(), c.result) << c.key;
    }
    for (const char* key : {"Yes", "On", "Bit", "Two", "T", "Empty", "Missing"}) {
        const bool yes = std::string("Yes On Bit").find(key) != std::string::npos;
        EXPECT_EQ(ini.ReadIniBool("S", key, "FALSE"), yes) << key;
        EXPECT_EQ(ini.ReadIniBool("S", key, "TRUE"), key[0] != 'T') << key;
    }
    const char* fields[] = {"a,b,,d", "a", "b", "", "d", ""};
    for (std::int16_t field = 0; field < 6; ++field) {
        EXPECT_EQ(ini.ReadIniStr("S", "List", "x", field), fields[field]);
    }
    EXPECT_EQ(ini.ReadIniStr("S", "Missing", "p,q", 2), "q");
    EXPECT_EQ(ansiFromUtf8(read("S", "Wide")), std::string(253, '\xE4'));
    EXPECT_EQ(ini.lastResult(), 253);

    hold("[S]\nA=1\n; x\n[T]\nA=2\n[S]\nA=3\n");
    EXPECT_EQ(ini.ClearIniSection("s"), 1);
    EXPECT_EQ(files.text(kPath), "[T]\nA=2\n[S]\nA=3\n");
}

TEST_F(cFileTest, AFailedWriteLeavesTheFileAndSaysWhy) {
    for (const FileStep step : {FileStep::Read, FileStep::Create, FileStep::Write, FileStep::Flush,
                                FileStep::Close, FileStep::Rename}) {
        hold("[S]\nK=1\n");
        faulty.failKind(step);
        EXPECT_EQ(ini.WriteIniStr("S", "K", "2"), 0);
        EXPECT_NE(ini.writeFailure(), "");
        EXPECT_EQ(files.text(kPath), "[S]\nK=1\n");
        EXPECT_EQ(files.list("/data").size(), 1U);
        faulty.heal();
    }
}

TEST(IniText, HoldsForEverySeed) {
    for (const auto& file : std::filesystem::directory_iterator(DRX9_SOURCE_DIR "/fuzz/corpus/ini_file")) {
        std::ifstream in(file.path(), std::ios::binary);
        ASSERT_TRUE(in);
        const std::string bytes{std::istreambuf_iterator<char>(in), {}};
        for (std::size_t length = 0; length <= bytes.size(); ++length) { // cut at every byte, too
            checkIniFile(std::string_view(bytes).substr(0, length));
        }
    }
}

} // namespace
} // namespace drx9
