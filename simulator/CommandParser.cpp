#include "simulator/CommandParser.h"

#include "link/Crc.h"

namespace drx9::sim {

namespace {
constexpr char kSync = '!';
constexpr std::size_t kLengthOffset = 34;
constexpr std::size_t kOverhead = 4; // sync, length, two check characters

/// Characters of text that a length byte announces; 0 when no command is that short.
std::size_t textLength(char lengthByte) {
    const std::size_t length = static_cast<unsigned char>(lengthByte);
    return length > kLengthOffset ? length - kLengthOffset : 0;
}
} // namespace

bool CommandParser::commandEndsHere(std::size_t sync) const {
    if (buffer_.size() < sync + kOverhead) {
        return false;
    }
    const std::size_t length = textLength(buffer_[sync + 1]);
    return length > 0 && buffer_.size() == sync + length + kOverhead &&
           buffer_.compare(sync, std::string::npos, commandPacket(buffer_.substr(sync + 2, length))) == 0;
}

bool CommandParser::dropDeadPackets() {
    bool complete = false;
    while (buffer_.size() > 1) {
        const std::size_t length = textLength(buffer_[1]);
        if (length > 0 && buffer_.size() < length + kOverhead) {
            break;
        }
        complete = complete || length > 0;
        buffer_.erase(0, std::min(buffer_.find(kSync, 1), buffer_.size()));
    }
    return complete;
}

CommandParser::Outcome CommandParser::feed(char byte) {
    if (buffer_.empty() && byte != kSync) {
        return Outcome::Nothing;
    }
    buffer_ += byte;
    for (std::size_t sync = 0; sync != std::string::npos; sync = buffer_.find(kSync, sync + 1)) {
        if (commandEndsHere(sync)) {
            text_ = buffer_.substr(sync + 2, buffer_.size() - sync - kOverhead);
            buffer_.clear();
            return Outcome::Command;
        }
    }
    return dropDeadPackets() ? Outcome::BadCrc : Outcome::Nothing;
}

} // namespace drx9::sim
