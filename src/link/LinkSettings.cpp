#include "link/LinkSettings.h"

#include "util/Text.h"

namespace drx9 {

std::string linkName(const LinkSettings& settings) {
    switch (settings.CommType) {
    case LinkType::Usb:
        return "USB " + settings.USBSerNum;
    case LinkType::Ethernet:
        return settings.EAddress + ":" + settings.EPort;
    default:
        return "COM" + std::to_string(settings.Port) + " at " + std::to_string(settings.Baud);
    }
}

bool sameInstrument(const LinkSettings& a, const LinkSettings& b) {
    if (knownLink(a.CommType) != knownLink(b.CommType)) {
        return false;
    }
    switch (a.CommType) {
    case LinkType::Usb:
        return equalNoCase(a.USBSerNum, b.USBSerNum);
    case LinkType::Ethernet:
        return a.EAddress == b.EAddress && a.EPort == b.EPort;
    default:
        return a.Port == b.Port;
    }
}

bool sameLink(const LinkSettings& a, const LinkSettings& b) {
    const bool hasRate = knownLink(a.CommType) == LinkType::Serial;
    return sameInstrument(a, b) && (!hasRate || a.Baud == b.Baud);
}

} // namespace drx9
