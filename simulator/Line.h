#pragma once

#include <deque>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/CommandParser.h"
#include "simulator/Faults.h"

namespace drx9::sim {

/// What is behind a line: takes a command that came over the line `name`, gives the bytes of its reply.
class Responder {
public:
    virtual ~Responder() = default;
    virtual std::vector<Piece> respond(const std::string& command, std::string_view name, double now) = 0;
    virtual void badPacket(std::string_view name, double now) = 0;
};

constexpr double kNever = std::numeric_limits<double>::max();

/// One connection: bytes in, bytes out with the time at which each may leave. With a baud rate a byte takes
/// ten bits of it in each direction, and replies leave in handfuls as from a UART's buffer; without one
/// everything is immediate. A reply never overtakes an earlier one. Times are seconds of the caller's clock.
class Line {
public:
    /// `baud` 0: no pacing. `responder` outlives the line.
    Line(Responder& responder, std::string name, unsigned baud, double openedAt);

    void receive(std::string_view bytes, double now);
    /// Bytes that are due by `now` and leave together; nothing when none are.
    std::optional<std::string> takeDue(double now);
    /// When takeDue() has to be called next; kNever when there is nothing to do.
    double nextDue() const;

    /// More bytes wait than a line should hold; read no more until this ends.
    bool full() const { return incoming_.size() > 4096; }

    double openedAt() const { return openedAt_; }

private:
    struct Timed {
        double due;
        std::string bytes;
    };

    void feed(double now);
    void send(const std::vector<Piece>& pieces, double now);

    Responder& responder_;
    std::string name_;
    double byteSeconds_;
    double openedAt_;
    CommandParser parser_;
    std::deque<Timed> incoming_; ///< one byte each
    std::deque<Timed> outgoing_;
    double receiverFree_ = 0;
    double senderFree_ = 0;
};

} // namespace drx9::sim
