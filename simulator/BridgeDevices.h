#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace drx9::sim {

/// One USB bridge that seems to be attached, and the simulated instrument behind it.
struct BridgeDevice {
    std::string host;
    std::string port;
    std::string serial = "0A7C21";
    std::string product = "83F5";
};

/// Reads "HOST:PORT[,serial[,product]]" entries separated by ";". An entry without a host or port is left
/// out; texts are cut to 255 bytes.
std::vector<BridgeDevice> bridgeDevices(std::string_view list);

} // namespace drx9::sim
