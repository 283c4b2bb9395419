#include "TextForm.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace drx9::mdbtool {

namespace {

using namespace jet;

constexpr std::int64_t kCurrencyUnit = 10000;
constexpr std::int64_t kDaySeconds = 86400;
constexpr std::int64_t kDaysTo1970 = 25569; ///< from 1899-12-30
constexpr std::int64_t kFirstDay = -657434; ///< 0100-01-01, the first that a date can hold
constexpr std::int64_t kLastDay = 2958465;  ///< 9999-12-31
constexpr std::size_t kGuidText = 38;
constexpr char kHex[] = "0123456789abcdef";

template<class Number>
void appendNumber(std::string& out, Number value) {
    char digits[64];
    const auto end = std::to_chars(digits, digits + sizeof digits, value);
    out.append(digits, end.ptr);
}

void appendTrimmed(std::string& out, std::string digits) {
    if (digits.find('.') != std::string::npos) {
        digits.erase(digits.find_last_not_of('0') + 1);
        if (digits.back() == '.') {
            digits.pop_back();
        }
    }
    out += digits;
}

void appendCurrency(std::string& out, Currency value) {
    const bool negative = value.tenThousandths < 0;
    const auto magnitude = negative ? 0 - static_cast<std::uint64_t>(value.tenThousandths)
                                    : static_cast<std::uint64_t>(value.tenThousandths);
    char digits[32];
    std::snprintf(digits, sizeof digits, "%s%llu.%04u", negative ? "-" : "",
                  static_cast<unsigned long long>(magnitude / kCurrencyUnit),
                  static_cast<unsigned>(magnitude % kCurrencyUnit));
    appendTrimmed(out, digits);
}

/// The fraction is the time of day and counts away from zero.
void appendDate(std::string& out, DateTime value) {
    const double whole = std::trunc(value.days);
    if (!(std::abs(whole) < 1e7)) {
        appendNumber(out, value.days);
        return;
    }
    auto day = static_cast<std::int64_t>(whole);
    auto seconds = static_cast<std::int64_t>(
        std::llround(std::abs(value.days - whole) * static_cast<double>(kDaySeconds)));
    day += seconds / kDaySeconds;
    seconds %= kDaySeconds;
    const std::chrono::year_month_day date{std::chrono::sys_days{std::chrono::days{day - kDaysTo1970}}};
    char text[48];
    std::snprintf(text, sizeof text, "%04d-%02u-%02u %02d:%02d:%02d", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                  static_cast<int>(seconds / 3600), static_cast<int>(seconds / 60 % 60),
                  static_cast<int>(seconds % 60));
    out += text;
}

void appendHex(std::string& out, std::string_view bytes) {
    for (const char byte : bytes) {
        out += kHex[static_cast<unsigned char>(byte) >> 4];
        out += kHex[static_cast<unsigned char>(byte) & 15];
    }
}

void appendGuid(std::string& out, const Guid& guid) {
    // A dword and two words little-endian, then eight bytes.
    constexpr std::size_t kOrder[] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
    out += '{';
    for (std::size_t i = 0; i < std::size(kOrder); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) {
            out += '-';
        }
        char pair[4];
        std::snprintf(pair, sizeof pair, "%02X", static_cast<unsigned>(guid.bytes[kOrder[i]]));
        out += pair;
    }
    out += '}';
}

struct Printer {
    std::string& out;
    void operator()(const Null&) const {}
    void operator()(bool value) const { out += value ? '1' : '0'; }
    void operator()(std::int64_t value) const { appendNumber(out, value); }
    void operator()(Currency value) const { appendCurrency(out, value); }
    void operator()(float value) const { appendNumber(out, value); }
    void operator()(double value) const { appendNumber(out, value); }
    void operator()(DateTime value) const { appendDate(out, value); }
    void operator()(const std::string& value) const { appendEscaped(out, value); }
    void operator()(const Binary& value) const { appendHex(out, value.bytes); }
    void operator()(const Guid& value) const { appendGuid(out, value); }
    void operator()(const Numeric& value) const { appendTrimmed(out, value.digits); }
};

// ---- Parsing ----

[[noreturn]] void notA(const char* kind, const std::string& text) {
    rejected("\"" + text + "\" is not " + kind);
}

template<class Number>
Number parseNumber(const std::string& text, const char* kind) {
    Number value{};
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec == std::errc::result_out_of_range) {
        rejected("the number " + text + " is out of range");
    }
    if (result.ec != std::errc() || result.ptr != text.data() + text.size() || text.empty()) {
        notA(kind, text);
    }
    if constexpr (std::is_floating_point_v<Number>) {
        if (!std::isfinite(value)) {
            notA(kind, text);
        }
    }
    return value;
}

std::string parseDecimal(const std::string& text) {
    const std::size_t start = text.substr(0, 1) == "-" ? 1 : 0;
    const bool digits = text.find_first_of("0123456789") != std::string::npos;
    const auto point = text.find('.');
    if (!digits || text.find_first_not_of("0123456789.", start) != std::string::npos ||
        (point != std::string::npos && text.find('.', point + 1) != std::string::npos)) {
        notA("a decimal number", text);
    }
    return text;
}

/// By way of whole ten-thousandths, so that no digit is lost.
Currency parseCurrency(const std::string& text) {
    std::string digits = parseDecimal(text);
    const auto point = digits.find('.');
    std::string decimals = point == std::string::npos ? std::string() : digits.substr(point + 1);
    digits.erase(std::min(point, digits.size()));
    decimals.erase(decimals.find_last_not_of('0') + 1);
    if (decimals.size() > 4) {
        rejected("the amount " + text + " has more than four decimals");
    }
    decimals.resize(4, '0');
    return {parseNumber<std::int64_t>(digits + decimals, "an amount")};
}

DateTime parseDate(const std::string& text) {
    int year = 0;
    unsigned month = 0;
    unsigned day = 0;
    unsigned hour = 0;
    unsigned minute = 0;
    unsigned second = 0;
    std::string form = text;
    std::replace_if(
        form.begin(), form.end(), [](char c) { return c >= '0' && c <= '9'; }, '0');
    const int count =
        std::sscanf(text.c_str(), "%4d-%2u-%2u %2u:%2u:%2u", &year, &month, &day, &hour, &minute, &second);
    const std::chrono::year_month_day date{std::chrono::year{year}, std::chrono::month{month},
                                           std::chrono::day{day}};
    if (form != "0000-00-00 00:00:00" || count != 6 || !date.ok() || hour > 23 || minute > 59 ||
        second > 59) {
        notA("a date of the form YYYY-MM-DD HH:MM:SS", text);
    }
    const std::int64_t days = std::chrono::sys_days{date}.time_since_epoch().count() + kDaysTo1970;
    if (days < kFirstDay || days > kLastDay) {
        rejected("the date " + text + " is out of range");
    }
    const double time =
        static_cast<double>(hour * 3600 + minute * 60 + second) / static_cast<double>(kDaySeconds);
    return {static_cast<double>(days) + (days < 0 ? -time : time)};
}

std::string parseHex(const std::string& text) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
        unsigned value = 0;
        const auto result = std::from_chars(text.data() + i, text.data() + i + 2, value, 16);
        if (result.ptr != text.data() + i + 2) {
            notA("hexadecimal", text);
        }
        bytes.push_back(static_cast<char>(value));
    }
    if (text.size() % 2 != 0) {
        notA("hexadecimal", text);
    }
    return bytes;
}

Guid parseGuid(const std::string& text) {
    std::string digits;
    for (const char c : text) {
        digits += c == '{' || c == '}' || c == '-' ? "" : std::string(1, c);
    }
    if (text.size() != kGuidText || digits.size() != 32) {
        notA("a GUID", text);
    }
    const std::string bytes = parseHex(digits);
    constexpr std::size_t kOrder[] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
    Guid guid;
    for (std::size_t i = 0; i < guid.bytes.size(); ++i) {
        guid.bytes[kOrder[i]] = static_cast<std::uint8_t>(bytes[i]);
    }
    return guid;
}

std::string parseText(const std::string& text) {
    if (!isUtf8(text)) {
        rejected("the text is not UTF-8");
    }
    return text;
}

} // namespace

void appendValue(std::string& out, const Value& value) {
    std::visit(Printer{out}, value);
}

void appendEscaped(std::string& out, std::string_view text) {
    for (const char c : text) {
        switch (c) {
        case '\\':
            out += "\\\\";
            break;
        case '\t':
            out += "\\t";
            break;
        case '\r':
            out += "\\r";
            break;
        case '\n':
            out += "\\n";
            break;
        default:
            out += c;
        }
    }
}

std::string unescaped(std::string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            out += text[i];
            continue;
        }
        constexpr std::string_view kCodes = "\\trn";
        constexpr std::string_view kMeanings = "\\\t\r\n";
        const auto code = ++i < text.size() ? kCodes.find(text[i]) : std::string_view::npos;
        if (code == std::string_view::npos) {
            rejected("\"\\" + std::string(text.substr(std::min(i, text.size()), 1)) + "\" is not an escape");
        }
        out += kMeanings[code];
    }
    return out;
}

Value parseValue(const Column& column, const std::string& text) {
    switch (column.type) {
    case ColumnType::Boolean:
        if (text != "0" && text != "1") {
            notA("0 or 1", text);
        }
        return text == "1";
    case ColumnType::Byte:
    case ColumnType::Integer:
    case ColumnType::Long:
        return parseNumber<std::int64_t>(text, "a whole number");
    case ColumnType::Currency:
        return parseCurrency(text);
    case ColumnType::Single:
        return parseNumber<float>(text, "a number");
    case ColumnType::Double:
        return parseNumber<double>(text, "a number");
    case ColumnType::Date:
        return parseDate(text);
    case ColumnType::Text:
    case ColumnType::Memo:
        return parseText(text);
    case ColumnType::Binary:
    case ColumnType::FixedBinary:
    case ColumnType::Ole:
        return Binary{parseHex(text)};
    case ColumnType::Guid:
        return parseGuid(text);
    case ColumnType::Numeric:
        return Numeric{parseDecimal(text)};
    }
    rejected("the column \"" + column.name + "\" is of a type that cannot be written");
}

DateTime dateOf(std::int64_t secondsSince1970) {
    return {static_cast<double>(kDaysTo1970) +
            static_cast<double>(secondsSince1970) / static_cast<double>(kDaySeconds)};
}

} // namespace drx9::mdbtool
