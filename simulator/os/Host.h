#pragma once

#include "simulator/Options.h"
#include "simulator/Simulator.h"

namespace drx9::sim {

/// Offers `simulator` over the links that `options` asks for, tells on standard output where ("tcp
/// HOST:PORT", "pty PATH"), takes control lines from standard input and answers them on standard output,
/// until told to end by a control line or a signal. Sleeps while nothing is due. Returns the program's exit
/// status; a link that cannot be offered at the start is said on standard error and ends it with 1.
int runHost(Simulator& simulator, const Options& options);

} // namespace drx9::sim
