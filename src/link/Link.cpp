#include "link/Link.h"

#include "link/Crc.h"
#include "util/Numbers.h"
#include "util/Text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace drx9 {

namespace {
constexpr std::size_t kVersionDigits = 4;
constexpr double kLastVersionWithNineFilms = 4.08; // inclusive
constexpr double kQuiet = 0.06;                    // s without a byte: the answer is over, at any baud rate
constexpr double kListenLimit = 0.5;               // s

std::uint16_t statusOfLetter(char letter) {
    switch (letter) {
    case 'A':
        return comm::kOk;
    case 'B':
        return comm::kNotReady;
    case 'C':
        return comm::kBadCommand;
    case 'E':
        return comm::kBadMode;
    default:
        return comm::kBadData;
    }
}
} // namespace

std::string commStatusText(std::uint16_t status) {
    static constexpr std::array<const char*, 11> kTexts = {
        "",         "Timeout",        "No Data",        "Not Ready",       "Bad Command",        "Bad Data",
        "Bad Mode", "Checksum Error", "Port Not Ready", "Instrument Busy", "Lost Communications"};
    return status < kTexts.size() ? kTexts[status] : "Unknown Error";
}

/// Marks the exchange as in flight, and leaves neither the mark nor the busy status behind when an event
/// handler's exception ends it.
class Link::InFlight {
public:
    explicit InFlight(Link& link)
        : link_(link) {
        link_.waiting_ = true;
        link_.status_ = comm::kBusy;
    }
    ~InFlight() {
        link_.waiting_ = false;
        if (link_.status_ == comm::kBusy) {
            link_.status_ = comm::kTimeout;
            link_.pending_.clear();
            link_.owed_ = true;
        }
        link_.outcome_ = link_.status_;
    }
    InFlight(const InFlight&) = delete;
    InFlight& operator=(const InFlight&) = delete;

private:
    Link& link_;
};

Link::Link(const LinkSettings& settings, Transports& transports, EventPump& pump, const Clock& clock,
           ActionQueue& actions)
    : settings_(settings)
    , transports_(transports)
    , pump_(pump)
    , clock_(clock)
    , actions_(actions) {}

std::string Link::Comm_Send(const std::string& command) {
    const ActionQueue::Scope scope(actions_);
    if (waiting_ || status_ == comm::kBusy) {
        pending_ = command;
        return {};
    }
    std::string reply = exchange(command);
    const std::uint16_t outcome = outcome_;
    while (!pending_.empty()) {
        exchange(std::exchange(pending_, {}));
    }
    outcome_ = outcome;
    return reply;
}

std::string Link::exchange(const std::string& command) {
    const InFlight inFlight(*this);
    // The same one to the end, should the operator choose another link meanwhile.
    Transport& transport = transports_.of(settings_.CommType);
    if (owed_) {
        pump_.sleepUntil(clock_.monotonic()); // a whole turn of the events: what has come shows only then
    }
    lastPacket_ = commandPacket(command);
    if (send(transport)) {
        return Comm_Receive(transport);
    }
    pump_.processPending();
    timeOut();
    return {};
}

bool Link::send(Transport& transport) {
    FrameParser
        parser; // of its own: the rest of a packet that begins in what is dropped must not complete one
    const bool sent = transport.send(
        lastPacket_, [&](std::uint8_t byte) { surplus_ = isSurplus(parser.push(byte)) || surplus_; });
    if (std::exchange(watchBegins_, false)) {
        surplus_ = false;
    }
    reply_.clear();
    return sent;
}

std::string Link::Comm_Receive(Transport& transport) {
    pump_.processPending(); // the turn that belongs to the sending: the wait starts after it
    const double start = clock_.monotonic();
    const double deadline = start + kReplyLimit;
    while (status_ == comm::kBusy) {
        transport.receive([this](std::uint8_t byte) { Comm_RxByte(byte); },
                          [this] { return status_ == comm::kBusy; });
        if (status_ == comm::kBusy) {
            sleep(transport, start, deadline);
        }
    }
    return status_ == comm::kOk ? trimmed(reply_) : std::string();
}

void Link::sleep(const Transport& transport, double start, double deadline) {
    const double now = clock_.monotonic();
    const double interval = transport.pollInterval(now - start);
    pump_.sleepUntil(interval > 0 ? std::min(deadline, now + interval) : deadline);
    pump_.processPending();
    if (clock_.monotonic() >= deadline) {
        owed_ = true;
        timeOut();
    }
}

bool Link::settle() {
    return std::exchange(owed_, false) && listen(kStragglerLimit).bytes;
}

bool Link::hearsSurplus(double seconds) {
    return listen(seconds).answer || surplus_;
}

/// A sound answer, and not the last one once more.
bool Link::isSurplus(const std::optional<FrameParser::Reply>& reply) const {
    return reply && reply->crcOk && reply->data != reply_;
}

/// For so long, and while something is coming until the line is quiet.
Link::Heard Link::listen(double seconds) {
    Transport& transport = transports_.of(settings_.CommType);
    const double start = clock_.monotonic();
    const double limit = start + kListenLimit; // noise must not hold it for ever
    double quietAt = start + seconds;
    Heard heard;
    double now = start;
    while (now < std::min(quietAt, limit)) {
        bool more = false;
        const auto drop = [&](std::uint8_t byte) {
            more = true;
            // By the parser of the exchanges, lest the next reply be read as this one's end.
            heard.answer = isSurplus(parser_.push(byte)) || heard.answer;
        };
        transport.receive(drop, [] { return true; });
        if (more) {
            heard.bytes = true;
            quietAt = now + kQuiet;
        }
        const double interval = transport.pollInterval(now - start);
        pump_.sleepUntil(interval > 0 ? std::min(quietAt, now + interval) : std::min(quietAt, limit));
        pump_.processPending();
        now = clock_.monotonic();
    }
    return heard;
}

void Link::timeOut() {
    // An event handler may have set the status in the turn before: a second time-out on top of one means lost
    // (kept).
    status_ = status_ == comm::kTimeout ? comm::kLost : comm::kTimeout;
}

void Link::Comm_RxByte(std::uint8_t byte) {
    if (const auto reply = parser_.push(byte)) {
        // Ethernet feeds on past a complete reply.
        surplus_ = surplus_ || (status_ != comm::kBusy && isSurplus(reply));
        applyReply(*reply);
    }
}

void Link::applyReply(const FrameParser::Reply& reply) {
    if (!reply.crcOk) {
        status_ = comm::kChecksum;
        return;
    }
    ok_ = true;
    lastReplyTime_ = clock_.monotonic();
    status_ = statusOfLetter(reply.statusLetter);
    if (status_ != comm::kOk) {
        return;
    }
    reply_ = reply.data;
    if (lastPacket_.size() > 2 && lastPacket_[2] == '@') {
        version_ = reply_;
    }
}

int Link::sensorCount() const {
    const std::int16_t type = ok_ ? instrumentType_ : knownType_;
    return type < 1 ? kMaxSensors : std::min<int>(type, kMaxSensors);
}

std::string Link::Comm_VersionText() const {
    return version_.size() > kVersionDigits ? version_.substr(version_.size() - kVersionDigits)
                                            : std::string();
}

std::int16_t Link::FilmCount() const {
    const double version = Val(Comm_VersionText());
    return version > 0 && version <= kLastVersionWithNineFilms ? 9 : 99;
}

} // namespace drx9
