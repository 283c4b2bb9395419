#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/Faults.h"
#include "simulator/Instrument.h"
#include "simulator/Line.h"

namespace drx9::sim {

struct SimulatorOptions {
    InstrumentOptions instrument;
    double speed = 1;  ///< simulated seconds a second
    unsigned baud = 0; ///< pace of every line; 0 = none
    std::vector<Fault> faults;
};

/// One instrument behind any number of lines, with its faults, its count of commands and its trace. Opens
/// nothing and waits for nothing: whoever owns the links moves the bytes and tells the time, in seconds since
/// the start.
class Simulator : public Responder {
public:
    /// Called with one line of text (no line end) for each exchange.
    using TraceSink = std::function<void(const std::string&)>;

    /// `trace` may be empty.
    Simulator(const SimulatorOptions& options, TraceSink trace);

    /// A new connection over the link `name` ("tcp", "pty"); it must not outlive the simulator.
    Line openLine(std::string name, double now);
    /// When a connection made at `openedAt` is to be dropped; kNever when it is not.
    double dropTime(const Line& line) const;

    std::vector<Piece> respond(const std::string& command, std::string_view name, double now) override;
    void badPacket(std::string_view name, double now) override;

    /// These and no others: a crystal that an earlier list made fail works again.
    void setFaults(std::vector<Fault> faults, double now);
    void failCrystal(int sensor, CrystalFailure kind, double now);
    void mendCrystal(int sensor, double now);
    void setShutter(bool open, double now);

    /// How often the command `text` came; with "*" at its end, all that begin so; "" or "*" is every command.
    unsigned count(std::string_view text) const;
    void resetCounts();

    /// Simulated seconds at `now`.
    double simulated(double now) const { return now * options_.speed; }
    Instrument& instrument() { return instrument_; }

private:
    void tell(std::string_view name, double now, std::string_view command, const Reply& reply,
              std::string_view note);
    void tally(const std::string& command);

    SimulatorOptions options_;
    TraceSink trace_;
    Instrument instrument_;
    Faults faults_;
    std::map<std::string, unsigned, std::less<>> counts_; ///< by the first characters of a command
    unsigned total_ = 0;
};

} // namespace drx9::sim
