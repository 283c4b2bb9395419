#pragma once

#include <string>
#include <string_view>

#include "simulator/Simulator.h"

namespace drx9::sim {

/// What a line of control asks of whoever owns the links.
enum class LinkAction {
    None,
    Drop,   ///< end every connection; new ones are welcome
    Unplug, ///< end every connection and take the links away
    Plug,   ///< offer the links again, under the same names
    Quit
};

struct ControlAnswer {
    std::string text; ///< one line or several, no line end: "ok ...", or "error: ..."
    LinkAction action = LinkAction::None;
};

/// Carries out one line typed at the running program ("faults lose=5", "drop", "count P1", "quit"); "help"
/// lists them. A blank line gets an empty answer, which is not to be printed.
ControlAnswer control(Simulator& simulator, std::string_view line, double now);

} // namespace drx9::sim
