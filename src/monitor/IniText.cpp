#include "monitor/IniText.h"

#include "util/Text.h"

#include <algorithm>

namespace drx9 {

namespace {

constexpr std::string_view kBlanks = " \t\r";
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16Mark = "\xFF\xFE";

std::string_view withoutBlanks(std::string_view text) {
    const auto first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) {
        return text.substr(0, 0);
    }
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string_view withoutQuotes(std::string_view value) {
    const bool quoted =
        value.size() >= 2 && value.front() == value.back() && (value.front() == '"' || value.front() == '\'');
    return quoted ? value.substr(1, value.size() - 2) : value;
}

/// Name of the section that the line opens; nothing where it opens none.
std::optional<std::string_view> heading(std::string_view line) {
    line = withoutBlanks(line);
    const auto close = line.find(']');
    if (line.empty() || line.front() != '[' || close == std::string_view::npos) {
        return std::nullopt;
    }
    return withoutBlanks(line.substr(1, close - 1));
}

struct Entry {
    std::string_view key;
    std::string_view value; ///< with its quotes, without the blanks around it
};

std::optional<Entry> entry(std::string_view line) {
    const auto equals = line.find('=');
    const std::string_view key = withoutBlanks(line.substr(0, equals));
    if (equals == std::string_view::npos || key.empty() || key.front() == ';') {
        return std::nullopt;
    }
    return Entry{key, withoutBlanks(line.substr(equals + 1))};
}

bool startsWith(std::string_view bytes, std::string_view mark) {
    return bytes.substr(0, mark.size()) == mark;
}

/// A value as it can be in one line of UTF-8.
std::string oneLine(std::string_view value) {
    value = value.substr(0, value.find_first_of(std::string_view("\r\n\0", 3)));
    return isUtf8(value) ? std::string(value) : utf8FromAnsi(value);
}

} // namespace

IniText::IniText(std::string_view bytes) {
    if (startsWith(bytes, kUtf16Mark)) {
        encoding_ = Encoding::Utf16;
        text_ = utf8FromUtf16(bytes.substr(kUtf16Mark.size()));
        original_ = bytes;
    } else {
        mark_ = startsWith(bytes, kUtf8Mark);
        text_ = bytes.substr(mark_ ? kUtf8Mark.size() : 0);
        encoding_ = isUtf8(text_) ? Encoding::Utf8 : Encoding::Ansi;
    }
    splitLines();
}

std::string IniText::bytes() const {
    if (!original_.empty()) {
        return original_;
    }
    if (encoding_ == Encoding::Utf16) {
        return std::string(kUtf16Mark) + utf16FromUtf8(text_);
    }
    return std::string(mark_ ? kUtf8Mark : "") + text_;
}

std::optional<std::string> IniText::find(std::string_view section, std::string_view key) const {
    const auto range = findSection(section);
    const Line* const line = range ? findKey(*range, key) : nullptr;
    if (line == nullptr) {
        return std::nullopt;
    }
    return decoded(withoutQuotes(entry(content(*line))->value));
}

void IniText::set(std::string_view section, std::string_view key, std::string_view value) {
    const std::string text = oneLine(value);
    makeRoomFor(text);
    const auto range = findSection(section);
    const Line* const line = range ? findKey(*range, key) : nullptr;
    if (line != nullptr) {
        changeValue(*line, text);
        return;
    }
    const std::string added = std::string(key) + "=" + encoded(text) + lineBreak();
    if (!range) {
        insertLines(text_.size(), "[" + std::string(section) + "]" + lineBreak() + added);
        return;
    }
    std::size_t last = range->end - 1;
    while (last > range->heading && withoutBlanks(content(lines_[last])).empty()) {
        --last;
    }
    insertLines(lines_[last].next, added);
}

void IniText::removeSection(std::string_view section) {
    if (const auto range = findSection(section)) {
        replaceText(lines_[range->heading].begin, lines_[range->end - 1].next, "");
    }
}

void IniText::splitLines() {
    lines_.clear();
    for (std::size_t begin = 0; begin < text_.size();) {
        Line line{begin, std::min(text_.find('\n', begin), text_.size()), 0};
        line.next = std::min(line.end + 1, text_.size());
        if (line.next > line.end && line.end > begin && text_[line.end - 1] == '\r') {
            --line.end;
        }
        lines_.push_back(line);
        begin = line.next;
    }
}

std::string_view IniText::content(const Line& line) const {
    return std::string_view(text_).substr(line.begin, line.end - line.begin);
}

std::optional<IniText::Range> IniText::findSection(std::string_view section) const {
    const auto opens = [this](const Line& line) { return heading(content(line)).has_value(); };
    const auto first = std::find_if(lines_.begin(), lines_.end(), [&](const Line& line) {
        const auto name = heading(content(line));
        return name && equalNoCase(*name, section);
    });
    if (first == lines_.end()) {
        return std::nullopt;
    }
    const auto end = std::find_if(first + 1, lines_.end(), opens);
    return Range{static_cast<std::size_t>(first - lines_.begin()),
                 static_cast<std::size_t>(end - lines_.begin())};
}

const IniText::Line* IniText::findKey(const Range& range, std::string_view key) const {
    for (std::size_t i = range.heading + 1; i < range.end; ++i) {
        const auto found = entry(content(lines_[i]));
        if (found && equalNoCase(found->key, key)) {
            return &lines_[i];
        }
    }
    return nullptr;
}

std::string IniText::decoded(std::string_view value) const {
    return encoding_ == Encoding::Ansi ? utf8FromAnsi(value) : std::string(value);
}

std::string IniText::encoded(std::string_view value) const {
    return encoding_ == Encoding::Ansi ? ansiFromUtf8(value) : std::string(value);
}

void IniText::makeRoomFor(const std::string& value) {
    if (encoding_ == Encoding::Ansi && utf8FromAnsi(ansiFromUtf8(value)) != value) {
        text_ = utf8FromAnsi(text_);
        encoding_ = Encoding::Utf8;
        splitLines();
    }
}

std::string IniText::lineBreak() const {
    if (lines_.empty() || lines_.front().end == lines_.front().next) {
        return "\r\n";
    }
    return text_.substr(lines_.front().end, lines_.front().next - lines_.front().end);
}

void IniText::changeValue(const Line& line, const std::string& value) {
    const std::string_view written = entry(content(line))->value;
    if (decoded(withoutQuotes(written)) == value) {
        return;
    }
    const auto begin = written.empty() ? text_.find('=', line.begin) + 1
                                       : static_cast<std::size_t>(written.data() - text_.data());
    replaceText(begin, begin + written.size(), encoded(value));
}

/// Whole lines, each with its break, before the position, which begins a line or ends the text.
void IniText::insertLines(std::size_t at, std::string lines) {
    if (at > 0 && text_[at - 1] != '\n') {
        lines.insert(0, lineBreak());
    }
    replaceText(at, at, lines);
}

void IniText::replaceText(std::size_t begin, std::size_t end, std::string_view with) {
    text_.replace(begin, end - begin, with);
    original_.clear();
    splitLines();
}

} // namespace drx9
