#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace drx9 {

/// The text of an INI file, for look-ups and for edits that leave every other byte as it was.
///
/// Section and key names are compared without case (ASCII letters). Of two equal names the first one counts,
/// and of two equal sections only the first is looked at. A line whose first character is ";" is a comment. A
/// line without "=" is kept and means nothing, and so is a "[" without "]". Blanks and tabs around
/// names and values do not count; one pair of quotes, single or double, around a value is taken off. Keys
/// before the first section belong to none and are never found.
///
/// The encoding is the file's own: UTF-16 with its byte-order mark, UTF-8 where the whole file is well-formed
/// UTF-8, Windows-1252 otherwise. Names and values are UTF-8 here. Any bytes can be taken in; what is no
/// character in a UTF-16 file becomes U+FFFD with the first change.
class IniText {
public:
    explicit IniText(std::string_view bytes = {});
    /// The file's bytes: those that were taken in, with what was changed.
    [[nodiscard]] std::string bytes() const;

    /// Nothing when there is no such key.
    [[nodiscard]] std::optional<std::string> find(std::string_view section, std::string_view key) const;
    /// Changes the value, or adds the key behind the section's last line that is not blank, or adds the
    /// section at the end. A value that reads the same already is left as it is written. Ends at the first
    /// line break or zero of `value`. New lines end as the file's first line does; CR LF where it has none. A
    /// value that Windows-1252 cannot hold turns such a file into UTF-8.
    void set(std::string_view section, std::string_view key, std::string_view value);
    /// Takes out the section with all its lines; no effect where there is none.
    void removeSection(std::string_view section);

private:
    enum class Encoding { Utf8, Ansi, Utf16 };

    /// One line; the offsets lie in text_.
    struct Line {
        std::size_t begin = 0;
        std::size_t end = 0;  ///< behind the last character, before the line break
        std::size_t next = 0; ///< behind the line break
    };
    /// The lines of a section, without its heading.
    struct Range {
        std::size_t heading = 0; ///< index into lines_
        std::size_t end = 0;     ///< index behind the last line
    };

    void splitLines();
    [[nodiscard]] std::string_view content(const Line& line) const;
    [[nodiscard]] std::optional<Range> findSection(std::string_view section) const;
    [[nodiscard]] const Line* findKey(const Range& range, std::string_view key) const;
    [[nodiscard]] std::string decoded(std::string_view value) const;
    [[nodiscard]] std::string encoded(std::string_view value) const;
    void makeRoomFor(const std::string& value);
    [[nodiscard]] std::string lineBreak() const;
    void changeValue(const Line& line, const std::string& value);
    void insertLines(std::size_t at, std::string lines);
    void replaceText(std::size_t begin, std::size_t end, std::string_view with);

    Encoding encoding_ = Encoding::Utf8;
    bool mark_ = false; ///< a UTF-8 byte-order mark is before the text
    std::string text_;  ///< without the mark; UTF-16 is held as UTF-8
    std::vector<Line> lines_;
    std::string original_; ///< bytes of a UTF-16 file, until the first change
};

} // namespace drx9
