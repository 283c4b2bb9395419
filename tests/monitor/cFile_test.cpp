#include "monitor/cFile.h"

#include "IniChecks.h"
#include "fakes/FaultyFilePort.h"
#include "fakes/FuzzSeeds.h"
#include "fakes/MemoryFilePort.h"

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
    const std::pair<const char*, const char*> cases[] = {
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
    for (const auto& [bytes, value] : cases) {
        hold(bytes);
        EXPECT_EQ(read("S", "K"), value) << bytes;
    }
    hold({"\xFF\xFE[\0S\0]\0\n\0K\0=\0\xE4\0", 16});
    EXPECT_EQ(read("S", "K"), "\xC3\xA4");
}

TEST_F(cFileTest, WritesChangeNothingElse) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
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
    for (const auto& [before, value, after] : cases) {
        hold(before);
        EXPECT_EQ(ini.WriteIniStr("S", "K", value), 1);
        EXPECT_EQ(files.text(kPath), after);
    }
}

TEST_F(cFileTest, ReadsNumbersAndFieldsAndClearsASection) {
    ini.setFileName(kPath);
    EXPECT_EQ(ini.WriteIniStr("S", "K", "1"), 0) << "a missing file has no name";
    hold("[S]\nOne=1.5e1x\nComma=2,5\nInt=-7up\nHex=0x1F\nBig=65537\nYes=yEs\nTwo=2\nList=a,b,,d\n"
         "; x\n[T]\nA=2\n[S]\nA=3\n");
    EXPECT_EQ(ini.ReadIniSingle("S", "One", 3), 15);
    EXPECT_EQ(ini.ReadIniSingle("S", "Comma", 3), 2);
    EXPECT_EQ(ini.ReadIniSingle("S", "Missing", 0.1F), 0.1F);
    for (const auto& [key, value] :
         {std::pair("Int", -7), {"Hex", 31}, {"Big", 1}, {"Yes", 0}, {"Missing", 5}}) {
        EXPECT_EQ(ini.ReadIniInt("S", key, 5), value) << key;
    }
    EXPECT_TRUE(ini.ReadIniBool("S", "Yes", "FALSE"));
    EXPECT_FALSE(ini.ReadIniBool("S", "Two", "TRUE"));
    const char* fields[] = {"a,b,,d", "a", "b", "", "d", ""};
    for (std::int16_t field = 0; field < 6; ++field) {
        EXPECT_EQ(ini.ReadIniStr("S", "List", "x", field), fields[field]);
    }
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
    replaySeeds("ini_file", [](const std::string& bytes) {
        for (std::size_t length = 0; length <= bytes.size(); ++length) { // cut at every byte, too
            checkIniFile(std::string_view(bytes).substr(0, length));
        }
    });
}

} // namespace
} // namespace drx9
