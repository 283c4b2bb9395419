#pragma once

#include "link/LinkSettings.h"
#include "util/Tone.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace drx9 {

struct Exchange;

/// What the communications window computes: which controls belong to a link, what its changes mean, what a
/// typed command becomes, and every text that it shows by itself. All texts are UTF-8.

inline constexpr std::array<std::int32_t, 7> kBaudRates = {2400, 4800, 9600, 19200, 38400, 57600, 115200};

/// Entry of the rate or of the port in its list; none where the list does not hold it.
std::optional<std::size_t> baudEntry(std::int32_t baud);
std::optional<std::size_t> portEntry(std::int16_t port);
/// The texts beside the two lists. `device` is the one behind the port, empty where there is none.
std::string deviceText(std::int16_t port, const std::string& device);
std::string baudText(std::int32_t baud);

/// The text below the list of bridges: `listed` of them were found by the last search.
std::string bridgeText(int listed, int attached);
/// The text beside the list; `chosen` is the serial number that is set, `isListed` when the list has it.
std::string serialNumberText(int listed, bool isListed, const std::string& chosen);

/// The bottom line.
struct CommState {
    std::string text;
    Tone tone = Tone::Plain;
    bool operator==(const CommState&) const = default;
};

/// What the link is known to do, from the window's opening to its close.
class CommSetup {
public:
    /// What the link itself says.
    struct Facts {
        bool ok = false;     ///< Link::CommOK
        std::string version; ///< Link::Comm_VersionText
        bool open = true;    ///< port, device or socket of the chosen link
        bool operator==(const Facts&) const = default;
    };

    /// `failure` is why the link is not on line; empty when unknown.
    CommSetup(const LinkSettings& opened, const Facts& facts, const std::string& failure);

    /// The instrument was looked for with these settings; `failure` is empty when it was found. Where it was
    /// found the link is the one that this window was opened with.
    void searched(const LinkSettings& settings, const std::string& failure);
    /// The serial port was opened for a change of the list; `reason` when it refused.
    void portOpened(std::int16_t port, const std::string& reason);

    [[nodiscard]] CommState state(const LinkSettings& now, const Facts& facts) const;
    /// After a command that nobody answered.
    [[nodiscard]] static CommState silence(const LinkSettings& now, const Facts& facts);
    /// After a command that was answered with status 0; `hasData` when there is a reply to show.
    [[nodiscard]] CommState answered(const LinkSettings& now, const Facts& facts, bool hasData) const;

    /// On close: the link has to be opened again, because it had been good or is another one now.
    [[nodiscard]] bool reopens(const LinkSettings& now, const Facts& facts) const;
    [[nodiscard]] bool isSameLink(const LinkSettings& now) const;

private:
    LinkSettings opened_;
    LinkSettings searched_; ///< what the link's own facts and the failure are about
    std::string failure_;
    bool wasGood_;
    std::string refusal_; ///< of the serial port; empty when it opened
};

/// A command as it was typed.
struct RawCommand {
    std::string bytes;        ///< Windows-1252
    std::string refusal;      ///< why it cannot be framed; empty when it can
    bool changesFilm = false; ///< selects a film or resets the film memory
};
RawCommand rawCommand(const std::string& typed);

/// What the response box shows: the reply, or the status in words.
std::string responseText(const Exchange& exchange);

} // namespace drx9
