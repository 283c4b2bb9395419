#include "util/DisplayFormats.h"
#include "util/Paths.h"
#include "util/Text.h"

#include <gtest/gtest.h>

#include <cmath>

namespace drx9 {
namespace {

const NumberLocale kPoint;
const NumberLocale kComma{',', '.', "dd.MM.yyyy"};

TEST(DisplayFormats, ThreeFigures) {
    const struct {
        double value;
        const char* point;
        const char* comma;
    } cases[] = {
        {0.5, "0.500", "0,500"},
        {12.5, "12.50", "12,50"},
        {123.4, "123.4", "123,4"},
        {1234.5, "", ""},
        {1000, "", ""},
        {-1500, "-1500.000", "-1500,000"},
        {9.9996, "10.000", "10,000"},
        {99.996, "100.00", "100,00"},
        {999.96, "1000.0", "1000,0"},
        {10, "10.00", "10,00"},
        {100, "100.0", "100,0"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(threeFigureText(c.value, kPoint), c.point);
        EXPECT_EQ(threeFigureText(c.value, kComma), c.comma);
    }
    EXPECT_EQ(rateText(-0.125, kComma), "-0,13");
    EXPECT_EQ(sensorThicknessText(1234.5, kPoint), "1234.500");
    EXPECT_EQ(frequencyText(5987654.25, kPoint), "5987654.3");
}

TEST(DisplayFormats, Clock) {
    const struct {
        double seconds;
        const char* text;
    } cases[] = {
        {3725.4, "1:02:05"},       {0, "0:00:00"},      {-5, "0:00:00"},
        {0.9, "0:00:00"},          {59.999, "0:00:59"}, {376, "0:06:16"},
        {362399.9, "100:39:59"},   {362400, "0:00:00"}, {1e300, "0:00:00"},
        {std::nan(""), "0:00:00"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(clockText(c.seconds), c.text) << c.seconds;
    }
}

TEST(DisplayFormats, DateAndTime) {
    const LocalTime time{2026, 3, 7, 9, 5, 0, 999};
    const struct {
        const char* pattern;
        const char* text;
    } cases[] = {
        {"M/d/yyyy", "3/7/2026"},
        {"dd.MM.yyyy", "07.03.2026"},
        {"yyyy-MM-dd", "2026-03-07"},
        {"d. M. yyyy", "7. 3. 2026"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(shortDateText(time, NumberLocale{'.', ',', c.pattern}), c.text);
    }
    EXPECT_EQ(timeOfDayText(time), "9:05:00");
}

TEST(Text, AnsiAndUtf8) {
    std::string all;
    for (int byte = 0; byte < 256; ++byte) {
        all += static_cast<char>(byte);
    }
    EXPECT_EQ(ansiFromUtf8(utf8FromAnsi(all)), all);
    EXPECT_TRUE(isUtf8(utf8FromAnsi(all)));
    EXPECT_EQ(utf8FromAnsi("\x80\xC5\x93"), "\xE2\x82\xAC\xC3\x85\xE2\x80\x9C");

    const struct {
        const char* text;
        const char* bytes;
        bool whole;
    } cases[] = {
        {"\xCE\xA9 x", "? x", true},         // a character that the code page lacks
        {"\xF0\x9F\x98\x80", "?", true},     // four bytes, one character
        {"a\xC5", "a?", false},              // cut short
        {"\xC5\x41", "?A", false},           // the byte behind a broken one is kept
        {"\xC0\xAF", "??", false},           // overlong
        {"\xED\xA0\x80", "???", false},      // surrogate
        {"\xF5\x80\x80\x80", "????", false}, // above the last code
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ansiFromUtf8(c.text), c.bytes);
        EXPECT_EQ(isUtf8(c.text), c.whole);
    }
}

TEST(Text, BlanksAndCase) {
    EXPECT_EQ(trimmed("  a b\t "), "a b\t");
    EXPECT_EQ(trimmed("   "), "");
    EXPECT_TRUE(equalNoCase("CommSettings", "COMMSETTINGS"));
    EXPECT_FALSE(equalNoCase("ab", "abc"));
    EXPECT_FALSE(equalNoCase("\xE4", "\xC4"));
    EXPECT_EQ(upperAscii("yes\xE4{"), "YES\xE4{");
}

TEST(Paths, CutAndJoin) {
    EXPECT_EQ(bareName("C:\\nowhere\\run.txt"), "run.txt");
    EXPECT_EQ(bareName("/a\\b/c.txt"), "c.txt");
    EXPECT_EQ(bareName("run.txt"), "run.txt");
    EXPECT_EQ(bareName("folder/"), "");
    EXPECT_EQ(folderOf("/data/run.txt"), "/data");
    EXPECT_EQ(folderOf("/run.txt"), "/");
    EXPECT_EQ(folderOf("run.txt"), ".");
#ifndef _WIN32
    const Paths paths{"/opt/drx9", "/home/op/drx9"};
    EXPECT_EQ(paths.resolve("drx9.txt"), "/home/op/drx9/drx9.txt");
    EXPECT_EQ(paths.resolve("/tmp/x"), "/tmp/x");
    EXPECT_EQ(paths.resolve("C:\\x.mdb"), "/home/op/drx9/C:\\x.mdb"); // a file name here, not a path
    EXPECT_EQ(joinPath("/", "x"), "/x");
#endif
}

} // namespace
} // namespace drx9
