#include "link/Crc.h"

namespace drx9 {

namespace {
constexpr unsigned kInitial = 0x3FFF;
constexpr unsigned kPolynomial = 0x2001;
constexpr unsigned kOffset = 34; // lifts a seven-bit half above the sync character

unsigned step(unsigned crc, std::uint8_t byte) {
    crc ^= byte;
    for (int bit = 0; bit < 8; ++bit) {
        const bool low = (crc & 1U) != 0;
        crc >>= 1U;
        if (low) {
            crc ^= kPolynomial;
        }
    }
    return crc;
}

CrcBytes halves(unsigned crc) {
    return {static_cast<std::uint8_t>((crc & 0x7FU) + kOffset),
            static_cast<std::uint8_t>(((crc >> 7U) & 0x7FU) + kOffset)};
}

std::string framed(std::string_view covered) {
    const CrcBytes crc = crcOf(covered);
    std::string packet = "!";
    packet += covered;
    packet += static_cast<char>(crc[0]);
    packet += static_cast<char>(crc[1]);
    return packet;
}
} // namespace

CrcBytes crcOf(std::string_view bytes) {
    unsigned crc = kInitial;
    for (const char c : bytes) {
        crc = step(crc, static_cast<std::uint8_t>(c));
    }
    return halves(crc);
}

CrcBytes Comm_CRC(std::span<const std::uint8_t> packet) {
    if (packet[1] == 0) {
        return {0, 0};
    }
    unsigned crc = kInitial;
    for (const std::uint8_t byte : packet.subspan(1, packet.size() - 3)) {
        crc = step(crc, byte);
    }
    return halves(crc);
}

std::string Comm_CRCText(std::string_view text) {
    const CrcBytes crc = crcOf(text);
    return {static_cast<char>(crc[0]), static_cast<char>(crc[1])};
}

std::string commandPacket(std::string_view text) {
    const std::string_view fits = text.substr(0, kLongestCommand);
    std::string covered(1, static_cast<char>(fits.size() + 34));
    covered += fits;
    return framed(covered);
}

std::string replyPacket(char statusLetter, std::string_view data) {
    std::string covered(1, static_cast<char>(data.size() + 36));
    covered += statusLetter;
    covered += data;
    return framed(covered);
}

} // namespace drx9
