#include "simulator/Line.h"

#include <algorithm>

namespace drx9::sim {

namespace {
constexpr double kBitsPerByte = 10;
constexpr std::size_t kHandful = 8; // how many bytes a UART gathers before it hands them over
} // namespace

Line::Line(Responder& responder, std::string name, unsigned baud, double openedAt)
    : responder_(responder)
    , name_(std::move(name))
    , byteSeconds_(baud > 0 ? kBitsPerByte / baud : 0)
    , openedAt_(openedAt) {}

void Line::receive(std::string_view bytes, double now) {
    for (const char byte : bytes) {
        receiverFree_ = std::max(receiverFree_, now) + byteSeconds_;
        incoming_.push_back({receiverFree_, std::string(1, byte)});
    }
    feed(now);
}

void Line::feed(double now) {
    while (!incoming_.empty() && incoming_.front().due <= now) {
        const Timed byte = std::move(incoming_.front());
        incoming_.pop_front();
        switch (parser_.feed(byte.bytes.front())) {
        case CommandParser::Outcome::Nothing:
            break;
        case CommandParser::Outcome::Command:
            send(responder_.respond(parser_.text(), name_, byte.due), byte.due);
            break;
        case CommandParser::Outcome::BadCrc:
            responder_.badPacket(name_, byte.due);
            break;
        }
    }
}

void Line::send(const std::vector<Piece>& pieces, double now) {
    for (const Piece& piece : pieces) {
        senderFree_ = std::max(senderFree_, now) + piece.delay;
        const std::size_t step = byteSeconds_ > 0 ? kHandful : std::max<std::size_t>(piece.bytes.size(), 1);
        for (std::size_t at = 0; at < piece.bytes.size(); at += step) {
            std::string handful = piece.bytes.substr(at, step);
            senderFree_ += static_cast<double>(handful.size()) * byteSeconds_;
            outgoing_.push_back({senderFree_, std::move(handful)});
        }
    }
}

std::optional<std::string> Line::takeDue(double now) {
    feed(now);
    if (outgoing_.empty() || outgoing_.front().due > now) {
        return std::nullopt;
    }
    std::string bytes = std::move(outgoing_.front().bytes);
    outgoing_.pop_front();
    return bytes;
}

double Line::nextDue() const {
    const double in = incoming_.empty() ? kNever : incoming_.front().due;
    const double out = outgoing_.empty() ? kNever : outgoing_.front().due;
    return std::min(in, out);
}

} // namespace drx9::sim
