#include "util/DisplayFormats.h"
#include "util/Paths.h"
#include "util/Text.h"

#include <gtest/gtest.h>

#include <cmath>

namespace drx9 {
namespace {

TEST(DisplayFormats, ThreeFigures) {
    std::string texts;
    for (const double value :
         {0.5, 12.5, 123.4, 1234.5, 1000.0, -1500.0, 9.9996, 99.996, 999.96, 10.0, 100.0}) {
        texts += threeFigureText(value, {}) + " ";
    }
    EXPECT_EQ(texts, "0.500 12.50 123.4   -1500.000 10.000 100.00 1000.0 10.00 100.0 ");
}

TEST(DisplayFormats, ClockDateAndTime) {
    std::string texts;
    for (const double seconds : {3725.4, 0.0, -5.0, 59.999, 362399.9, 362400.0, 1e300, std::nan("")}) {
        texts += clockText(seconds) + " ";
    }
    EXPECT_EQ(texts, "1:02:05 0:00:00 0:00:00 0:00:59 100:39:59 0:00:00 0:00:00 0:00:00 ");
    const LocalTime time{2026, 3, 7, 9, 5, 0, 999};
    EXPECT_EQ(shortDateText(time, NumberLocale{'.', ',', "d. M. yyyy"}), "7. 3. 2026");
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
    EXPECT_EQ(utf8FromUtf16(utf16FromUtf8("a\xC3\xA4\xF0\x9F\x98\x80")), "a\xC3\xA4\xF0\x9F\x98\x80");
    EXPECT_FALSE(equalNoCase("\xE4", "\xC4")) << "ASCII letters only";
    EXPECT_EQ(utf8FromUtf16("\x3D\xD8x"), "\xEF\xBF\xBD") << "half a pair, and half a unit";

    EXPECT_EQ(ansiFromUtf8("\xCE\xA9 x\xF0\x9F\x98\x80"), "? x?") << "characters that the code page lacks";
    // Cut short, a broken one before another byte, overlong, a surrogate, above the last code.
    const std::pair<std::string, std::string> broken[] = {{"a\xC5", "a?"},
                                                          {"\xC5\x41", "?A"},
                                                          {"\xC0\xAF", "??"},
                                                          {"\xED\xA0\x80", "???"},
                                                          {"\xF5\x80\x80\x80", "????"}};
    for (const auto& [text, bytes] : broken) {
        EXPECT_EQ(ansiFromUtf8(text), bytes);
        EXPECT_FALSE(isUtf8(text));
    }
}

TEST(Paths, CutAndJoin) {
    EXPECT_EQ(bareName("C:\\nowhere\\run.txt") + bareName("/a\\b/c.txt") + bareName("x/"), "run.txtc.txt");
    EXPECT_EQ(folderOf("/run.txt") + folderOf("run.txt"), "/.");
#ifndef _WIN32
    const Paths paths{"/opt/drx9", "/home/op/drx9"};
    EXPECT_EQ(paths.resolve("C:\\x.mdb"), "/home/op/drx9/C:\\x.mdb"); // a file name here, not a path
#endif
}

} // namespace
} // namespace drx9
