#pragma once

#include "fakes/FakeWire.h"
#include "platform/LinkPorts.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace drx9 {

/// A serial port whose other end is `wire`.
class FakeSerial : public SerialControl {
public:
    explicit FakeSerial(FakeEventPump& pump)
        : wire(pump, true) {}

    FakeWire wire;
    std::string refusal; ///< reason with which open() fails; empty: it opens
    int commPort = 0;
    std::string settings;
    int opens = 0; ///< calls of open()
    int calls = 0; ///< calls that change something: shows that a port was not touched

    /// As a port does when its device is unplugged.
    void unplug() { open_ = false; }

    void setCommPort(int port) override;
    void setSettings(const std::string& text) override;
    std::string open() override;
    void close() override;
    [[nodiscard]] bool isOpen() const override { return open_; }
    [[nodiscard]] std::size_t inBufferCount() override { return open_ ? wire.waiting() : 0; }
    void discardInput() override { wire.discard(); }
    std::uint8_t input() override { return static_cast<std::uint8_t>(wire.take(1).at(0)); }
    void output(std::string_view bytes) override;
    [[nodiscard]] std::string deviceName(int port) const override;

private:
    bool open_ = false;
};

/// A TCP socket whose other end is `wire`.
class FakeSocket : public SocketControl {
public:
    explicit FakeSocket(FakeEventPump& pump)
        : wire(pump, true)
        , pump_(pump) {}

    FakeWire wire;
    double connectDelay =
        0;               ///< s from connect() to the connection or the refusal; below 0: nothing ever comes
    std::string refusal; ///< reason with which the connection fails; empty: it comes up
    std::string host;
    int port = 0;
    int connects = 0;

    /// As a socket does when the peer closes it.
    void drop(const std::string& why = "closed by the peer");

    void setRemote(const std::string& remoteHost, int remotePort) override;
    void connect() override;
    [[nodiscard]] int state() const override { return state_; }
    void sendData(std::string_view bytes) override { wire.sent(bytes); }
    [[nodiscard]] std::size_t bytesReceived() override { return wire.waiting(); }
    std::string getData() override { return wire.take(wire.waiting()); }
    void close() override;
    [[nodiscard]] std::string reason() const override { return reason_; }

    // Values of state(), as far as a test tells them apart.
    static constexpr int kClosed = 0;
    static constexpr int kConnecting = 6;
    static constexpr int kError = 9;

private:
    void settle(int attempt);

    FakeEventPump& pump_;
    int state_ = kClosed;
    std::string reason_;
};

/// The USB bridge's library with the attached bridges in `devices`; the open one's other end is `wire`.
class FakeUsb : public UsbBridge {
public:
    explicit FakeUsb(FakeEventPump& pump)
        : wire(pump, false) {}

    static constexpr int kFailure = 3; ///< what a failing call returns

    struct Device {
        std::string product;
        std::string serial;
        bool opens = true; ///< false: held by another program
    };

    FakeWire wire;
    std::vector<Device> devices;
    bool flushFails = false;
    bool writeFails = false;
    bool readFails = false;
    std::function<void()> onCount; ///< runs when the devices are counted; may be empty
    std::uint32_t baud = 0;        ///< last one that was set

    /// Handles that are open, with their device's index.
    [[nodiscard]] const std::map<std::int32_t, std::uint32_t>& handles() const { return handles_; }

    int SI_GetNumDevices(std::uint32_t& count) override;
    int SI_GetProductString(std::uint32_t index, std::string& text, int option) override;
    int SI_Open(std::uint32_t index, std::int32_t& handle) override;
    int SI_SetBaudRate(std::int32_t handle, std::uint32_t rate) override;
    int SI_Close(std::int32_t handle) override;
    int SI_FlushBuffers(std::int32_t handle, std::uint8_t transmit, std::uint8_t receive) override;
    int SI_Write(std::int32_t handle, std::string_view bytes, std::uint32_t& written) override;
    int SI_Read(std::int32_t handle, std::uint8_t* buffer, std::uint32_t count, std::uint32_t& read) override;

private:
    std::int32_t lastHandle_ = 0;
    std::map<std::int32_t, std::uint32_t> handles_;
};

} // namespace drx9
