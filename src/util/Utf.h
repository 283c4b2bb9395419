#pragma once

#include <string>
#include <string_view>

namespace drx9 {

inline constexpr char32_t kReplacement = 0xFFFD; ///< stands for what is no character
inline constexpr char32_t kNoCharacter = 0xFFFFFFFF;

/// Takes the character at `at`, which moves behind it; by one byte only, and with kNoCharacter, where no
/// whole one is there (a cut or overlong form, a surrogate, a code beyond 10FFFF). `at` lies within the text.
char32_t takeUtf8(std::string_view utf8, std::size_t& at);
/// True for a byte of UTF-8 that does not begin a character.
constexpr bool continuesCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}
/// `code` is a character, and no surrogate.
void appendUtf8(std::string& out, char32_t code);
/// True when the bytes are well-formed UTF-8 throughout.
bool isUtf8(std::string_view bytes);

/// UTF-8 to UTF-16 and back. Bytes that are no UTF-8, and halves of surrogate pairs, become U+FFFD.
std::u16string toUtf16(std::string_view utf8);
std::string toUtf8(std::u16string_view text);

/// UTF-16 as files hold it, low byte first and without a byte-order mark. An odd last byte is dropped.
std::u16string utf16FromBytes(std::string_view bytes);
std::string bytesFromUtf16(std::u16string_view text);

} // namespace drx9
