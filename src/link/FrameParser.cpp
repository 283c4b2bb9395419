#include "link/FrameParser.h"

#include "link/Crc.h"

#include <algorithm>

namespace drx9 {

namespace {
constexpr std::uint8_t kSync = '!';
constexpr std::uint8_t kShortestLength =
    34;                                     // a packet needs at least three bytes: two slots and the last one
constexpr std::uint8_t kIgnoredLengths = 2; // up to here the next byte is taken as the length instead
constexpr std::size_t kLengthToSize = 31;   // length byte minus this: bytes of the packet in all
constexpr std::size_t kDataStart = 3;       // in the text, behind sync, length and status letter
constexpr std::size_t kFrameSize = 5;       // those three and the two check characters
} // namespace

std::optional<FrameParser::Reply> FrameParser::push(std::uint8_t byte) {
    if (byte == 0) {
        return std::nullopt;
    }
    if (byte == kSync) {
        index_ = 1;
        text_.assign(1, static_cast<char>(kSync));
        return std::nullopt;
    }
    if (text_.size() < kTextLimit) {
        text_ += static_cast<char>(byte);
    }
    if (index_ == 0) {
        return std::nullopt;
    }
    if (index_ == 1) {
        takeLength(byte);
        return std::nullopt;
    }
    const auto slot = static_cast<std::size_t>(index_);
    bytes_[slot] = byte;
    if (slot + 1 < bytes_.size()) {
        ++index_;
        return std::nullopt;
    }
    return complete();
}

void FrameParser::takeLength(std::uint8_t length) {
    if (length <= kIgnoredLengths) {
        return;
    }
    if (length < kShortestLength) {
        index_ = 0;
        return;
    }
    bytes_.assign(length - kLengthToSize, 0);
    bytes_[0] = kSync;
    bytes_[1] = length;
    index_ = 2;
}

FrameParser::Reply FrameParser::complete() const {
    const CrcBytes crc = Comm_CRC(bytes_);
    Reply reply;
    reply.crcOk = crc[0] == bytes_[bytes_.size() - 2] && crc[1] == bytes_.back();
    if (reply.crcOk) {
        reply.statusLetter = static_cast<char>(bytes_[2]);
        // Out of the text, not out of the slots (kept): length bytes that were passed over are there too.
        const std::size_t start = std::min(kDataStart, text_.size());
        reply.data = text_.substr(start, text_.size() - std::min(kFrameSize, text_.size()));
    }
    return reply;
}

} // namespace drx9
