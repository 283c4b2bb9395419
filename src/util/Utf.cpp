#include "util/Utf.h"

#include <array>
#include <cstdint>

namespace drx9 {

namespace {

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

bool isHigh(char16_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}

bool isLow(char16_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

void appendUtf16(std::u16string& out, char32_t code) {
    if (code < 0x10000) {
        out.push_back(static_cast<char16_t>(code));
        return;
    }
    out.push_back(static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10)));
    out.push_back(static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF)));
}

} // namespace

char32_t takeUtf8(std::string_view utf8, std::size_t& at) {
    const auto lead = static_cast<std::uint8_t>(utf8[at]);
    const std::size_t length = sequenceLength(lead);
    if (length <= 1 || at + length > utf8.size()) {
        ++at;
        return length == 1 ? lead : kNoCharacter;
    }
    char32_t code = lead & (0xFFU >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        const auto byte = static_cast<std::uint8_t>(utf8[at + i]);
        if ((byte & 0xC0U) != 0x80) {
            ++at;
            return kNoCharacter;
        }
        code = (code << 6) | (byte & 0x3FU);
    }
    if (!isScalar(code, length)) {
        ++at;
        return kNoCharacter;
    }
    at += length;
    return code;
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

bool isUtf8(std::string_view bytes) {
    for (std::size_t at = 0; at < bytes.size();) {
        if (takeUtf8(bytes, at) == kNoCharacter) {
            return false;
        }
    }
    return true;
}

std::u16string toUtf16(std::string_view utf8) {
    std::u16string text;
    text.reserve(utf8.size());
    for (std::size_t at = 0; at < utf8.size();) {
        const char32_t code = takeUtf8(utf8, at);
        appendUtf16(text, code == kNoCharacter ? kReplacement : code);
    }
    return text;
}

std::string toUtf8(std::u16string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        if (isHigh(unit) && i + 1 < text.size() && isLow(text[i + 1])) {
            appendUtf8(out, 0x10000 + ((unit - 0xD800U) << 10) + (text[++i] - 0xDC00U));
        } else {
            appendUtf8(out, isHigh(unit) || isLow(unit) ? kReplacement : unit);
        }
    }
    return out;
}

std::u16string utf16FromBytes(std::string_view bytes) {
    std::u16string text;
    text.reserve(bytes.size() / 2);
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
        const unsigned low = static_cast<std::uint8_t>(bytes[at]);
        const unsigned high = static_cast<std::uint8_t>(bytes[at + 1]);
        text.push_back(static_cast<char16_t>(high << 8 | low));
    }
    return text;
}

std::string bytesFromUtf16(std::u16string_view text) {
    std::string bytes;
    bytes.reserve(text.size() * 2);
    for (const char16_t unit : text) {
        bytes.push_back(static_cast<char>(unit & 0xFF));
        bytes.push_back(static_cast<char>(unit >> 8));
    }
    return bytes;
}

} // namespace drx9
