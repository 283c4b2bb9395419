#pragma once

#include "link/ActionQueue.h"
#include "link/FrameParser.h"
#include "link/LinkSettings.h"
#include "link/StepWatch.h"
#include "link/Transports.h"
#include "platform/Clock.h"
#include "platform/EventPump.h"

#include <cstdint>
#include <optional>
#include <string>

namespace drx9 {

/// Outcomes of an exchange, the values of Link::CommStatus().
namespace comm {
inline constexpr std::uint16_t kOk = 0;
inline constexpr std::uint16_t kTimeout = 1;
inline constexpr std::uint16_t kNoData = 2;
inline constexpr std::uint16_t kNotReady = 3;
inline constexpr std::uint16_t kBadCommand = 4;
inline constexpr std::uint16_t kBadData = 5;
inline constexpr std::uint16_t kBadMode = 6;
inline constexpr std::uint16_t kChecksum = 7;
inline constexpr std::uint16_t kPortNotReady = 8;
inline constexpr std::uint16_t kBusy = 9;
inline constexpr std::uint16_t kLost = 10;

/// Nothing came back in time.
constexpr bool isSilence(std::uint16_t status) {
    return status == kTimeout || status == kLost;
}
/// Nobody knows whether the command arrived: there was no answer, or one that cannot be read.
constexpr bool isUnanswered(std::uint16_t status) {
    return isSilence(status) || status == kChecksum;
}
} // namespace comm

/// Text shown for a status: "Timeout", "No Data", ... "Unknown Error"; empty for 0.
std::string commStatusText(std::uint16_t status);

/// How one exchange ended.
struct Exchange {
    std::uint16_t status = comm::kOk; ///< of the values above
    std::string reply;                ///< trimmed reply data; empty unless the status is 0
    std::string data = {};            ///< the same, not trimmed

    [[nodiscard]] bool ok() const { return status == comm::kOk; }
};

/// The wire: one command packet out, one reply packet in, over the transport that `CommType` selects.
///
/// One exchange is in flight at a time. A command given while another waits for its reply (from an event
/// handler that ran inside the wait) is kept as the single pending command, sent after the exchange in hand,
/// and its reply is discarded.
///
/// An answer out of step is no answer. After a time-out the next command, whatever it is, waits until the
/// late answer has come, at most until 0.5 s after the time-out; a request to close the program ends this
/// wait.
class Link {
public:
    static constexpr double kReplyLimit = 1.0; ///< s
    static constexpr double kLateLimit = 0.5;  ///< s after a time-out that a late answer is waited for

    Link(const LinkSettings& settings, Transports& transports, EventPump& pump, const Clock& clock,
         ActionQueue& actions);

    /// Sends a command and waits for its reply, at most 1.0 s, sleeping in the event loop: pumps events.
    /// Given in mid-exchange it ends at once with status 9 and is sent later. Whatever path it leaves by,
    /// exceptions of event handlers included, CommStatus() is not 9 afterwards.
    Exchange Comm_Send(const std::string& command);

    /// The status of the last exchange, for those who look later; who sends takes the one that Comm_Send()
    /// returns. Where a pending command was sent behind it, this tells how that one
    /// ended, and what Comm_Send() returned how the first did.
    [[nodiscard]] std::uint16_t CommStatus() const { return status_; }
    void setCommStatus(std::uint16_t status) { status_ = status; }

    /// The instrument is on line.
    [[nodiscard]] bool CommOK() const { return ok_; }
    void setCommOK(bool ok) { ok_ = ok; }

    [[nodiscard]] const std::string& CommLastPacket() const { return lastPacket_; }
    [[nodiscard]] const std::string& CommVersion() const { return version_; }

    /// Numeric value of the last character of the reply to "J"; 0 when unknown. A count of sensors is
    /// sensorCount().
    [[nodiscard]] std::int16_t InstrumentType() const { return instrumentType_; }
    void setInstrumentType(std::int16_t type) {
        instrumentType_ = type;
        knownType_ = type > 0 ? type : knownType_;
    }

    /// Sensors that the instrument has: InstrumentType, at most 6; unknown (0) counts as 6.
    [[nodiscard]] int sensorCount() const;

    /// The last four characters of CommVersion when it has at least five, else "".
    [[nodiscard]] std::string Comm_VersionText() const;
    /// Film slots of the instrument: 9 for firmware above 0 and up to 4.08, else 99.
    [[nodiscard]] std::int16_t FilmCount() const;

    /// Forgets what belongs to the link as it was: a command given while the status was 9, and an answer that
    /// may come late. Used when a link is opened.
    void forget();

    [[nodiscard]] StepWatch& watch() { return watch_; }
    /// Waits now, not before the next command, for the answer of an exchange that timed out. Pumps events
    /// then.
    void settle();
    /// Listens for `seconds` (not at all at 0 or less), and while something is coming until the line is
    /// quiet, with nothing sent, for answers that are too many; the watch is told. Pumps events then.
    void listen(double seconds);

    /// An exchange is on the stack, its wait for a late answer included.
    [[nodiscard]] bool exchanging() const { return waiting_; }
    /// The port, device or socket of the link that is set is open; one that was lost is not.
    [[nodiscard]] bool isOpen() const { return transports_.of(settings_.CommType).isOpen(); }
    /// Monotonic time of the last complete reply whose check characters were right; below 0 before the first.
    [[nodiscard]] double lastReplyTime() const { return lastReplyTime_; }
    /// Exchanges answered "A" since the program's start.
    [[nodiscard]] std::uint32_t accepted() const { return accepted_; }

private:
    class InFlight;

    Exchange exchangeNow(const std::string& command);
    void sendPending();
    std::string Comm_Receive(Transport& transport);
    bool send(Transport& transport);
    void awaitLateAnswer(Transport& transport);
    bool hearsAnswer(Transport& transport);
    void noteUnasked(const std::optional<FrameParser::Reply>& reply);
    void sleep(const Transport& transport, double start, double deadline);
    void doze(const Transport& transport, double start, double deadline);
    void timeOut();
    void Comm_RxByte(std::uint8_t byte);
    void applyReply(const FrameParser::Reply& reply);

    const LinkSettings& settings_;
    Transports& transports_;
    EventPump& pump_;
    const Clock& clock_;
    ActionQueue& actions_;
    FrameParser parser_;               ///< where the packet that is arriving has got to
    StepWatch watch_;                  ///< told of answers that came late or unasked
    std::uint16_t status_ = comm::kOk; ///< CommStatus: 9 from the start of an exchange to its end
    bool ok_ = false;                  ///< CommOK
    bool waiting_ = false;             ///< an exchange is on the stack, its wait for a late answer included
    /// Until when the answer of an exchange that timed out may still come; none owed below 0. Monotonic.
    double lateUntil_ = -1;
    std::string pending_;             ///< command given in mid-exchange, empty when none
    std::string lastPacket_;          ///< CommLastPacket: as sent, with its frame
    std::string reply_;               ///< data of the last accepted answer since the last send
    std::string answer_;              ///< status letter and data of the last sound answer since the last send
    std::string answerBefore_;        ///< the same of the send before
    bool damaged_ = false;            ///< a packet with wrong check characters came since the last send
    std::string version_;             ///< CommVersion: kept over losses, until another "@" is answered
    std::int16_t instrumentType_ = 0; ///< as last answered to "J"; 0 when unknown
    std::int16_t knownType_ = 0; ///< last instrument type above 0: readouts keep it while the link is lost
    double lastReplyTime_ = -1;  ///< monotonic; below 0 before the first sound reply
    std::uint32_t accepted_ = 0; ///< exchanges answered "A" since the start
};

} // namespace drx9
