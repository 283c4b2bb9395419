#pragma once

/// What the system parameters window tells the operator, apart from captions. "{}" stands for what `filled`
/// puts in. Each has an entry in the manual.
namespace drx9::systemText {

inline constexpr const char* kHoldReason = "System Parameters is open";
inline constexpr const char* kFrequenciesTooClose = "Min. Freq too close to Max Freq.";
inline constexpr const char* kChanged = "Changed here, not sent to the DRX-9 yet";
inline constexpr const char* kNotRead = "Not read from the DRX-9. Save overwrites its values.";
inline constexpr const char* kSending = "Sending";
inline constexpr const char* kSent = "Sent {}";
inline constexpr const char* kFirstNotAccepted = "First record not accepted: {}";
inline constexpr const char* kSecondNotAccepted = "Second record not accepted: {}";
inline constexpr const char* kFirstNotSent = "Off line: first record not sent: {}";
inline constexpr const char* kSecondNotSent = "Off line: second record not sent: {}";
inline constexpr const char* kTakes = "{} takes {}"; ///< a field's label, what may be typed
inline constexpr const char* kRange = "{} to {}";
inline constexpr const char* kInstrumentHolds =
    "The DRX-9 holds {}. Save sends this unless it is changed here.";
inline constexpr const char* kProgramHolds =
    "The program holds {}. Save sends this unless it is changed here.";

} // namespace drx9::systemText
