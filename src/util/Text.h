#pragma once

#include "util/Utf.h"

#include <initializer_list>
#include <string>
#include <string_view>

namespace drx9 {

std::string trimmed(std::string_view text); ///< without leading and trailing blanks (0x20 only)
/// `text` with each "{}" replaced by the next value; what a value holds stays as it is. A "{}" without a
/// value becomes nothing.
std::string filled(std::string_view text, std::initializer_list<std::string_view> values);
std::string upperAscii(std::string_view text);
/// Windows-1252 letters in upper case, accented ones too; "ß" has none and stays.
std::string upperAnsi(std::string_view bytes);
bool equalNoCase(std::string_view a, std::string_view b); ///< ASCII letters
/// Bytes of Windows-1252 to UTF-8 and back; characters that it does not hold become "?". The five unassigned
/// codes map to the control characters of the same number.
std::string utf8FromAnsi(std::string_view bytes);
std::string ansiFromUtf8(std::string_view text);
/// UTF-16 bytes, low byte first and without a byte-order mark, to UTF-8 and back; see util/Utf.h for what is
/// no character.
std::string utf8FromUtf16(std::string_view bytes);
std::string utf16FromUtf8(std::string_view text);

} // namespace drx9
