#include "util/Numbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace drx9 {
namespace {

const NumberLocale kPoint;
const NumberLocale kComma{',', '.', "dd.MM.yyyy"};

TEST(Numbers, ValTakesTheLeadingNumber) {
    const double largest = std::numeric_limits<double>::max();
    const struct {
        std::string text;
        double value;
    } cases[] = {
        {"", 0},
        {"abc", 0},
        {"-", 0},
        {".", 0},
        {"12abc", 12},
        {"-.5e2x", -50},
        {"1,5", 1},
        {" 1 2\t3 ", 123},
        {"+7.25", 7.25},
        {"5.", 5},
        {"1e", 1},
        {"1e+", 1},
        {"2E-3", 0.002},
        {"1.2.3", 1.2},
        {"--1", 0},
        {"1e999", largest},
        {"-1e999", -largest},
        {"1e-999", 0},
        {"0e999", 0},
        {std::string(400, '9') + "e-395", 1e5},
        {std::string(400, '9'), largest},
        {"0." + std::string(400, '0') + "1", 0},
        {"1e99999999999999999999", largest},
        {"000000000123.5", 123.5},
    };
    for (const auto& c : cases) {
        EXPECT_DOUBLE_EQ(Val(c.text), c.value) << c.text;
    }
}

TEST(Numbers, LocaleNumbersAreTakenWholeOrNotAtAll) {
    const struct {
        const char* text;
        std::optional<double> point;
        std::optional<double> comma;
    } cases[] = {
        {"2,5", 25, 2.5},          {"2.5", 2.5, 25},        {"5.0", 5, 50},      {" 12 ", 12, 12},
        {"-1,234.5", -1234.5, {}}, {"1.234,5", {}, 1234.5}, {"1e3", 1000, 1000}, {"", {}, {}},
        {"12abc", {}, {}},         {"1 2", {}, {}},         {"-", {}, {}},       {"1e999", {}, {}},
        {"nan", {}, {}},           {"0x10", {}, {}},        {"+3", 3, 3},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(parseLocaleNumber(c.text, kPoint), c.point) << c.text;
        EXPECT_EQ(parseLocaleNumber(c.text, kComma), c.comma) << c.text;
    }
}

TEST(Numbers, WholeNumbersAreHalfToEvenAndClamped) {
    const struct {
        double value;
        std::int16_t small;
        std::int32_t large;
    } cases[] = {
        {0.5, 0, 0},
        {1.5, 2, 2},
        {2.5, 2, 2},
        {-0.5, 0, 0},
        {-1.5, -2, -2},
        {2.4999, 2, 2},
        {-2.51, -3, -3},
        {40000, 32767, 40000},
        {-40000, -32768, -40000},
        {1e20, 32767, 2147483647},
        {-1e20, -32768, std::numeric_limits<std::int32_t>::min()},
        {std::nan(""), 0, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(toInt16(c.value), c.small) << c.value;
        EXPECT_EQ(toInt32(c.value), c.large) << c.value;
    }
}

TEST(Numbers, PlainAndGeneralText) {
    const struct {
        double value;
        const char* plain;
        const char* comma;
    } cases[] = {
        {0, "0", "0"},
        {-0.0, "0", "0"},
        {0.25, ".25", "0,25"},
        {-0.25, "-.25", "-0,25"},
        {100, "100", "100"},
        {2.5, "2.5", "2,5"},
        {0.1 + 0.2, ".3", "0,3"},
        {1.0 / 3, ".333333333333333", "0,333333333333333"},
        {123456789012345, "123456789012345", "123456789012345"},
        {1e15, "1E+15", "1E+15"},
        {-1.5e20, "-1.5E+20", "-1,5E+20"},
        {1e-15, ".000000000000001", "0,000000000000001"},
        {1.25e-16, "1.25E-16", "1,25E-16"},
        {1e300, "1E+300", "1E+300"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(plainNumber(c.value), c.plain);
        EXPECT_EQ(generalNumber(c.value, kComma), c.comma);
    }
    EXPECT_EQ(Str(0.25), " .25");
    EXPECT_EQ(Str(0), " 0");
    EXPECT_EQ(Str(-3), "-3");
}

TEST(Numbers, FixedDecimalsRoundTheDecimalText) {
    const struct {
        double value;
        int decimals;
        const char* point;
        const char* noZero;
    } cases[] = {
        {2.675, 2, "2.68", "2.68"},
        {1.005, 2, "1.01", "1.01"},
        {0.0005, 3, "0.001", ".001"},
        {0.00049999, 3, "0.000", ".000"},
        {-0.0005, 3, "-0.001", "-.001"},
        {-0.0004, 3, "0.000", ".000"},
        {9.9995, 3, "10.000", "10.000"},
        {0.5, 1, "0.5", ".5"},
        {0.05, 1, "0.1", ".1"},
        {0.95, 1, "1.0", "1.0"},
        {0, 2, "0.00", ".00"},
        {5999999.95, 1, "6000000.0", "6000000.0"},
        {0.994999999999999, 2, "0.99", ".99"},
        {2.5, 0, "3", "3"},
        {1e22, 1, "10000000000000000000000.0", "10000000000000000000000.0"},
        {1e-300, 2, "0.00", ".00"},
        {123456789.125, 2, "123456789.13", "123456789.13"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(fixedNumber(c.value, c.decimals, kPoint), c.point);
        EXPECT_EQ(fixedNumber(c.value, c.decimals, kPoint, false), c.noZero);
        std::string comma = c.point;
        if (c.decimals > 0) {
            comma[comma.find('.')] = ',';
        }
        EXPECT_EQ(fixedNumber(c.value, c.decimals, kComma), comma);
    }
    EXPECT_EQ(fixedNumber(1e300, 2, kPoint).size(), 304U);
}

/// The texts must not depend on how far a value lies from a half: compare with integers of known decimal
/// text.
TEST(Numbers, EveryHalfOfAThousandthRoundsAwayFromZero) {
    for (int i = 0; i < 20000; ++i) {
        const double half = (2 * i + 1) / 2000.0;
        const std::string digits = std::to_string(i + 1);
        const std::string padded = std::string(digits.size() < 4 ? 4 - digits.size() : 0, '0') + digits;
        const std::string expected =
            padded.substr(0, padded.size() - 3) + "." + padded.substr(padded.size() - 3);
        ASSERT_EQ(fixedNumber(half, 3, kPoint), expected);
        ASSERT_EQ(fixedNumber(-half, 3, kPoint), "-" + expected);
    }
}

} // namespace
} // namespace drx9
