#pragma once

#include "link/ActionQueue.h"
#include "link/FrameParser.h"
#include "link/Records.h"
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
} // namespace comm

/// Text shown for a status: "Timeout", "No Data", ... "Unknown Error"; empty for 0.
std::string commStatusText(std::uint16_t status);

/// The wire: one command packet out, one reply packet in, over the transport that `CommType` selects.
///
/// One exchange is in flight at a time. A command given while another waits for its reply (from an event
/// handler that ran inside the wait) is kept as the single pending command, sent after the exchange in hand,
/// and its reply is discarded.
class Link {
public:
    static constexpr double kReplyLimit = 1.0;      ///< s
    static constexpr double kStragglerLimit = 0.25; ///< s that settle() listens for an answer that came late

    Link(const LinkSettings& settings, Transports& transports, EventPump& pump, const Clock& clock,
         ActionQueue& actions);

    /// Sends a command and waits for its reply, at most 1.0 s, sleeping in the event loop: pumps events.
    /// Returns the trimmed reply data, "" on any failure; the outcome is in CommStatus(). Whatever path it
    /// leaves by, exceptions of event handlers included, CommStatus() is not 9 afterwards.
    std::string Comm_Send(const std::string& command);

    [[nodiscard]] std::uint16_t CommStatus() const { return status_; }
    void setCommStatus(std::uint16_t status) { status_ = status; }

    /// The instrument is on line.
    [[nodiscard]] bool CommOK() const { return ok_; }
    void setCommOK(bool ok) { ok_ = ok; }

    [[nodiscard]] const std::string& CommLastPacket() const { return lastPacket_; }
    [[nodiscard]] const std::string& CommReply() const { return reply_; }
    [[nodiscard]] const std::string& CommVersion() const { return version_; }

    /// Numeric value of the last character of the reply to "J"; 0 when unknown.
    [[nodiscard]] std::int16_t InstrumentType() const { return instrumentType_; }
    void setInstrumentType(std::int16_t type) {
        instrumentType_ = type;
        knownType_ = type > 0 ? type : knownType_;
    }

    /// Sensors that are read and shown: InstrumentType, at most 6; unknown (0) counts as 6.
    [[nodiscard]] int sensorCount() const;

    /// The last four characters of CommVersion when it has at least five, else "".
    [[nodiscard]] std::string Comm_VersionText() const;
    /// Film slots of the instrument: 9 for firmware above 0 and up to 4.08, else 99.
    [[nodiscard]] std::int16_t FilmCount() const;

    /// Status of the exchange whose reply Comm_Send returned last. The same as CommStatus(), but where a
    /// pending command was sent behind it: CommStatus() then tells how that one ended.
    [[nodiscard]] std::uint16_t outcome() const { return outcome_; }
    /// Forgets what belongs to the link as it was: a command given while status 9 stood, and answers that may
    /// come late. Used when a link is opened.
    void forget() {
        pending_.clear();
        owed_ = false;
    }

    /// Brings commands and answers back into step after a time-out. The wire numbers neither: an answer that
    /// comes later than the limit is taken for that of the command sent meanwhile, and each answer behind it
    /// for the next command's. So once an exchange has timed out this listens, with nothing sent, until the
    /// line has been quiet (at most 0.5 s), and drops what comes. True when something came: what was read
    /// since that time-out may belong to other commands. At once false when none timed out. Pumps events.
    bool settle();

    /// Begins to watch for answers that no command asked for: from behind the next send on, for what is
    /// dropped before that belongs to earlier commands.
    void watch() { watchBegins_ = true; }
    /// Listens for `seconds` (not at all at 0 or less), with nothing sent; pumps events then. True when since
    /// watch() an answer that no command asked for came here, behind another one, or was dropped before a
    /// send. What was read meanwhile may then be the answers of other commands: one that comes twice, or
    /// late, is taken for the next command's, whose own is then too many. The last answer once more does not
    /// count, nor do stray bytes.
    bool hearsSurplus(double seconds);

    /// True while a reply is awaited.
    [[nodiscard]] bool exchanging() const { return waiting_; }
    /// Monotonic time of the last complete reply whose check characters were right; below 0 before the first.
    [[nodiscard]] double lastReplyTime() const { return lastReplyTime_; }

private:
    class InFlight;
    /// What came while nothing was awaited.
    struct Heard {
        bool bytes = false;
        bool answer = false; ///< a sound one, other than the last
    };

    std::string exchange(const std::string& command);
    std::string Comm_Receive(Transport& transport);
    Heard listen(double seconds);
    bool send(Transport& transport);
    [[nodiscard]] bool isSurplus(const std::optional<FrameParser::Reply>& reply) const;
    void sleep(const Transport& transport, double start, double deadline);
    void timeOut();
    void Comm_RxByte(std::uint8_t byte);
    void applyReply(const FrameParser::Reply& reply);

    const LinkSettings& settings_;
    Transports& transports_;
    EventPump& pump_;
    const Clock& clock_;
    ActionQueue& actions_;
    FrameParser parser_;
    std::uint16_t status_ = comm::kOk;
    bool ok_ = false;
    bool waiting_ = false;
    std::uint16_t outcome_ = comm::kOk;
    bool owed_ = false; ///< a command sent since the last settle() was not answered in time
    bool watchBegins_ = false;
    bool surplus_ = false; ///< since watch()
    std::string pending_;  ///< empty when none
    std::string lastPacket_;
    std::string reply_;
    std::string version_;
    std::int16_t instrumentType_ = 0;
    std::int16_t knownType_ = 0; ///< last one above 0
    double lastReplyTime_ = -1;
};

} // namespace drx9
