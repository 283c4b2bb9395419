#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace drx9 {

/// Texts of the system parameters window that tell something, apart from its captions.
namespace systemText {
inline constexpr const char* kHoldReason = "System Parameters is open";
inline constexpr const char* kFrequenciesTooClose = "Min. Freq too close to Max Freq.";
inline constexpr const char* kChanged = "Changed here, not sent to the DRX-9 yet";
inline constexpr const char* kNotRead = "Not read from the DRX-9. Save overwrites its values.";
inline constexpr const char* kSending = "Sending";
inline constexpr const char* kSent = "Sent "; ///< then the time of day
inline constexpr const char* kFirstRecord = "First record";
inline constexpr const char* kSecondRecord = "Second record";
inline constexpr const char* kNotAccepted = " not accepted: "; ///< behind the record, before the status text
inline constexpr const char* kNotSent = " not sent: ";         ///< the same off line
inline constexpr const char* kOffLine = "Off line: ";
inline constexpr const char* kTakes = " takes "; ///< behind a field's label, before what may be typed
inline constexpr const char* kInstrumentHolds = "The DRX-9 holds ";
inline constexpr const char* kProgramHolds = "The program holds ";
inline constexpr const char* kKeptUnlessChanged = ". Save sends this unless it is changed here.";
} // namespace systemText

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
    enum class Tone { Plain, Warn, Alarm };
    std::string text;
    Tone tone = Tone::Plain;
};

/// The gravest of what there is to say.
SystemStateLine stateLine(const SystemState& state);

} // namespace drx9
