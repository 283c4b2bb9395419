#include "jet/Value.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>

namespace drx9::jet {

namespace {

constexpr double kCurrencyUnit = 10000.0;
constexpr std::size_t kNumericSize = 17;
constexpr char kNegative = '\x80';

[[noreturn]] void wrongKind(const Column& column) {
    rejected("the value does not fit the type of the column \"" + column.name + "\"");
}

[[noreturn]] void outOfRange(const Column& column) {
    rejected("the number is out of range of the column \"" + column.name + "\"");
}

template<class Number>
Number floating(std::string_view stored) {
    if constexpr (sizeof(Number) == 4) {
        return std::bit_cast<float>(Bytes(stored).u32(0));
    } else {
        return std::bit_cast<double>(Bytes(stored).u64(0));
    }
}

/// A value as a number that a numeric column can take; texts are not.
double numberFor(const Column& column, const Value& value) {
    const auto number = asNumber(value);
    if (!number || std::isnan(*number)) {
        wrongKind(column);
    }
    return *number;
}

std::int64_t wholeFor(const Column& column, const Value& value, std::int64_t low, std::int64_t high) {
    const auto* whole = std::get_if<std::int64_t>(&value);
    const double number = whole != nullptr ? 0 : std::nearbyint(numberFor(column, value));
    if (whole == nullptr && (number < static_cast<double>(low) || number > static_cast<double>(high))) {
        outOfRange(column);
    }
    const std::int64_t result = whole != nullptr ? *whole : static_cast<std::int64_t>(number);
    if (result < low || result > high) {
        outOfRange(column);
    }
    return result;
}

std::string encodeCurrency(const Column& column, const Value& value) {
    std::int64_t units = 0;
    if (const auto* currency = std::get_if<Currency>(&value)) {
        units = currency->tenThousandths;
    } else {
        const double scaled = std::nearbyint(numberFor(column, value) * kCurrencyUnit);
        if (std::abs(scaled) >= 9.2e18) {
            outOfRange(column);
        }
        units = static_cast<std::int64_t>(scaled);
    }
    std::string bytes;
    append(bytes, 8, static_cast<std::uint64_t>(units));
    return bytes;
}

std::string encodeFloating(const Column& column, const Value& value) {
    const double number = numberFor(column, value);
    std::string bytes;
    if (column.type == ColumnType::Single) {
        const auto narrow = static_cast<float>(number);
        if (std::isinf(narrow) && !std::isinf(number)) {
            outOfRange(column);
        }
        append(bytes, 4, std::bit_cast<std::uint32_t>(narrow));
    } else {
        append(bytes, 8, std::bit_cast<std::uint64_t>(number));
    }
    return bytes;
}

std::string encodeDate(const Column& column, const Value& value) {
    const auto* date = std::get_if<DateTime>(&value);
    if (date == nullptr || !std::isfinite(date->days)) {
        wrongKind(column);
    }
    std::string bytes;
    append(bytes, 8, std::bit_cast<std::uint64_t>(date->days));
    return bytes;
}

std::string encodeText(const TextCodec& text, const Column& column, const Value& value) {
    const auto* utf8 = std::get_if<std::string>(&value);
    if (utf8 == nullptr) {
        wrongKind(column);
    }
    const bool fixed = column.isFixed();
    std::string bytes = text.encode(*utf8, column.compress && !fixed);
    if (column.type == ColumnType::Memo) {
        return bytes;
    }
    // The length counts characters, whether or not they are stored compressed.
    const std::size_t width = text.generation() == Generation::Jet4 ? 2 : 1;
    if (toUtf16(*utf8).size() * width > column.length) {
        rejected("the text is longer than the column \"" + column.name + "\" (" +
                 std::to_string(column.length / width) + " characters)");
    }
    while (fixed && bytes.size() + width <= column.length) {
        append(bytes, width, ' ');
    }
    return bytes;
}

std::string encodeBytes(const Column& column, const Value& value) {
    const auto* binary = std::get_if<Binary>(&value);
    if (binary == nullptr) {
        wrongKind(column);
    }
    std::string bytes = binary->bytes;
    if (column.type != ColumnType::Ole && bytes.size() > column.length) {
        rejected("the value is longer than the column \"" + column.name + "\"");
    }
    if (column.isFixed()) {
        bytes.resize(column.length, '\0');
    }
    return bytes;
}

std::string encodeNumeric(const Column& column, const Value& value) {
    if (const auto* numeric = std::get_if<Numeric>(&value)) {
        return numericBytes(numeric->digits, column.precision, column.scale);
    }
    if (const auto* whole = std::get_if<std::int64_t>(&value)) {
        return numericBytes(std::to_string(*whole), column.precision, column.scale);
    }
    char digits[400];
    const auto end =
        std::to_chars(digits, digits + sizeof digits, numberFor(column, value), std::chars_format::fixed);
    return numericBytes(std::string_view(digits, static_cast<std::size_t>(end.ptr - digits)),
                        column.precision, column.scale);
}

/// The digits without the zeros that do not count: "-01.50" as "-1.5", "-0.0" as "".
std::string withoutPadding(std::string_view digits) {
    const bool negative = digits.substr(0, 1) == "-";
    std::string text(digits.substr(negative ? 1 : 0));
    if (text.find('.') != std::string::npos) {
        text.erase(text.find_last_not_of('0') + 1);
        text.erase(text.find_last_not_of('.') + 1);
    }
    text.erase(0, text.find_first_not_of('0'));
    return negative && !text.empty() ? "-" + text : text;
}

} // namespace

Value decodeValue(const TextCodec& text, const Column& column, std::string_view stored) {
    const Bytes bytes(stored);
    switch (column.type) {
    case ColumnType::Boolean:
        return bytes.u8(0) != 0;
    case ColumnType::Byte:
        return static_cast<std::int64_t>(bytes.u8(0));
    case ColumnType::Integer:
        return static_cast<std::int64_t>(static_cast<std::int16_t>(bytes.u16(0)));
    case ColumnType::Long:
        return static_cast<std::int64_t>(static_cast<std::int32_t>(bytes.u32(0)));
    case ColumnType::Currency:
        return Currency{static_cast<std::int64_t>(bytes.u64(0))};
    case ColumnType::Single:
        return floating<float>(stored);
    case ColumnType::Double:
        return floating<double>(stored);
    case ColumnType::Date:
        return DateTime{floating<double>(stored)};
    case ColumnType::Text:
    case ColumnType::Memo:
        return text.decode(stored);
    case ColumnType::Binary:
    case ColumnType::Ole:
    case ColumnType::FixedBinary:
        return Binary{std::string(stored)};
    case ColumnType::Guid: {
        Guid guid;
        for (std::size_t i = 0; i < guid.bytes.size(); ++i) {
            guid.bytes[i] = bytes.u8(i);
        }
        return guid;
    }
    case ColumnType::Numeric:
        return Numeric{numericDigits(stored, column.scale)};
    }
    return Null{};
}

std::string encodeValue(const TextCodec& text, const Column& column, const Value& value) {
    std::string bytes;
    switch (column.type) {
    case ColumnType::Boolean:
        if (const auto* flag = std::get_if<bool>(&value)) {
            return std::string(1, *flag ? '\1' : '\0');
        }
        return std::string(1, numberFor(column, value) != 0 ? '\1' : '\0');
    case ColumnType::Byte:
        append(bytes, 1, static_cast<std::uint64_t>(wholeFor(column, value, 0, 255)));
        return bytes;
    case ColumnType::Integer:
        append(bytes, 2, static_cast<std::uint64_t>(wholeFor(column, value, -32768, 32767)));
        return bytes;
    case ColumnType::Long:
        append(bytes, 4, static_cast<std::uint64_t>(wholeFor(column, value, -2147483648LL, 2147483647LL)));
        return bytes;
    case ColumnType::Currency:
        return encodeCurrency(column, value);
    case ColumnType::Single:
    case ColumnType::Double:
        return encodeFloating(column, value);
    case ColumnType::Date:
        return encodeDate(column, value);
    case ColumnType::Text:
    case ColumnType::Memo:
        return encodeText(text, column, value);
    case ColumnType::Binary:
    case ColumnType::Ole:
    case ColumnType::FixedBinary:
        return encodeBytes(column, value);
    case ColumnType::Guid:
        if (const auto* guid = std::get_if<Guid>(&value)) {
            return std::string(guid->bytes.begin(), guid->bytes.end());
        }
        wrongKind(column);
    case ColumnType::Numeric:
        return encodeNumeric(column, value);
    }
    rejected("the column \"" + column.name + "\" is of a type that cannot be written");
}

std::optional<double> asNumber(const Value& value) {
    if (const auto* flag = std::get_if<bool>(&value)) {
        return *flag ? -1 : 0;
    }
    if (const auto* whole = std::get_if<std::int64_t>(&value)) {
        return static_cast<double>(*whole);
    }
    if (const auto* currency = std::get_if<Currency>(&value)) {
        return static_cast<double>(currency->tenThousandths) / kCurrencyUnit;
    }
    if (const auto* narrow = std::get_if<float>(&value)) {
        return *narrow;
    }
    if (const auto* number = std::get_if<double>(&value)) {
        return *number;
    }
    if (const auto* date = std::get_if<DateTime>(&value)) {
        return date->days;
    }
    if (const auto* numeric = std::get_if<Numeric>(&value)) {
        double number = 0;
        std::from_chars(numeric->digits.data(), numeric->digits.data() + numeric->digits.size(), number);
        return number;
    }
    return std::nullopt;
}

bool sameValue(const Value& a, const Value& b) {
    const auto* left = std::get_if<Numeric>(&a);
    const auto* right = std::get_if<Numeric>(&b);
    if (left != nullptr && right != nullptr) {
        return withoutPadding(left->digits) == withoutPadding(right->digits);
    }
    if (a.index() == b.index()) {
        return a == b;
    }
    const auto numberA = asNumber(a);
    const auto numberB = asNumber(b);
    return numberA && numberB && *numberA == *numberB;
}

/// The magnitude is four dwords, the most significant first, each little-endian.
std::string numericDigits(std::string_view stored, unsigned scale) {
    const Bytes bytes(stored);
    std::array<std::uint32_t, 4> magnitude{};
    for (std::size_t i = 0; i < magnitude.size(); ++i) {
        magnitude[i] = bytes.u32(1 + 4 * i);
    }
    std::string digits;
    while (std::any_of(magnitude.begin(), magnitude.end(), [](std::uint32_t part) { return part != 0; }) ||
           digits.size() <= scale) {
        std::uint64_t rest = 0;
        for (auto& part : magnitude) {
            rest = rest << 32 | part;
            part = static_cast<std::uint32_t>(rest / 10);
            rest %= 10;
        }
        digits.push_back(static_cast<char>('0' + rest));
    }
    if (scale != 0) {
        digits.insert(scale, 1, '.');
    }
    const bool zero = digits.find_first_not_of("0.") == std::string::npos;
    if (bytes.u8(0) != 0 && !zero) {
        digits.push_back('-');
    }
    std::reverse(digits.begin(), digits.end());
    return digits;
}

std::string numericBytes(std::string_view digits, unsigned precision, unsigned scale) {
    const bool negative = digits.substr(0, 1) == "-";
    std::array<std::uint32_t, 4> magnitude{};
    std::size_t behindPoint = 0;
    std::size_t significant = 0;
    bool pointSeen = false;
    const auto push = [&](unsigned digit) {
        std::uint64_t carry = digit;
        for (std::size_t i = magnitude.size(); i-- > 0;) {
            carry += std::uint64_t{magnitude[i]} * 10;
            magnitude[i] = static_cast<std::uint32_t>(carry);
            carry >>= 32;
        }
        significant += significant != 0 || digit != 0 ? 1 : 0;
        behindPoint += pointSeen ? 1 : 0;
    };
    for (const char c : digits.substr(negative ? 1 : 0)) {
        if (c == '.') {
            pointSeen = true;
        } else if (pointSeen && behindPoint == scale && c != '0') {
            rejected("the number has more decimals than its column");
        } else if (!pointSeen || behindPoint < scale) {
            push(static_cast<unsigned>(c - '0'));
        }
    }
    pointSeen = true;
    while (behindPoint < scale) {
        push(0);
    }
    if (significant > std::max(precision, 1u)) {
        rejected("the number has more digits than its column");
    }
    std::string bytes(1, negative ? kNegative : '\0');
    for (const auto part : magnitude) {
        append(bytes, 4, part);
    }
    bytes.resize(kNumericSize);
    return bytes;
}

} // namespace drx9::jet
