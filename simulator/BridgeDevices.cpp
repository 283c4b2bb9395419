#include "simulator/BridgeDevices.h"

#include <algorithm>

namespace drx9::sim {

namespace {
constexpr std::size_t kLongestText = 255;

std::string_view takeUntil(std::string_view& rest, char separator) {
    const std::size_t end = std::min(rest.find(separator), rest.size());
    const std::string_view part = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return part;
}

void replaceUnlessEmpty(std::string& text, std::string_view by) {
    if (!by.empty()) {
        text = by.substr(0, kLongestText);
    }
}
} // namespace

std::vector<BridgeDevice> bridgeDevices(std::string_view list) {
    std::vector<BridgeDevice> devices;
    while (!list.empty()) {
        std::string_view entry = takeUntil(list, ';');
        const std::string_view address = takeUntil(entry, ',');
        const std::size_t colon = address.rfind(':');
        if (colon == std::string_view::npos || colon == 0 || colon + 1 == address.size()) {
            continue;
        }
        BridgeDevice device{std::string(address.substr(0, colon)), std::string(address.substr(colon + 1))};
        replaceUnlessEmpty(device.serial, takeUntil(entry, ','));
        replaceUnlessEmpty(device.product, takeUntil(entry, ','));
        devices.push_back(std::move(device));
    }
    return devices;
}

} // namespace drx9::sim
