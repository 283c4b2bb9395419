#include "system/SystemState.h"

#include "link/Link.h"
#include "system/Texts.h"
#include "util/Text.h"

namespace drx9 {

std::string saveFailureText(bool onLine, bool second, std::uint16_t status) {
    const char* const text = onLine ? second ? systemText::kSecondNotAccepted : systemText::kFirstNotAccepted
                             : second ? systemText::kSecondNotSent
                                      : systemText::kFirstNotSent;
    return filled(text, {commStatusText(status)});
}

std::string markText(bool known, const std::string& value, const std::string& unit) {
    return filled(known ? systemText::kInstrumentHolds : systemText::kProgramHolds,
                  {unit.empty() ? value : value + " " + unit});
}

SystemStateLine stateLine(const SystemState& state) {
    if (state.sending) {
        return {systemText::kSending, Tone::Plain};
    }
    if (!state.failure.empty()) {
        return {state.failure + (state.refused.empty() ? "" : ". " + state.refused), Tone::Alarm};
    }
    if (!state.refused.empty()) {
        return {state.refused, Tone::Warn};
    }
    if (!state.known) {
        return {systemText::kNotRead, Tone::Warn};
    }
    if (state.changed) {
        return {systemText::kChanged, Tone::Warn};
    }
    return {state.sentAt.empty() ? "" : filled(systemText::kSent, {state.sentAt}), Tone::Plain};
}

} // namespace drx9
