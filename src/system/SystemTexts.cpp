#include "system/SystemTexts.h"

#include "link/Link.h"

namespace drx9 {

std::string saveFailureText(bool onLine, bool second, std::uint16_t status) {
    std::string record = second ? systemText::kSecondRecord : systemText::kFirstRecord;
    const std::string reason = commStatusText(status);
    if (onLine) {
        return record + systemText::kNotAccepted + reason;
    }
    record.replace(0, 1, second ? "s" : "f");
    return systemText::kOffLine + record + systemText::kNotSent + reason;
}

std::string markText(bool known, const std::string& value, const std::string& unit) {
    return (known ? systemText::kInstrumentHolds : systemText::kProgramHolds) + value +
           (unit.empty() ? "" : " " + unit) + systemText::kKeptUnlessChanged;
}

SystemStateLine stateLine(const SystemState& state) {
    using Tone = SystemStateLine::Tone;
    if (state.sending) {
        return {systemText::kSending, Tone::Plain};
    }
    if (!state.refused.empty()) {
        return {state.refused, Tone::Warn};
    }
    if (!state.failure.empty()) {
        return {state.failure, Tone::Alarm};
    }
    if (!state.known) {
        return {systemText::kNotRead, Tone::Warn};
    }
    if (state.changed) {
        return {systemText::kChanged, Tone::Warn};
    }
    return {state.sentAt.empty() ? "" : systemText::kSent + state.sentAt, Tone::Plain};
}

} // namespace drx9
