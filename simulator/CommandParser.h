#pragma once

#include <string>

namespace drx9::sim {

/// Finds command packets in a stream of bytes. Every "!" may begin a packet: a packet that was cut off,
/// noise, or a "!" inside a command's text never hides a good packet that follows. Holds at most 225 bytes.
class CommandParser {
public:
    enum class Outcome {
        Nothing, ///< more bytes are needed
        Command, ///< a packet with good check characters ended with this byte; see text()
        BadCrc   ///< the oldest packet is complete and its check characters are wrong
    };

    Outcome feed(char byte);
    /// The text of the last good command.
    const std::string& text() const { return text_; }

private:
    bool commandEndsHere(std::size_t sync) const;
    bool dropDeadPackets();

    std::string buffer_; ///< empty, or begins with "!"
    std::string text_;
};

} // namespace drx9::sim
