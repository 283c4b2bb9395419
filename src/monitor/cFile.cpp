#include "monitor/cFile.h"

#include "platform/AtomicReplace.h"
#include "util/Numbers.h"
#include "util/Text.h"
#include "util/Utf.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace drx9 {

namespace {

constexpr std::int32_t kBufferCharacters = 253; ///< a buffer of 254 less its closing zero
constexpr int kSingleDigits = 7;                ///< significant digits in the text of a single

bool startsCharacter(char byte) {
    return !continuesCharacter(byte);
}

std::int32_t characters(std::string_view text) {
    return static_cast<std::int32_t>(std::count_if(text.begin(), text.end(), startsCharacter));
}

std::string cut(std::string_view text, std::int32_t count) {
    const auto end =
        std::find_if(text.begin(), text.end(), [&](char c) { return startsCharacter(c) && --count < 0; });
    return {text.begin(), end};
}

std::string withoutTrailingBlanks(std::string_view text) {
    return std::string(text.substr(0, text.find_last_not_of(' ') + 1));
}

std::string singleText(float value) {
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general,
                                   kSingleDigits);
    return {text.data(), end.ptr};
}

int digitValue(char c, int base) {
    const int value = c >= '0' && c <= '9'   ? c - '0'
                      : c >= 'a' && c <= 'f' ? c - 'a' + 10
                      : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                             : base;
    return value < base ? value : -1;
}

/// Whole number at the start of a text, decimal or "0x" hexadecimal, modulo 2^32.
std::uint32_t leadingInteger(std::string_view text) {
    std::size_t at = std::min(text.find_first_not_of(" \t"), text.size());
    const bool negative = at < text.size() && text[at] == '-';
    at += at < text.size() && (text[at] == '-' || text[at] == '+') ? 1 : 0;
    const std::string_view prefix = text.substr(at, 2);
    const int base = prefix == "0x" || prefix == "0X" ? 16 : 10;
    at += base == 16 ? 2 : 0;
    std::uint32_t value = 0;
    for (; at < text.size() && digitValue(text[at], base) >= 0; ++at) {
        value =
            value * static_cast<std::uint32_t>(base) + static_cast<std::uint32_t>(digitValue(text[at], base));
    }
    return negative ? 0U - value : value;
}

std::string fieldOf(const std::string& text, std::int16_t field) {
    std::size_t begin = 0;
    for (std::int16_t i = 1; i < field; ++i) {
        const std::size_t comma = text.find(',', begin);
        if (comma == std::string::npos) {
            return {};
        }
        begin = comma + 1;
    }
    return text.substr(begin, text.find(',', begin) - begin);
}

} // namespace

float cFile::ReadIniSingle(std::string_view section, std::string_view key, float fallback) {
    const std::string text = profileText(section, key, singleText(fallback));
    return text.empty() ? fallback : static_cast<float>(Val(text));
}

std::int16_t cFile::ReadIniInt(std::string_view section, std::string_view key, std::int16_t fallback) {
    const std::string text = find(section, key).value_or("");
    lastResult_ = text.empty() ? fallback : static_cast<std::int32_t>(leadingInteger(text));
    return static_cast<std::int16_t>(lastResult_);
}

bool cFile::ReadIniBool(std::string_view section, std::string_view key, std::string_view fallback) {
    // Any other text is false as well, so the words for false need no test of their own.
    static constexpr std::array<std::string_view, 4> words = {"TRUE", "YES", "ON", "1"};
    const std::string text = upperAscii(ReadIniStr(section, key, fallback, 0));
    return std::find(words.begin(), words.end(), text) != words.end();
}

std::string cFile::ReadIniStr(std::string_view section, std::string_view key, std::string_view fallback,
                              std::int16_t field) {
    std::string text = profileText(section, key, fallback);
    text.erase(std::min(text.find('\0'), text.size()));
    if (text.empty()) {
        text = fallback;
    }
    return field == 0 ? text : fieldOf(text, field);
}

std::string cFile::profileText(std::string_view section, std::string_view key, std::string_view fallback) {
    const auto found = find(section, key);
    std::string text = cut(found ? *found : withoutTrailingBlanks(fallback), kBufferCharacters);
    lastResult_ = characters(text);
    return text;
}

std::optional<std::string> cFile::find(std::string_view section, std::string_view key) const {
    if (pending_) {
        return pending_->find(section, key);
    }
    std::string bytes;
    if (fileName_.empty() || !files_.read(fileName_, bytes).ok()) {
        return std::nullopt;
    }
    return IniText(bytes).find(section, key);
}

std::int16_t cFile::ClearIniSection(std::string_view section) {
    return edit([&](IniText& text) { text.removeSection(section); });
}

std::int16_t cFile::WriteIniStr(std::string_view section, std::string_view key, std::string_view value) {
    return edit([&](IniText& text) { text.set(section, key, value); });
}

std::int16_t cFile::edit(const std::function<void(IniText&)>& change) {
    if (pending_) {
        change(*pending_);
        lastResult_ = 1;
        return 1;
    }
    lastResult_ = 0;
    if (!fileName_.empty() && beginWrites(fileName_)) {
        change(*pending_);
        lastResult_ = commitWrites() ? 1 : 0;
    }
    return static_cast<std::int16_t>(lastResult_);
}

void cFile::setFileName(const std::string& path) {
    fileName_ = files_.exists(path) ? path : std::string();
}

bool cFile::beginWrites(const std::string& path) {
    fileName_ = path;
    before_.clear();
    const FileStatus status = files_.read(path, before_);
    writeFailure_ = status.notFound() ? std::string() : status.reason();
    if (!writeFailure_.empty()) {
        return false;
    }
    pending_.emplace(before_);
    return true;
}

bool cFile::commitWrites() {
    const std::string bytes = pending_ ? pending_->bytes() : before_;
    pending_.reset();
    writeFailure_.clear();
    if (bytes != before_) {
        writeFailure_ = replaceFile(files_, fileName_, bytes).reason();
    }
    return writeFailure_.empty();
}

} // namespace drx9
