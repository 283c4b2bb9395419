#include "link/Link.h"

#include "link/Crc.h"
#include "link/Records.h"
#include "link/Texts.h"
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
    using namespace linkText;
    static constexpr std::array<const char*, 11> kTexts = {
        "",       kTimeout,  kNoData,       kNotReady, kBadCommand, kBadData,
        kBadMode, kChecksum, kPortNotReady, kBusy,     kLost};
    return status < kTexts.size() ? kTexts[status] : kUnknown;
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
            link_.lateUntil_ = link_.clock_.monotonic() + kReplyLimit + kLateLimit;
        }
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

Exchange Link::Comm_Send(const std::string& command) {
    const ActionQueue::Scope scope(actions_);
    if (waiting_ || status_ == comm::kBusy) {
        pending_ = command;
        return {comm::kBusy, {}};
    }
    if (actions_.hurrying()) {
        status_ = comm::kTimeout;
        return {comm::kTimeout, {}};
    }
    Exchange ended = exchangeNow(command);
    sendPending();
    return ended;
}

void Link::sendPending() {
    while (!pending_.empty()) {
        exchangeNow(std::exchange(pending_, {}));
    }
}

Exchange Link::exchangeNow(const std::string& command) {
    std::string data;
    {
        const InFlight inFlight(*this);
        // The same one to the end, also when the operator chooses another link meanwhile.
        Transport& transport = transports_.of(settings_.CommType);
        awaitLateAnswer(transport);
        lastPacket_ = commandPacket(command);
        if (send(transport)) {
            data = Comm_Receive(transport);
        } else {
            pump_.processPending();
            timeOut();
        }
    }
    return {status_, trimmed(data), data};
}

bool Link::send(Transport& transport) {
    // A parser of its own: the rest of a packet that begins in what is dropped must not complete one.
    FrameParser parser;
    const bool sent = transport.send(lastPacket_, [&](std::uint8_t byte) { noteUnasked(parser.push(byte)); });
    watch_.noteSend();
    damaged_ = false;
    reply_.clear();
    answerBefore_ = std::exchange(answer_, {});
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
    return status_ == comm::kOk ? reply_ : std::string();
}

void Link::sleep(const Transport& transport, double start, double deadline) {
    doze(transport, start, deadline);
    if (clock_.monotonic() >= deadline) {
        lateUntil_ = clock_.monotonic() + kLateLimit;
        timeOut();
    }
}

/// Sleeps until something happens, the deadline, or the next look at a link that wakes nobody.
void Link::doze(const Transport& transport, double start, double deadline) {
    const double now = clock_.monotonic();
    const double interval = transport.pollInterval(now - start);
    pump_.sleepUntil(interval > 0 ? std::min(deadline, now + interval) : deadline);
    pump_.processPending();
}

void Link::forget() {
    pending_.clear();
    lateUntil_ = -1;
}

void Link::settle() {
    if (lateUntil_ < 0 || waiting_) {
        return;
    }
    const ActionQueue::Scope scope(actions_);
    const std::uint16_t status = status_; // the exchange that timed out has ended: its status stays
    {
        const InFlight inFlight(*this);
        awaitLateAnswer(transports_.of(settings_.CommType));
        status_ = status;
    }
    sendPending();
}

void Link::awaitLateAnswer(Transport& transport) {
    const double limit = std::exchange(lateUntil_, -1);
    if (limit < 0) {
        return;
    }
    const double start = clock_.monotonic();
    pump_.sleepUntil(start); // a whole turn of the events: what has come shows only then
    bool came = hearsAnswer(transport);
    while (!came && clock_.monotonic() < limit && !actions_.closing()) {
        doze(transport, start, limit);
        came = hearsAnswer(transport);
    }
    if (came) {
        watch_.noteLate();
    }
    parser_ = FrameParser(); // the rest of an answer that has only begun is noise to the next exchange
}

/// Drops what has arrived; true when a packet, sound or not, ended in it.
bool Link::hearsAnswer(Transport& transport) {
    bool came = false;
    transport.receive([&](std::uint8_t byte) { came = parser_.push(byte).has_value() || came; },
                      [] { return true; });
    return came;
}

void Link::listen(double seconds) {
    Transport& transport = transports_.of(settings_.CommType);
    const double start = clock_.monotonic();
    const double limit = start + kListenLimit; // noise must not hold it forever
    double until = start + seconds;
    for (double now = start; now < std::min(until, limit); now = clock_.monotonic()) {
        bool more = false;
        // By the parser of the exchanges, so that the next reply is not read as this one's end.
        const auto drop = [&](std::uint8_t byte) {
            more = true;
            noteUnasked(parser_.push(byte));
        };
        transport.receive(drop, [] { return true; });
        until = more ? now + kQuiet : until;
        doze(transport, start, std::min(until, limit));
    }
}

/// A packet that came with no exchange waiting for it. The first sound one behind noise, which ended the
/// exchange as a packet with wrong check characters, is that exchange's own.
void Link::noteUnasked(const std::optional<FrameParser::Reply>& reply) {
    if (!reply || !reply->crcOk) {
        return;
    }
    const std::string answer = reply->statusLetter + reply->data;
    if (answer_.empty() && damaged_) {
        answer_ = answer;
        watch_.noteAnswer(answer == answerBefore_);
    } else if (answer == answer_) {
        watch_.noteCopy();
    } else {
        watch_.noteSurplus();
    }
}

void Link::timeOut() {
    // An event handler may have set the status in the turn before: a second time-out on top of one means lost
    // (kept).
    status_ = status_ == comm::kTimeout ? comm::kLost : comm::kTimeout;
}

void Link::Comm_RxByte(std::uint8_t byte) {
    if (const auto reply = parser_.push(byte)) {
        if (status_ != comm::kBusy) { // Ethernet feeds on past a complete reply
            noteUnasked(reply);
        } else if (reply->crcOk) {
            watch_.noteAnswer(reply->statusLetter + reply->data == answerBefore_);
        }
        applyReply(*reply);
    }
}

void Link::applyReply(const FrameParser::Reply& reply) {
    if (!reply.crcOk) {
        status_ = comm::kChecksum;
        damaged_ = true;
        return;
    }
    ok_ = true;
    lastReplyTime_ = clock_.monotonic();
    answer_ = reply.statusLetter + reply.data;
    status_ = statusOfLetter(reply.statusLetter);
    if (status_ != comm::kOk) {
        return;
    }
    ++accepted_;
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
    return version > 0 && version <= kLastVersionWithNineFilms ? std::int16_t{9} : std::int16_t{kMostFilms};
}

} // namespace drx9
