#include "util/Numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <system_error>

namespace drx9 {

namespace {

constexpr int kDigits = 15; ///< significant digits that a number's text carries

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isSign(char c) {
    return c == '+' || c == '-';
}
bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

/// True when the well-formed number lies above the range of a double, false when it lies below it. Only asked
/// of a number outside the range, so the magnitude of its first non-zero digit decides.
bool isTooLarge(std::string_view number) {
    const auto e = std::min(number.find('e'), number.size());
    const std::string_view mantissa = number.substr(0, e);
    const auto first = mantissa.find_first_of("123456789");
    const auto point = std::min(mantissa.find('.'), mantissa.size());
    double exponent = static_cast<double>(point) - static_cast<double>(first);
    double written = 0;
    for (std::size_t i = e + 1; i < number.size(); ++i) {
        written = isDigit(number[i]) ? written * 10 + (number[i] - '0') : written;
    }
    exponent += e + 1 < number.size() && number[e + 1] == '-' ? -written : written;
    return exponent > 0;
}

/// Value of "12", "-.5", "1.e5": sign "-" only, "." and "e". The caller has checked the form. Out of range
/// gives an infinity or 0.
double toDouble(std::string_view number) {
    double value = 0;
    const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
    if (result.ec != std::errc::result_out_of_range) {
        return value;
    }
    const double limit = isTooLarge(number) ? std::numeric_limits<double>::infinity() : 0.0;
    return number.front() == '-' ? -limit : limit;
}

/// Reads a number from the start of a text in a form that toDouble() takes.
class NumberScanner {
public:
    /// `group` 0: there is no group separator.
    NumberScanner(std::string_view text, char decimal, char group)
        : text_(text)
        , decimal_(decimal)
        , group_(group) {}

    /// False when the text does not start with a number.
    bool scan() {
        takeSign();
        bool digits = takeDigits(group_);
        if (peek() == decimal_) {
            ++at_;
            number_ += '.';
            digits = takeDigits(0) || digits;
        }
        if (digits) {
            takeExponent();
        }
        return digits;
    }

    [[nodiscard]] bool atEnd() const { return at_ == text_.size(); }
    [[nodiscard]] const std::string& number() const { return number_; }

private:
    [[nodiscard]] char peek(std::size_t ahead = 0) const {
        return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0';
    }

    void takeSign() {
        if (isSign(peek())) {
            number_ += peek() == '-' ? "-" : "";
            ++at_;
        }
    }

    bool takeDigits(char skipped) {
        bool any = false;
        for (; isDigit(peek()) || (any && skipped != 0 && peek() == skipped); ++at_) {
            if (isDigit(peek())) {
                number_ += peek();
                any = true;
            }
        }
        return any;
    }

    /// An "e" without digits behind it is no part of the number.
    void takeExponent() {
        const std::size_t sign = isSign(peek(1)) ? 1 : 0;
        if ((peek() != 'e' && peek() != 'E') || !isDigit(peek(1 + sign))) {
            return;
        }
        number_ += 'e';
        number_ += peek(1) == '-' ? "-" : "";
        at_ += 1 + sign;
        takeDigits(0);
    }

    std::string_view text_;
    std::size_t at_ = 0;
    char decimal_;
    char group_;
    std::string number_;
};

/// Digits in groups of three behind the first, as "1,234,567", with a sign before them or without.
bool isGrouped(std::string_view text, char group) {
    text.remove_prefix(!text.empty() && (text.front() == '-' || text.front() == '+') ? 1 : 0);
    const std::size_t first = text.find(group);
    bool grouped = first >= 1 && first <= 3 && text.front() != '0';
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isSign = i >= first && (i - first) % 4 == 0;
        grouped = grouped && (isSign ? text[i] == group : text[i] >= '0' && text[i] <= '9');
    }
    return grouped && (text.size() - first) % 4 == 0;
}

std::string_view withoutOuterBlanks(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

double halfToEven(double value) {
    const double down = std::floor(value);
    const double rest = value - down;
    if (rest != 0.5) {
        return rest < 0.5 ? down : down + 1;
    }
    return std::fmod(down, 2.0) == 0 ? down : down + 1;
}

template<typename Integer>
Integer toInteger(double value) {
    if (std::isnan(value)) {
        return 0;
    }
    return static_cast<Integer>(std::clamp(halfToEven(value),
                                           static_cast<double>(std::numeric_limits<Integer>::min()),
                                           static_cast<double>(std::numeric_limits<Integer>::max())));
}

/// A finite number as 15 significant decimal digits: 0.d1d2d3... × 10^point, without trailing zeros. No
/// digits: 0.
struct Decimal {
    bool negative = false;
    std::string digits;
    int point = 0; ///< number of digits before the decimal point; 0 or negative: zeros follow it
};

Decimal toDecimal(double value) {
    Decimal decimal;
    if (value == 0 || !std::isfinite(value)) {
        return decimal;
    }
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), std::fabs(value),
                                   std::chars_format::scientific, kDigits - 1);
    const std::string_view written(text.data(), static_cast<std::size_t>(end.ptr - text.data()));
    decimal.negative = value < 0;
    decimal.digits = written[0];
    decimal.digits += written.substr(2, kDigits - 1);
    decimal.digits.erase(decimal.digits.find_last_not_of('0') + 1);
    const auto e = written.find('e');
    int exponent = 0;
    std::from_chars(written.data() + e + 2, written.data() + written.size(), exponent);
    decimal.point = (written[e + 1] == '-' ? -exponent : exponent) + 1;
    return decimal;
}

/// Cuts to so many digits, half away from zero; may leave none.
void roundDigits(Decimal& decimal, int count) {
    if (count >= static_cast<int>(decimal.digits.size())) {
        return;
    }
    const bool up = count >= 0 && decimal.digits[static_cast<std::size_t>(count)] >= '5';
    decimal.digits.resize(static_cast<std::size_t>(std::max(count, 0)));
    if (!up) {
        return;
    }
    while (!decimal.digits.empty() && decimal.digits.back() == '9') {
        decimal.digits.pop_back();
    }
    if (decimal.digits.empty()) {
        decimal.digits = "1";
        ++decimal.point;
    } else {
        ++decimal.digits.back();
    }
}

/// Digit at a place counted from the decimal point: 0 is the first one behind it, -1 the last one before it.
char digitAt(const Decimal& decimal, int place) {
    const int index = decimal.point + place;
    return index >= 0 && index < static_cast<int>(decimal.digits.size())
               ? decimal.digits[static_cast<std::size_t>(index)]
               : '0';
}

std::string positional(const Decimal& decimal, int decimals, char separator, bool leadingZero) {
    std::string out;
    if (decimal.negative && !decimal.digits.empty()) {
        out += '-';
    }
    const int whole = decimal.digits.empty() ? 0 : std::max(decimal.point, 0);
    if (whole == 0 && leadingZero) {
        out += '0';
    }
    for (int place = -whole; place < 0; ++place) {
        out += digitAt(decimal, place);
    }
    if (decimals > 0) {
        out += separator;
    }
    for (int place = 0; place < decimals; ++place) {
        out += digitAt(decimal, place);
    }
    return out;
}

std::string scientific(const Decimal& decimal, char separator) {
    std::string out = decimal.negative ? "-" : "";
    out += decimal.digits[0];
    if (decimal.digits.size() > 1) {
        out += separator;
        out += decimal.digits.substr(1);
    }
    const int exponent = decimal.point - 1;
    const std::string figures = std::to_string(std::abs(exponent));
    out += exponent < 0 ? "E-" : "E+";
    return out + (figures.size() < 2 ? "0" : "") + figures;
}

std::string shortest(double value, char separator, bool leadingZero) {
    const Decimal decimal = toDecimal(value);
    if (decimal.digits.empty()) {
        return "0";
    }
    if (decimal.point > kDigits || decimal.point < 1 - kDigits) {
        return scientific(decimal, separator);
    }
    const int decimals = std::max(static_cast<int>(decimal.digits.size()) - decimal.point, 0);
    return positional(decimal, decimals, separator, leadingZero);
}

/// A number scaled by a power of ten and rounded, where that is beyond doubt: small, and not so near a half
/// that the 15-digit text could lie on its other side. Most readings are such numbers, and this is the short
/// way for them.
std::optional<std::uint32_t> roundedPlainly(double value, int decimals) {
    constexpr std::array<double, 4> scales = {1, 10, 100, 1000};
    constexpr double limit = 1e9;
    constexpr double doubt = 1e-4; // the text differs by less than limit * 5E-15
    if (decimals < 0 || decimals >= static_cast<int>(scales.size())) {
        return std::nullopt;
    }
    const double scaled = std::fabs(value) * scales[static_cast<std::size_t>(decimals)];
    if (!(scaled < limit)) {
        return std::nullopt;
    }
    const auto whole = static_cast<std::uint32_t>(scaled);
    const double rest = scaled - whole;
    if (std::fabs(rest - 0.5) < doubt) {
        return std::nullopt;
    }
    return whole + (rest > 0.5 ? 1 : 0);
}

/// `number` divided by 10^decimals.
std::string shifted(std::uint32_t number, bool negative, int decimals, char separator, bool leadingZero) {
    std::array<char, 16> text{};
    char* at = text.data() + text.size();
    for (int place = 0; place < decimals; ++place, number /= 10) {
        *--at = static_cast<char>('0' + number % 10);
    }
    if (decimals > 0) {
        *--at = separator;
    }
    for (bool first = leadingZero; first || number > 0; first = false, number /= 10) {
        *--at = static_cast<char>('0' + number % 10);
    }
    if (negative) {
        *--at = '-';
    }
    return {at, text.data() + text.size()};
}

} // namespace

double Val(std::string_view text) {
    std::string packed;
    packed.reserve(text.size());
    std::copy_if(text.begin(), text.end(), std::back_inserter(packed), [](char c) { return !isBlank(c); });
    NumberScanner scanner(packed, '.', 0);
    if (!scanner.scan()) {
        return 0;
    }
    constexpr double largest = std::numeric_limits<double>::max();
    return std::clamp(toDouble(scanner.number()), -largest, largest);
}

std::optional<double> parseLocaleNumber(std::string_view text, const NumberLocale& locale) {
    NumberScanner scanner(withoutOuterBlanks(text), locale.decimal, locale.group);
    if (!scanner.scan() || !scanner.atEnd()) {
        return std::nullopt;
    }
    const double value = toDouble(scanner.number());
    return std::isfinite(value) ? std::optional<double>(value) : std::nullopt;
}

std::optional<double> typedNumber(std::string_view text, const NumberLocale& locale) {
    std::string plain(withoutOuterBlanks(text));
    const std::size_t first = plain.find_first_of(".,");
    if (first == std::string::npos) {
        return parseLocaleNumber(plain, locale);
    }
    const std::size_t last = plain.find_last_of(".,");
    const char group = plain[first];
    const std::size_t whole = first == last || plain[last] != group ? last : plain.size(); // its end
    if (whole < plain.size()) {
        plain[whole] = '.';
    }
    if (first != last) {
        if (!isGrouped(std::string_view(plain).substr(0, whole), group)) {
            return {};
        }
        const auto end = plain.begin() + static_cast<std::ptrdiff_t>(whole);
        plain.erase(std::remove(plain.begin(), end, group), end);
    }
    return parseLocaleNumber(plain, NumberLocale{});
}

std::int16_t toInt16(double value) {
    return toInteger<std::int16_t>(value);
}

std::int32_t toInt32(double value) {
    return toInteger<std::int32_t>(value);
}

double toThousandths(double value) {
    return halfToEven(value * 1000) / 1000;
}

std::string plainNumber(double value) {
    return shortest(value, '.', false);
}

std::string Str(double value) {
    const std::string text = plainNumber(value);
    return text.front() == '-' ? text : " " + text;
}

std::string generalNumber(double value, const NumberLocale& locale) {
    return shortest(value, locale.decimal, true);
}

std::string fixedNumber(double value, int decimals, const NumberLocale& locale, bool leadingZero) {
    if (const auto rounded = roundedPlainly(value, decimals)) {
        return shifted(*rounded, value < 0 && *rounded > 0, decimals, locale.decimal, leadingZero);
    }
    Decimal decimal = toDecimal(value);
    roundDigits(decimal, decimal.point + decimals);
    return positional(decimal, decimals, locale.decimal, leadingZero);
}

} // namespace drx9
