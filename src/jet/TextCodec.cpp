#include "jet/TextCodec.h"

#include "jet/CodePages.h"

#include <cstdio>

namespace drx9::jet {

namespace {

constexpr std::string_view kCompressed = "\xFF\xFE";
constexpr std::size_t kShortestCompressed = 3;   ///< characters
constexpr std::size_t kLongestCompressed = 4096; ///< bytes; longer memos are stored plain

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

char16_t TextCodec::characterOf(unsigned char byte) const {
    if (byte < 0x80) {
        return byte;
    }
    const auto upper = upperHalf(codePage_);
    return upper.empty() ? upperHalf(1252)[byte - 0x80u] : upper[byte - 0x80u];
}

std::u16string TextCodec::decode16(std::string_view stored) const {
    if (generation_ == Generation::Jet4) {
        return stored.substr(0, 2) == kCompressed ? expand(stored.substr(2)) : utf16FromBytes(stored);
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
    return generation_ == Generation::Jet4 ? toUtf8(utf16FromBytes(stored)) : decode(stored);
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
    if (!compress || !compressible(text)) {
        return bytesFromUtf16(text);
    }
    std::string bytes(kCompressed);
    for (const char16_t c : text) {
        bytes.push_back(static_cast<char>(c));
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
