#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/Deposition.h"
#include "simulator/Random.h"

namespace drx9::sim {

/// What can go wrong, by name; see faultTable() for the words that people write.
enum class FaultKind { Lose, Late, Cut, Corrupt, Refuse, Noise, Stray, Zeros, Split, Close, Silent, Crystal };

struct FaultName {
    std::string_view name;
    FaultKind kind;
    std::string_view form; ///< how it is written, with an example's values
    std::string_view help;
};

/// All faults, in the order in which the help lists them.
std::span<const FaultName> faultTable();

/// Which replies a fault falls on: every n-th, counted from when the fault was set, or a random share.
struct Every {
    unsigned nth = 1;
    double share = 0; ///< above 0: this share of the replies instead, 0..1
};

struct Fault {
    FaultKind kind = FaultKind::Lose;
    Every every;
    double seconds = 0;     ///< Late, Split: delay; Close, Silent, Crystal: from when
    double lasting = 0;     ///< Silent: for how long
    std::size_t length = 0; ///< Cut: bytes that still come; 0 = a random number of them
    std::string command;    ///< Refuse: how the command begins; empty = any command
    char letter = 'B';      ///< Refuse: the status letter
    int sensor = 0;         ///< Crystal
    CrystalFailure crystal = CrystalFailure::Stopped;
    unsigned replies = 0; ///< how many this fault has seen
};

struct FaultList {
    std::vector<Fault> faults;
    std::string error; ///< empty when the text was understood; else what was not
};

/// Reads "lose=5,late=7:1500ms,..."; "" and "none" are the empty list.
FaultList parseFaults(std::string_view text);

/// Bytes that leave together, `delay` seconds after those before them could leave.
struct Piece {
    double delay = 0;
    std::string bytes;
};

/// What becomes of one reply on its way out.
struct Mangled {
    std::vector<Piece> pieces; ///< empty: nothing comes
    std::string note;          ///< the names of the faults at work, for the trace
};

/// The faults in force. Random choices come from the seed. Times are seconds of the caller's clock; a fault's
/// own times count from the moment at which it was set.
class Faults {
public:
    explicit Faults(std::uint64_t seed)
        : random_(seed) {}

    void set(std::vector<Fault> faults, double now);
    std::span<const Fault> all() const { return faults_; }

    /// The status letter with which `command` is refused, if it is. Call once a command.
    std::optional<char> refusal(std::string_view command);
    Mangled mangle(std::string packet, double now);
    /// Seconds after which a connection is dropped, if it is.
    std::optional<double> closeAfter() const;

private:
    bool strikes(Fault& fault);
    bool isSilent(double now) const;
    Fault* striking(FaultKind kind, Mangled& mangled);
    std::string garbage(unsigned atLeast, unsigned atMost);
    void alter(std::string& packet, Mangled& mangled);

    std::vector<Fault> faults_;
    double setAt_ = 0;
    Random random_;
};

} // namespace drx9::sim
