#include "util/Text.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace drx9 {

namespace {

/// Characters of the codes 0x80..0x9F; all others are their own code.
constexpr std::array<char16_t, 32> kHighControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

constexpr char32_t kInvalid = 0xFFFFFFFF;
constexpr char32_t kReplacement = 0xFFFD;

char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

char32_t fromAnsi(std::uint8_t byte) {
    return byte >= 0x80 && byte < 0xA0 ? kHighControls[byte - 0x80U] : byte;
}

void appendUtf8(std::string& out, char32_t code) {
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0 | (code >> 6));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        if (code < 0x10000) {
            out += static_cast<char>(0xE0 | (code >> 12));
        } else {
            out += static_cast<char>(0xF0 | (code >> 18));
            out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
        }
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    }
}

std::size_t sequenceLength(std::uint8_t lead) {
    if (lead < 0x80) {
        return 1;
    }
    if (lead >= 0xC2 && lead < 0xE0) {
        return 2;
    }
    if (lead >= 0xE0 && lead < 0xF0) {
        return 3;
    }
    return lead >= 0xF0 && lead < 0xF5 ? 4 : 0;
}

bool isScalar(char32_t code, std::size_t length) {
    constexpr std::array<char32_t, 5> least = {0, 0, 0x80, 0x800, 0x10000};
    return code >= least[length] && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
}

/// Takes the character at `at`; moves on by one byte only, and gives kInvalid, where no whole one stands.
char32_t takeUtf8(std::string_view text, std::size_t& at) {
    const auto lead = static_cast<std::uint8_t>(text[at]);
    const std::size_t length = sequenceLength(lead);
    if (length <= 1 || at + length > text.size()) {
        ++at;
        return length == 1 ? lead : kInvalid;
    }
    char32_t code = lead & (0xFFU >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        const auto byte = static_cast<std::uint8_t>(text[at + i]);
        if ((byte & 0xC0U) != 0x80) {
            ++at;
            return kInvalid;
        }
        code = (code << 6) | (byte & 0x3FU);
    }
    if (!isScalar(code, length)) {
        ++at;
        return kInvalid;
    }
    at += length;
    return code;
}

char toAnsi(char32_t code) {
    if (code < 0x80 || (code >= 0xA0 && code < 0x100)) {
        return static_cast<char>(code);
    }
    const auto* const found = std::find(kHighControls.begin(), kHighControls.end(), code);
    return found == kHighControls.end() ? '?' : static_cast<char>(0x80 + (found - kHighControls.begin()));
}

bool isHighSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}
bool isLowSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

char32_t unitAt(std::string_view bytes, std::size_t at) {
    const auto low = static_cast<std::uint8_t>(bytes[at]);
    const auto high = static_cast<std::uint8_t>(bytes[at + 1]);
    return static_cast<char32_t>(high << 8 | low);
}

char32_t takeUtf16(std::string_view bytes, std::size_t& at) {
    const char32_t unit = unitAt(bytes, at);
    at += 2;
    if (!isHighSurrogate(unit)) {
        return isLowSurrogate(unit) ? kReplacement : unit;
    }
    if (at + 1 >= bytes.size() || !isLowSurrogate(unitAt(bytes, at))) {
        return kReplacement;
    }
    const char32_t low = unitAt(bytes, at);
    at += 2;
    return 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
}

void appendUnit(std::string& out, char32_t unit) {
    out += static_cast<char>(unit & 0xFF);
    out += static_cast<char>(unit >> 8);
}

} // namespace

std::string trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) {
        return {};
    }
    return std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

std::string upperAscii(std::string_view text) {
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(), upper);
    return out;
}

bool equalNoCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return upper(x) == upper(y); });
}

std::string utf8FromAnsi(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size());
    for (const char byte : bytes) {
        appendUtf8(out, fromAnsi(static_cast<std::uint8_t>(byte)));
    }
    return out;
}

std::string ansiFromUtf8(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        out += toAnsi(takeUtf8(text, at));
    }
    return out;
}

bool isUtf8(std::string_view bytes) {
    for (std::size_t at = 0; at < bytes.size();) {
        if (takeUtf8(bytes, at) == kInvalid) {
            return false;
        }
    }
    return true;
}

std::string utf8FromUtf16(std::string_view bytes) {
    std::string out;
    for (std::size_t at = 0; at + 1 < bytes.size();) {
        appendUtf8(out, takeUtf16(bytes, at));
    }
    return out;
}

std::string utf16FromUtf8(std::string_view text) {
    std::string out;
    for (std::size_t at = 0; at < text.size();) {
        const char32_t code = takeUtf8(text, at);
        if (code == kInvalid) {
            appendUnit(out, kReplacement);
        } else if (code < 0x10000) {
            appendUnit(out, code);
        } else {
            appendUnit(out, 0xD800 + ((code - 0x10000) >> 10));
            appendUnit(out, 0xDC00 + ((code - 0x10000) & 0x3FF));
        }
    }
    return out;
}

} // namespace drx9
