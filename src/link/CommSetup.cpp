#include "link/CommSetup.h"

#include "link/Crc.h"
#include "link/Link.h"
#include "link/Texts.h"
#include "platform/LinkPorts.h"
#include "util/Text.h"
#include "util/Utf.h"

#include <algorithm>

namespace drx9 {

namespace {
/// First character of well-formed UTF-8 that Windows-1252 does not hold; empty when it holds all.
std::string firstStranger(const std::string& text) {
    for (std::size_t at = 0; at < text.size();) {
        std::size_t end = at + 1;
        while (end < text.size() && continuesCharacter(text[end])) {
            ++end;
        }
        std::string character = text.substr(at, end - at);
        if (utf8FromAnsi(ansiFromUtf8(character)) != character) {
            return character;
        }
        at = end;
    }
    return {};
}
} // namespace

std::optional<std::size_t> baudEntry(std::int32_t baud) {
    const auto* const found = std::find(kBaudRates.begin(), kBaudRates.end(), baud);
    return found == kBaudRates.end() ? std::nullopt
                                     : std::optional(static_cast<std::size_t>(found - kBaudRates.begin()));
}

std::optional<std::size_t> portEntry(std::int16_t port) {
    return SerialControl::isPort(port) ? std::optional(static_cast<std::size_t>(port) - 1) : std::nullopt;
}

std::string deviceText(std::int16_t port, const std::string& device) {
    if (!portEntry(port)) {
        return filled(linkText::kOtherPortSet, {std::to_string(port)});
    }
    return device.empty() ? linkText::kNoDevice : device;
}

std::string baudText(std::int32_t baud) {
    return baudEntry(baud) ? linkText::kBaud : filled(linkText::kOtherBaudSet, {std::to_string(baud)});
}

std::string bridgeText(int listed, int attached) {
    const char* const count = attached == 0   ? linkText::kNoBridges
                              : attached == 1 ? linkText::kOneBridge
                                              : linkText::kBridges;
    const std::string text = filled(count, {std::to_string(attached)});
    return attached == listed ? text : text + filled(linkText::kListed, {std::to_string(listed)});
}

std::string serialNumberText(int listed, bool isListed, const std::string& chosen) {
    if (listed == 0 || isListed) {
        return linkText::kSerialNumber;
    }
    return filled(linkText::kOtherNumberSet, {chosen});
}

CommSetup::CommSetup(const LinkSettings& opened, const Facts& facts, const std::string& failure)
    : opened_(opened)
    , searched_(opened)
    , failure_(failure)
    , wasGood_(facts.ok) {}

void CommSetup::searched(const LinkSettings& settings, const std::string& failure) {
    searched_ = settings;
    failure_ = failure;
    refusal_.clear();
    if (failure.empty()) {
        opened_ = settings;
        wasGood_ = true;
    }
}

void CommSetup::portOpened(std::int16_t port, const std::string& reason) {
    refusal_ =
        reason.empty() ? reason : filled(linkText::kPortNotAvailableBecause, {std::to_string(port), reason});
}

CommState CommSetup::state(const LinkSettings& now, const Facts& facts) const {
    if (knownLink(now.CommType) == LinkType::Serial && !refusal_.empty()) {
        return {filled(linkText::kOffLine, {refusal_}), Tone::Alarm};
    }
    if (!sameLink(searched_, now)) {
        return {filled(linkText::kNotTried, {linkName(now)}), Tone::Plain};
    }
    if (facts.ok && !facts.open) {
        return {filled(linkText::kNoLongerOpen, {linkName(now)}), Tone::Alarm};
    }
    if (facts.ok) {
        return {facts.version.empty() ? linkText::kOnLine : filled(linkText::kOnLineVersion, {facts.version}),
                Tone::Plain};
    }
    return {failure_.empty() ? filled(linkText::kNoAnswer, {linkName(now)})
                             : filled(linkText::kOffLine, {failure_}),
            Tone::Alarm};
}

CommState CommSetup::silence(const LinkSettings& now, const Facts& facts) {
    if (facts.ok && facts.open) {
        return {filled(linkText::kNoAnswerToCommand, {linkName(now)}), Tone::Warn};
    }
    return {filled(linkText::kNoAnswer, {linkName(now)}), Tone::Alarm};
}

CommState CommSetup::answered(const LinkSettings& now, const Facts& facts, bool hasData) const {
    const CommState known = state(now, facts);
    if (known.tone != Tone::Plain || !sameLink(searched_, now)) {
        return {linkText::kAnswers, Tone::Plain};
    }
    return hasData ? known : CommState{linkText::kAccepted, Tone::Plain};
}

bool CommSetup::reopens(const LinkSettings& now, const Facts& facts) const {
    return wasGood_ || facts.ok || !isSameLink(now);
}

bool CommSetup::isSameLink(const LinkSettings& now) const {
    return sameLink(opened_, now);
}

RawCommand rawCommand(const std::string& typed) {
    RawCommand command;
    const std::string stranger = firstStranger(typed);
    command.bytes = ansiFromUtf8(typed);
    if (!stranger.empty()) {
        command.refusal = filled(linkText::kStrangeCharacter, {stranger});
    } else if (command.bytes.size() > kLongestCommand) {
        command.refusal = filled(linkText::kTooLong,
                                 {std::to_string(command.bytes.size()), std::to_string(kLongestCommand)});
    }
    const std::size_t first = command.bytes.find_first_not_of(' ');
    const std::string letter = first == std::string::npos ? "" : upperAscii(command.bytes.substr(first, 1));
    command.changesFilm = letter == "D" || letter == "Z";
    return command;
}

std::string responseText(const Exchange& exchange) {
    return exchange.ok() ? utf8FromAnsi(exchange.reply) : commStatusText(exchange.status);
}

} // namespace drx9
