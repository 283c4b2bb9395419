#pragma once

#include <cstdint>
#include <string>

namespace drx9 {

/// The ways to the instrument, by the numbers of the settings file.
enum class LinkType : std::int16_t { Serial = 0, Usb = 1, Ethernet = 2 };

/// Any other number counts as RS-232.
constexpr LinkType knownLink(LinkType stored) {
    return stored == LinkType::Usb || stored == LinkType::Ethernet ? stored : LinkType::Serial;
}

/// The link's settings as the settings file keeps them; changed by the communications window and by the
/// adoption of a single USB bridge.
struct LinkSettings {
    LinkType CommType = LinkType::Serial; ///< the file's number, also another than these
    std::int32_t Baud = 19200;
    std::int16_t Port = 1; ///< COMn
    std::string USBSerNum = "0";
    std::string EPort = "2101";
    std::string EAddress = "192.168.1.200";
};

/// "COM3 at 19200", "USB 0A7C21", "192.168.1.200:2101".
std::string linkName(const LinkSettings& settings);
/// True when both lead to the same port, bridge or address; the settings of the links that are not chosen do
/// not count, nor do the rate and the case of a serial number.
bool sameInstrument(const LinkSettings& a, const LinkSettings& b);
/// The same, at the same rate.
bool sameLink(const LinkSettings& a, const LinkSettings& b);

} // namespace drx9
