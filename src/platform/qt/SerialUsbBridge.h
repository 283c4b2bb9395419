#pragma once

#include "platform/LinkPorts.h"

#include <QSerialPort>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace drx9 {

/// A bridge that the system shows as a serial port.
struct BridgePort {
    std::string device;
    std::string serialNumber;
};

/// The serial ports whose USB product identifier is that of the instrument's bridge.
std::vector<BridgePort> presentBridgePorts();

/// Bridges driven as serial ports, with the library's results.
class SerialUsbBridge : public UsbBridge {
public:
    using Lister = std::function<std::vector<BridgePort>()>;

    static constexpr int kSuccess = 0;
    static constexpr int kInvalidHandle = 1;
    static constexpr int kReadError = 2;
    static constexpr int kWriteError = 4;
    static constexpr int kInvalidParameter = 6;
    static constexpr int kIoFailed = 8;
    static constexpr int kInvalidBaud = 9;
    static constexpr int kNotFound = 255;

    /// `lister` tells the bridges that are plugged in; asked by SI_GetNumDevices only, so that an index means
    /// the same device from one count to the next.
    explicit SerialUsbBridge(Lister lister);
    ~SerialUsbBridge() override;

    int SI_GetNumDevices(std::uint32_t& count) override;
    int SI_GetProductString(std::uint32_t index, std::string& text, int option) override;
    int SI_Open(std::uint32_t index, std::int32_t& handle) override;
    int SI_SetBaudRate(std::int32_t handle, std::uint32_t baud) override;
    int SI_Close(std::int32_t handle) override;
    int SI_FlushBuffers(std::int32_t handle, std::uint8_t transmit, std::uint8_t receive) override;
    int SI_Write(std::int32_t handle, std::string_view bytes, std::uint32_t& written) override;
    int SI_Read(std::int32_t handle, std::uint8_t* buffer, std::uint32_t count, std::uint32_t& read) override;
    [[nodiscard]] bool isGone(std::int32_t handle) const override { return portOf(handle) == nullptr; }
    [[nodiscard]] std::string reason() const override { return reason_; }

private:
    struct Open {
        std::unique_ptr<QSerialPort> port;
        bool gone = false; ///< the device reported a fault; the port is closed from the event loop
    };

    /// The open port of a handle; null when it is none or its device has gone.
    QSerialPort* portOf(std::int32_t handle) const;

    Lister lister_;
    std::vector<BridgePort> devices_;
    std::map<std::int32_t, std::unique_ptr<Open>> open_;
    std::int32_t lastHandle_ = 0;
    std::string reason_;
};

} // namespace drx9
