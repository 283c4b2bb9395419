#include "simulator/Simulator.h"

#include "link/Crc.h"
#include "simulator/Text.h"

namespace drx9::sim {

namespace {
// A film write carries its whole payload: enough of it to tell films apart is counted, and only so many
// kinds.
constexpr std::size_t kCountedLength = 16;
constexpr std::size_t kCountedKinds = 10'000;
constexpr std::uint64_t kFaultStream = 0xFA017;
} // namespace

Simulator::Simulator(const SimulatorOptions& options, TraceSink trace)
    : options_(options)
    , trace_(std::move(trace))
    , instrument_(options.instrument)
    , faults_(options.instrument.seed ^ kFaultStream) {
    setFaults(options.faults, 0);
}

Line Simulator::openLine(std::string name, double now) {
    return {*this, std::move(name), options_.baud, now};
}

double Simulator::dropTime(const Line& line) const {
    const std::optional<double> after = faults_.closeAfter();
    return after ? line.openedAt() + *after : kNever;
}

std::vector<Piece> Simulator::respond(const std::string& command, std::string_view name, double now) {
    tally(command);
    Reply reply;
    std::string note;
    if (const std::optional<char> letter = faults_.refusal(command)) {
        reply.status = *letter;
        note = "refuse";
    } else {
        reply = instrument_.execute(command, simulated(now));
    }
    Mangled mangled = faults_.mangle(replyPacket(reply.status, reply.data), now);
    if (!mangled.note.empty()) {
        note += (note.empty() ? "" : " ") + mangled.note;
    }
    tell(name, now, command, reply, note);
    return std::move(mangled.pieces);
}

void Simulator::badPacket(std::string_view name, double now) {
    if (trace_) {
        trace_(fixedText(now, 3) + "\t\t\t\t" + std::string(name) + "\tbad check characters, not answered");
    }
}

void Simulator::tell(std::string_view name, double now, std::string_view command, const Reply& reply,
                     std::string_view note) {
    if (!trace_) {
        return;
    }
    std::string line = fixedText(now, 3) + '\t' + escaped(command) + '\t' + reply.status + '\t' +
                       escaped(reply.data) + '\t' + std::string(name);
    if (!note.empty()) {
        line += '\t' + std::string(note);
    }
    trace_(line);
}

void Simulator::tally(const std::string& command) {
    ++total_;
    const std::string key = command.substr(0, kCountedLength);
    const auto found = counts_.find(key);
    if (found != counts_.end()) {
        ++found->second;
    } else if (counts_.size() < kCountedKinds) {
        counts_.emplace(key, 1U);
    }
}

unsigned Simulator::count(std::string_view text) const {
    if (text.empty() || text == "*") {
        return total_;
    }
    if (!text.ends_with('*')) {
        const auto found = counts_.find(text.substr(0, kCountedLength));
        return found == counts_.end() ? 0 : found->second;
    }
    text.remove_suffix(1);
    unsigned sum = 0;
    for (auto at = counts_.lower_bound(text); at != counts_.end() && at->first.starts_with(text); ++at) {
        sum += at->second;
    }
    return sum;
}

void Simulator::resetCounts() {
    counts_.clear();
    total_ = 0;
}

void Simulator::setFaults(std::vector<Fault> faults, double now) {
    for (const Fault& fault : faults_.all()) {
        if (fault.kind == FaultKind::Crystal) {
            mendCrystal(fault.sensor, now);
        }
    }
    for (const Fault& fault : faults) {
        if (fault.kind == FaultKind::Crystal) {
            instrument_.failCrystal(fault.sensor, simulated(now) + fault.seconds, fault.crystal);
        }
    }
    faults_.set(std::move(faults), now);
}

void Simulator::failCrystal(int sensor, CrystalFailure kind, double now) {
    instrument_.failCrystal(sensor, simulated(now), kind);
}

void Simulator::mendCrystal(int sensor, double now) {
    instrument_.mendCrystal(sensor, simulated(now));
}

void Simulator::setShutter(bool open, double now) {
    instrument_.setShutter(open, simulated(now));
}

} // namespace drx9::sim
