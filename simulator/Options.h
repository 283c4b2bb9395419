#pragma once

#include <optional>
#include <string>
#include <vector>

#include "simulator/Simulator.h"

namespace drx9::sim {

struct TcpAddress {
    std::string host = "127.0.0.1";
    std::string port = "2101"; ///< "0": any free port
};

struct Options {
    SimulatorOptions simulator;
    std::optional<TcpAddress> tcp;
    bool pty = false;
    std::string ptyLink; ///< path of the symbolic link to the pseudo-terminal; empty = none
    bool trace = false;
    std::string traceFile; ///< empty = standard error
    bool quiet = false;
    bool help = false;
    bool version = false;
    std::string error; ///< empty when everything was understood; else what was not, for people
};

/// Reads the command line (without the program's name). With neither link asked for, TCP on its default port.
Options parseOptions(const std::vector<std::string>& arguments);

/// What --help prints.
std::string helpText();

} // namespace drx9::sim
