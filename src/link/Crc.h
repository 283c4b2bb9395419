#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace drx9 {

/// The two check characters of a packet, in the order in which they are sent; each lies in 34..161.
using CrcBytes = std::array<std::uint8_t, 2>;

/// 14-bit CRC of the wire protocol over all of `bytes`: reflected, polynomial 0x2001, initial value 0x3FFF,
/// no final XOR; 34 is added to the low and to the high seven bits.
CrcBytes crcOf(std::string_view bytes);

/// CRC of a whole packet buffer: covers index 1 (the length byte) to the third-last byte. Both outputs are 0
/// when the byte at index 1 is 0. `packet` holds at least 3 bytes.
CrcBytes Comm_CRC(std::span<const std::uint8_t> packet);

/// The same over every character of a text (length character and command text), as the two CRC characters.
std::string Comm_CRCText(std::string_view text);

inline constexpr std::size_t kLongestCommand = 221; ///< bytes that a command's length character can tell

/// Frames a command: "!", length character (n + 34), the text, two CRC characters. One byte is one character;
/// what goes beyond kLongestCommand is left out.
std::string commandPacket(std::string_view text);

/// Frames a reply as the instrument does: "!", length character (data length + 36), status letter, data, two
/// CRC characters. (The length rule of replies differs by one from that of commands.) `data` has at most 219
/// bytes.
std::string replyPacket(char statusLetter, std::string_view data);

} // namespace drx9
