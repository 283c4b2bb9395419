#include "simulator/Faults.h"

#include <algorithm>

#include "simulator/Text.h"

namespace drx9::sim {

namespace {
constexpr double kLateSeconds = 1.5;
constexpr double kSplitSeconds = 0.005;

constexpr std::array<FaultName, 12> kNames{{
    {"lose", FaultKind::Lose, "lose=5", "every 5th reply is lost"},
    {"late", FaultKind::Late, "late=7:1500ms", "every 7th reply comes 1.5 s late"},
    {"cut", FaultKind::Cut, "cut=6:4",
     "of every 6th reply only the first 4 bytes come (no number: a random part)"},
    {"corrupt", FaultKind::Corrupt, "corrupt=4", "one bit of every 4th reply is wrong"},
    {"refuse", FaultKind::Refuse, "refuse=L1:B",
     "commands that begin with L1 (or *: all) get status letter B"},
    {"noise", FaultKind::Noise, "noise=3", "random bytes come before every 3rd reply"},
    {"stray", FaultKind::Stray, "stray=3", "one stray byte hangs behind every 3rd reply"},
    {"zeros", FaultKind::Zeros, "zeros=3", "zero bytes lie inside every 3rd reply"},
    {"split", FaultKind::Split, "split=3:5ms", "every 3rd reply dribbles out byte by byte, 5 ms apart"},
    {"close", FaultKind::Close, "close=30s", "each connection is dropped 30 s after it was made"},
    {"silent", FaultKind::Silent, "silent=10s:5s", "from 10 s on nothing is answered for 5 s"},
    {"crystal", FaultKind::Crystal, "crystal3=20s",
     "crystal 3 stops after 20 simulated seconds (crystal3=20s:out: its frequency leaps out of limits)"},
}};

/// The parts of a fault's value, separated by ":".
struct Parts {
    std::string_view first;
    std::string_view second;
    bool tooMany = false;
};

Parts partsOf(std::string_view value) {
    const std::size_t colon = value.find(':');
    if (colon == std::string_view::npos) {
        return {value, ""};
    }
    const std::string_view rest = value.substr(colon + 1);
    return {value.substr(0, colon), rest, rest.find(':') != std::string_view::npos};
}

bool takeEvery(std::string_view text, Every& every) {
    if (text.empty()) {
        return true;
    }
    if (text.ends_with('%')) {
        const auto percent = numberIn(text.substr(0, text.size() - 1));
        every.share = percent.value_or(0) / 100;
        return every.share > 0 && every.share <= 1;
    }
    const auto nth = integerIn(text, 1, 1'000'000);
    every.nth = static_cast<unsigned>(nth.value_or(1));
    return nth.has_value();
}

bool takeSeconds(std::string_view text, double whenMissing, double& seconds) {
    const auto read = text.empty() ? std::optional(whenMissing) : secondsIn(text);
    seconds = read.value_or(0);
    return read.has_value();
}

bool takeLength(std::string_view text, std::size_t& length) {
    const auto read = text.empty() ? std::optional(0) : integerIn(text, 1, 255);
    length = static_cast<std::size_t>(read.value_or(0));
    return read.has_value();
}

bool takeRefusal(const Parts& parts, Fault& fault) {
    fault.command = parts.first == "*" ? "" : parts.first;
    fault.letter = parts.second.empty() ? 'B' : parts.second.front();
    return !parts.first.empty() && parts.second.size() <= 1;
}

bool takeCrystal(const Parts& parts, Fault& fault) {
    fault.crystal = parts.second == "out" ? CrystalFailure::OutOfLimits : CrystalFailure::Stopped;
    return takeSeconds(parts.first, 0, fault.seconds) && (parts.second.empty() || parts.second == "out");
}

bool takeValue(const Parts& parts, Fault& fault) {
    if (parts.tooMany) {
        return false;
    }
    switch (fault.kind) {
    case FaultKind::Late:
        return takeEvery(parts.first, fault.every) && takeSeconds(parts.second, kLateSeconds, fault.seconds);
    case FaultKind::Split:
        return takeEvery(parts.first, fault.every) && takeSeconds(parts.second, kSplitSeconds, fault.seconds);
    case FaultKind::Cut:
        return takeEvery(parts.first, fault.every) && takeLength(parts.second, fault.length);
    case FaultKind::Refuse:
        return takeRefusal(parts, fault);
    case FaultKind::Close:
        return takeSeconds(parts.first, 30, fault.seconds) && parts.second.empty();
    case FaultKind::Silent:
        return takeSeconds(parts.first, 0, fault.seconds) && takeSeconds(parts.second, 5, fault.lasting);
    case FaultKind::Crystal:
        return takeCrystal(parts, fault);
    case FaultKind::Lose:
    case FaultKind::Corrupt:
    case FaultKind::Noise:
    case FaultKind::Stray:
    case FaultKind::Zeros:
        break;
    }
    return takeEvery(parts.first, fault.every) && parts.second.empty();
}

/// A crystal's number is part of its name.
std::string_view takeSensor(std::string_view name, int& sensor) {
    constexpr std::string_view crystal = "crystal";
    if (!name.starts_with(crystal)) {
        return name;
    }
    sensor = integerIn(name.substr(crystal.size()), 1, kMaxSensors).value_or(0);
    return sensor == 0 ? "" : crystal;
}

std::optional<Fault> parseFault(std::string_view text) {
    const std::size_t equals = std::min(text.find('='), text.size());
    Fault fault;
    const std::string_view name = takeSensor(text.substr(0, equals), fault.sensor);
    const auto* found =
        std::find_if(kNames.begin(), kNames.end(), [name](const FaultName& one) { return one.name == name; });
    if (found == kNames.end()) {
        return std::nullopt;
    }
    fault.kind = found->kind;
    const std::string_view value = equals == text.size() ? "" : text.substr(equals + 1);
    return takeValue(partsOf(value), fault) ? std::optional(fault) : std::nullopt;
}

std::string_view nameOf(FaultKind kind) {
    return std::find_if(kNames.begin(), kNames.end(),
                        [kind](const FaultName& one) { return one.kind == kind; })
        ->name;
}
} // namespace

std::span<const FaultName> faultTable() {
    return kNames;
}

FaultList parseFaults(std::string_view text) {
    FaultList list;
    if (text == "none") {
        return list;
    }
    while (!text.empty()) {
        const std::size_t comma = std::min(text.find(','), text.size());
        const std::string_view one = text.substr(0, comma);
        text.remove_prefix(std::min(comma + 1, text.size()));
        const auto fault = parseFault(one);
        if (!fault) {
            return {{}, "fault not understood: \"" + std::string(one) + "\""};
        }
        list.faults.push_back(*fault);
    }
    return list;
}

void Faults::set(std::vector<Fault> faults, double now) {
    faults_ = std::move(faults);
    setAt_ = now;
}

bool Faults::strikes(Fault& fault) {
    ++fault.replies;
    return fault.every.share > 0 ? random_.unit() < fault.every.share : fault.replies % fault.every.nth == 0;
}

Fault* Faults::striking(FaultKind kind, Mangled& mangled) {
    Fault* struck = nullptr;
    for (Fault& fault : faults_) {
        if (fault.kind == kind && strikes(fault)) {
            struck = &fault;
        }
    }
    if (struck != nullptr) {
        mangled.note += (mangled.note.empty() ? "" : " ") + std::string(nameOf(kind));
    }
    return struck;
}

bool Faults::isSilent(double now) const {
    return std::any_of(faults_.begin(), faults_.end(), [&](const Fault& fault) {
        const double since = now - setAt_ - fault.seconds;
        return fault.kind == FaultKind::Silent && since >= 0 && since < fault.lasting;
    });
}

std::optional<char> Faults::refusal(std::string_view command) {
    for (const Fault& fault : faults_) {
        if (fault.kind == FaultKind::Refuse && command.starts_with(fault.command)) {
            return fault.letter;
        }
    }
    return std::nullopt;
}

std::optional<double> Faults::closeAfter() const {
    for (const Fault& fault : faults_) {
        if (fault.kind == FaultKind::Close) {
            return fault.seconds;
        }
    }
    return std::nullopt;
}

/// Never a sync byte: noise must not look like the start of a packet.
std::string Faults::garbage(unsigned atLeast, unsigned atMost) {
    std::string bytes(atLeast + random_.below(atMost - atLeast + 1), '\0');
    for (char& byte : bytes) {
        const unsigned value = 1 + random_.below(254);
        byte = static_cast<char>(value < '!' ? value : value + 1);
    }
    return bytes;
}

/// The faults that change a reply's bytes, in the order in which a line would do them: inside first, then
/// around.
void Faults::alter(std::string& packet, Mangled& mangled) {
    if (striking(FaultKind::Corrupt, mangled) != nullptr) {
        const unsigned bit = random_.below(static_cast<unsigned>(packet.size()) * 8);
        packet[bit / 8] = static_cast<char>(packet[bit / 8] ^ (1 << (bit % 8)));
    }
    if (const Fault* cut = striking(FaultKind::Cut, mangled)) {
        const std::size_t part = 1 + random_.below(static_cast<unsigned>(packet.size()) - 1);
        packet.resize(cut->length > 0 ? std::min(cut->length, packet.size()) : part);
    }
    if (striking(FaultKind::Zeros, mangled) != nullptr) {
        for (std::size_t at = packet.size(); at > 0; --at) {
            packet.insert(at, random_.below(3), '\0');
        }
    }
    if (striking(FaultKind::Noise, mangled) != nullptr) {
        packet.insert(0, garbage(1, 8));
    }
    if (striking(FaultKind::Stray, mangled) != nullptr) {
        packet += garbage(1, 1);
    }
}

Mangled Faults::mangle(std::string packet, double now) {
    Mangled mangled;
    if (isSilent(now)) {
        mangled.note = "silent";
        return mangled;
    }
    if (striking(FaultKind::Lose, mangled) != nullptr) {
        return mangled;
    }
    alter(packet, mangled);
    const Fault* late = striking(FaultKind::Late, mangled);
    const double delay = late != nullptr ? late->seconds : 0;
    if (const Fault* split = striking(FaultKind::Split, mangled)) {
        for (const char byte : packet) {
            mangled.pieces.push_back({mangled.pieces.empty() ? delay : split->seconds, std::string(1, byte)});
        }
    } else {
        mangled.pieces.push_back({delay, std::move(packet)});
    }
    return mangled;
}

} // namespace drx9::sim
