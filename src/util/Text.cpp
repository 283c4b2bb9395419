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

char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

char32_t fromAnsi(std::uint8_t byte) {
    return byte >= 0x80 && byte < 0xA0 ? kHighControls[byte - 0x80U] : byte;
}

char toAnsi(char32_t code) {
    if (code < 0x80 || (code >= 0xA0 && code < 0x100)) {
        return static_cast<char>(code);
    }
    const auto* const found = std::find(kHighControls.begin(), kHighControls.end(), code);
    return found == kHighControls.end() ? '?' : static_cast<char>(0x80 + (found - kHighControls.begin()));
}

} // namespace

std::string trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) {
        return {};
    }
    return std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

std::string filled(std::string_view text, std::initializer_list<std::string_view> values) {
    constexpr std::string_view kPlace = "{}";
    std::string out;
    const auto* value = values.begin();
    for (std::size_t at = text.find(kPlace); at != std::string_view::npos; at = text.find(kPlace)) {
        out += text.substr(0, at);
        if (value != values.end()) {
            out += *value++;
        }
        text.remove_prefix(at + kPlace.size());
    }
    return out.append(text);
}

std::string upperAscii(std::string_view text) {
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(), upper);
    return out;
}

std::string upperAnsi(std::string_view bytes) {
    std::string out(bytes);
    std::transform(out.begin(), out.end(), out.begin(), [](char c) {
        const auto code = static_cast<unsigned char>(c);
        switch (code) {
        case 0x9A: // the three whose upper case is sixteen before them, and y with two dots
        case 0x9C:
        case 0x9E:
            return static_cast<char>(code - 0x10);
        case 0xFF:
            return static_cast<char>(0x9F);
        default:
            return code >= 0xE0 && code != 0xF7 ? static_cast<char>(code - 0x20) : upper(c);
        }
    });
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

std::string utf8FromUtf16(std::string_view bytes) {
    return toUtf8(utf16FromBytes(bytes));
}

std::string utf16FromUtf8(std::string_view text) {
    return bytesFromUtf16(toUtf16(text));
}

} // namespace drx9
