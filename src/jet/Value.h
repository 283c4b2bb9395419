#pragma once

#include "jet/Definition.h"

#include <array>
#include <string>
#include <variant>

namespace drx9::jet {

struct Currency {
    std::int64_t tenThousandths = 0;
    bool operator==(const Currency&) const = default;
};

/// Days since 1899-12-30; the fraction is the time of day and counts away from zero before that day.
struct DateTime {
    double days = 0;
    bool operator==(const DateTime&) const = default;
};

struct Binary {
    std::string bytes;
    bool operator==(const Binary&) const = default;
};

/// The 16 bytes as they are stored.
struct Guid {
    std::array<std::uint8_t, 16> bytes{};
    bool operator==(const Guid&) const = default;
};

/// A decimal number: its digits with sign and point, "-12.5".
struct Numeric {
    std::string digits;
    bool operator==(const Numeric&) const = default;
};

struct Null {
    bool operator==(const Null&) const = default;
};

/// A column's value. Byte, integer and long are int64_t; texts are UTF-8.
using Value = std::variant<Null, bool, std::int64_t, Currency, float, double, DateTime, std::string, Binary,
                           Guid, Numeric>;

inline bool isNull(const Value& value) {
    return std::holds_alternative<Null>(value);
}

/// A stored value of the column; for memo and OLE the value itself, not its descriptor.
Value decodeValue(const TextCodec& text, const Column& column, std::string_view stored);

/// The bytes to store for a value that is not null. Numbers fit any numeric column whose range holds them; a
/// whole-number column takes a fraction rounded half to even, as Jet does. Throws JetError(Rejected) for a
/// value of another kind, out of the type's range, longer than the column, or outside the file's code page.
std::string encodeValue(const TextCodec& text, const Column& column, const Value& value);

/// The value as a number, for comparison; nothing for texts, bytes and null. Booleans are -1 and 0.
std::optional<double> asNumber(const Value& value);

/// Whether two values that are not null are equal: exactly where both are of one type or both whole, else as
/// numbers.
bool sameValue(const Value& a, const Value& b);

/// A numeric column's 17 stored bytes as digits, and back; `scale` = digits behind the point.
std::string numericDigits(std::string_view stored, unsigned scale);
std::string numericBytes(std::string_view digits, unsigned precision, unsigned scale);

} // namespace drx9::jet
