#include "jet/TextCodec.h"

#include "jet/CodePages.h"

#include <cstdio>

namespace drx9::jet {

namespace {

constexpr char16_t kReplacement = 0xFFFD;
constexpr std::string_view kCompressed = "\xFF\xFE";
constexpr std::size_t kShortestCompressed = 3;   ///< characters
constexpr std::size_t kLongestCompressed = 4096; ///< bytes; longer memos are stored plain

/// One code point of UTF-8 from `at` on, which moves behind it; at least one byte is always taken.
char32_t nextCodePoint(std::string_view utf8, std::size_t& at) {
    const auto first = static_cast<unsigned char>(utf8[at++]);
    if (first < 0x80) {
        return first;
    }
    const std::size_t more = first >= 0xF0 && first < 0xF5   ? 3
                             : first >= 0xE0 && first < 0xF0 ? 2
                             : first >= 0xC2 && first < 0xE0 ? 1
                                                             : 0;
    if (more == 0 || utf8.size() - at < more) {
        return kReplacement;
    }
    char32_t value = first & (0x3Fu >> more);
    for (std::size_t i = 0; i < more; ++i) {
        const auto byte = static_cast<unsigned char>(utf8[at + i]);
        if ((byte & 0xC0) != 0x80) {
            return kReplacement;
        }
        value = value << 6 | (byte & 0x3Fu);
    }
    constexpr char32_t kSmallest[] = {0, 0x80, 0x800, 0x10000};
    if (value < kSmallest[more] || value > 0x10FFFF || (value >= 0xD800 && value < 0xE000)) {
        return kReplacement;
    }
    at += more;
    return value;
}

void appendUtf8(std::string& out, char32_t c) {
    if (c < 0x80) {
        out.push_back(static_cast<char>(c));
        return;
    }
    const int more = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
    constexpr unsigned kLead[] = {0, 0xC0, 0xE0, 0xF0};
    out.push_back(static_cast<char>(kLead[more] | c >> (6 * more)));
    for (int i = more; i-- > 0;) {
        out.push_back(static_cast<char>(0x80 | (c >> (6 * i) & 0x3F)));
    }
}

bool isHigh(char16_t c) {
    return c >= 0xD800 && c < 0xDC00;
}

bool isLow(char16_t c) {
    return c >= 0xDC00 && c < 0xE000;
}

std::u16string fromUtf16Bytes(std::string_view bytes) {
    std::u16string text;
    text.reserve(bytes.size() / 2);
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        text.push_back(static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) |
                                             static_cast<unsigned char>(bytes[i + 1]) << 8));
    }
    return text;
}

/// Compressed text behind its mark: one byte a character, two after every other 00.
std::u16string expand(std::string_view bytes) {
    std::u16string text;
    bool wide = false;
    for (std::size_t i = 0; i < bytes.size();) {
        const auto byte = static_cast<unsigned char>(bytes[i++]);
        if (byte == 0) {
            wide = !wide;
        } else if (!wide) {
            text.push_back(byte);
        } else if (i < bytes.size()) {
            text.push_back(static_cast<char16_t>(byte | static_cast<unsigned char>(bytes[i++]) << 8));
        }
    }
    return text;
}

bool compressible(std::u16string_view text) {
    if (text.size() < kShortestCompressed || text.size() + kCompressed.size() > kLongestCompressed) {
        return false;
    }
    for (const auto c : text) {
        if (c == 0 || c > 0xFF) {
            return false;
        }
    }
    return true;
}

char16_t foldCase(char16_t c) {
    const bool upper = (c >= 'A' && c <= 'Z') || (c >= 0xC0 && c <= 0xDE && c != 0xD7) ||
                       (c >= 0x391 && c <= 0x3A9) || (c >= 0x410 && c <= 0x42F);
    return upper ? static_cast<char16_t>(c + 0x20) : c;
}

std::u16string folded(std::string_view name) {
    auto text = toUtf16(name);
    for (auto& c : text) {
        c = foldCase(c);
    }
    return text;
}

} // namespace

std::u16string toUtf16(std::string_view utf8) {
    std::u16string text;
    text.reserve(utf8.size());
    for (std::size_t at = 0; at < utf8.size();) {
        const char32_t c = nextCodePoint(utf8, at);
        if (c < 0x10000) {
            text.push_back(static_cast<char16_t>(c));
        } else {
            text.push_back(static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)));
            text.push_back(static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
        }
    }
    return text;
}

std::string toUtf8(std::u16string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        if (isHigh(c) && i + 1 < text.size() && isLow(text[i + 1])) {
            appendUtf8(out, 0x10000 + ((c - 0xD800u) << 10) + (text[++i] - 0xDC00u));
        } else {
            appendUtf8(out, isHigh(c) || isLow(c) ? kReplacement : c);
        }
    }
    return out;
}

char16_t TextCodec::characterOf(unsigned char byte) const {
    if (byte < 0x80) {
        return byte;
    }
    const auto upper = upperHalf(codePage_);
    return upper.empty() ? upperHalf(1252)[byte - 0x80u] : upper[byte - 0x80u];
}

std::u16string TextCodec::decode16(std::string_view stored) const {
    if (generation_ == Generation::Jet4) {
        return stored.substr(0, 2) == kCompressed ? expand(stored.substr(2)) : fromUtf16Bytes(stored);
    }
    std::u16string text;
    text.reserve(stored.size());
    for (const char byte : stored) {
        text.push_back(characterOf(static_cast<unsigned char>(byte)));
    }
    return text;
}

std::string TextCodec::decode(std::string_view stored) const {
    return toUtf8(decode16(stored));
}

std::string TextCodec::decodeName(std::string_view stored) const {
    return generation_ == Generation::Jet4 ? toUtf8(fromUtf16Bytes(stored)) : decode(stored);
}

std::string TextCodec::encodeBytes(std::u16string_view text) const {
    const auto upper = upperHalf(codePage_);
    std::string bytes;
    for (const char16_t c : text) {
        const auto at = c < 0x80 ? c : upper.find(c);
        if (at == std::u16string_view::npos) {
            char code[16];
            std::snprintf(code, sizeof code, "U+%04X", static_cast<unsigned>(c));
            rejected("the file's code page " + std::to_string(codePage_) + " has no character " + code);
        }
        bytes.push_back(static_cast<char>(c < 0x80 ? c : at + 0x80));
    }
    return bytes;
}

std::string TextCodec::encode(std::string_view utf8, bool compress) const {
    const auto text = toUtf16(utf8);
    if (generation_ == Generation::Jet3) {
        return encodeBytes(text);
    }
    std::string bytes;
    if (compress && compressible(text)) {
        bytes = kCompressed;
        for (const char16_t c : text) {
            bytes.push_back(static_cast<char>(c));
        }
        return bytes;
    }
    for (const char16_t c : text) {
        append(bytes, 2, c);
    }
    return bytes;
}

bool sameName(std::string_view a, std::string_view b) {
    const auto plain = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
    std::size_t same = 0;
    for (; same < std::min(a.size(), b.size()) && plain(a[same]) && plain(b[same]); ++same) {
        if (foldCase(static_cast<char16_t>(a[same])) != foldCase(static_cast<char16_t>(b[same]))) {
            return false;
        }
    }
    return folded(a.substr(same)) == folded(b.substr(same));
}

bool nameLess(std::string_view a, std::string_view b) {
    return folded(a) < folded(b);
}

} // namespace drx9::jet
