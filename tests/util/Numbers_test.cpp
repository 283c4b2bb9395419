#include "util/Numbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <limits>

namespace drx9 {
namespace {

const NumberLocale kPoint;
const NumberLocale kComma{',', '.', "dd.MM.yyyy"};
constexpr double kLargest = std::numeric_limits<double>::max();

/// What a conversion makes of each value, with blanks between.
template<typename Value, typename Convert>
std::string each(std::initializer_list<Value> values, Convert convert) {
    std::string out;
    for (const Value& value : values) {
        out += (out.empty() ? "" : " ") + convert(value);
    }
    return out;
}

TEST(Numbers, ValTakesTheLeadingNumber) {
    const auto taken = [](const char* text) { return plainNumber(Val(text)); };
    EXPECT_EQ(each({"", "abc", "-", ".", "12abc", "-.5e2x", "1,5", " 1 2\t3 ", "+7.25", "5."}, taken),
              "0 0 0 0 12 -50 1 123 7.25 5");
    EXPECT_EQ(each({"1e", "1e+", "2E-3", "1.2.3", "--1", "1e-999", "0e999"}, taken), "1 1 .002 1.2 0 0 0");
    EXPECT_EQ(Val("1e999"), kLargest);
    EXPECT_EQ(Val("-1e99999999999999999999"), -kLargest);
    EXPECT_EQ(Val(std::string(400, '9')), kLargest);
}

TEST(Numbers, LocaleNumbersAreTakenWholeOrNotAtAll) {
    const struct {
        const char* text;
        std::optional<double> point, comma;
    } cases[] = {
        {"2,5", 25, 2.5},          {"2.5", 2.5, 25},        {"5.0", 5, 50},      {" 12 ", 12, 12},
        {"-1,234.5", -1234.5, {}}, {"1.234,5", {}, 1234.5}, {"1e3", 1000, 1000}, {"", {}, {}},
        {"12abc", {}, {}},         {"1 2", {}, {}},         {"-", {}, {}},       {"1e999", {}, {}},
        {"nan", {}, {}},           {"0x10", {}, {}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(parseLocaleNumber(c.text, kPoint), c.point) << c.text;
        EXPECT_EQ(parseLocaleNumber(c.text, kComma), c.comma) << c.text;
    }
}

TEST(Numbers, TypedNumbersTakeBothDecimalSigns) {
    const std::pair<const char*, std::optional<double>> cases[] = {
        {"2.5", 2.5},
        {"2,5", 2.5},
        {" 7 ", 7},
        {"1,250", 1.25},
        {"-.5", -0.5},
        {"1,234.5", 1234.5},
        {"1.234,5", 1234.5},
        {"1,234,567", 1234567},
        {"1,2,3", {}},
        {"1,23.5", {}},
        {"1.2,3.4", {}},
        {"0,123,456", {}},
        {"1,,234", {}},
        {"1,234,", {}},
        {"", {}},
        {"1 2", {}},
        {",", {}},
        {",.", {}},
        {"1,2345.6", {}},
        {"1e-3", 1e-3},
        {"-1.234.567,5", -1234567.5},
    };
    for (const auto& [text, number] : cases) {
        EXPECT_EQ(typedNumber(text, kPoint), number) << text;
        EXPECT_EQ(typedNumber(text, kComma), number) << text;
    }
}

TEST(Numbers, WholeNumbersAreHalfToEvenAndClamped) {
    const auto values = {0.5, 1.5, 2.5, -0.5, -1.5, 2.4999, -2.51, 40000.0, -40000.0, 1e20, std::nan("")};
    EXPECT_EQ(each(values, [](double v) { return std::to_string(toInt16(v)); }),
              "0 2 2 0 -2 2 -3 32767 -32768 32767 0");
    EXPECT_EQ(each(values, [](double v) { return std::to_string(toInt32(v)); }),
              "0 2 2 0 -2 2 -3 40000 -40000 2147483647 0");
}

TEST(Numbers, PlainAndGeneralText) {
    const auto values = {0.0,  -0.0,    0.25,  -0.25,   100.0, 0.1 + 0.2, 1.0 / 3, 123456789012345.0,
                         1e15, -1.5e20, 1e-15, 1.25e-16};
    EXPECT_EQ(each(values, plainNumber),
              "0 0 .25 -.25 100 .3 .333333333333333 123456789012345 1E+15 -1.5E+20 "
              ".000000000000001 1.25E-16");
    EXPECT_EQ(
        each(values, [](double v) { return generalNumber(v, kComma); }),
        "0 0 0,25 -0,25 100 0,3 0,333333333333333 123456789012345 1E+15 -1,5E+20 0,000000000000001 1,25E-16");
    EXPECT_EQ(each({0.25, 0.0, -3.0}, Str), " .25  0 -3");
}

TEST(Numbers, FixedDecimalsRoundTheDecimalText) {
    const auto fixed = [](int decimals, bool zero) {
        return [=](double v) { return fixedNumber(v, decimals, kComma, zero); };
    };
    EXPECT_EQ(each({2.675, 1.005, 0.994999999999999, 0.0, 1e-300, -0.004}, fixed(2, true)),
              "2,68 1,01 0,99 0,00 0,00 0,00");
    EXPECT_EQ(each({0.0005, 0.00049999, -0.0005, 9.9995}, fixed(3, false)), ",001 ,000 -,001 10,000");
    EXPECT_EQ(each({0.5, 0.95, 5999999.95, 1e22}, fixed(1, false)),
              ",5 1,0 6000000,0 10000000000000000000000,0");
    EXPECT_EQ(fixedNumber(2.5, 0, kPoint), "3");
    EXPECT_EQ(fixedNumber(1e300, 2, kPoint).size(), 304U);
    for (int i = 1000; i < 20000; ++i) { // whichever side of the half the double lies on
        std::string expected = std::to_string(i + 1);
        expected.insert(expected.size() - 3, ".");
        ASSERT_EQ(fixedNumber((2 * i + 1) / 2000.0, 3, kPoint), expected);
    }
}

} // namespace
} // namespace drx9
