#pragma once

#include "util/Tone.h"

#include <cstdint>
#include <string>

namespace drx9 {

/// Why a save failed: "Second record not accepted: Timeout", "Off line: first record not sent: Timeout".
/// `status` is of the exchange that failed.
std::string saveFailureText(bool onLine, bool second, std::uint16_t status);

/// The mark's tooltip: "The DRX-9 holds .2537 s. ..."; `known` when the record is the instrument's, else it
/// is the program's own. `unit` may be empty.
std::string markText(bool known, const std::string& value, const std::string& unit);

/// What the bottom line is made from.
struct SystemState {
    bool sending = false;
    std::string refused; ///< what was typed and not taken; empty when nothing
    std::string failure; ///< of the last save; empty when it succeeded or there was none
    bool known = false;  ///< the record was read from the instrument, or sent to it
    bool changed = false;
    std::string sentAt; ///< time of day of the last save; empty before the first
};

struct SystemStateLine {
    std::string text;
    Tone tone = Tone::Plain;
};

/// The gravest of what there is to say.
SystemStateLine stateLine(const SystemState& state);

} // namespace drx9
