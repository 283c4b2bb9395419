#pragma once

#include "fakes/FakeWire.h"
#include "platform/LinkPorts.h"

#include <algorithm>
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
    std::string settings;
    int calls = 0; ///< calls that change something: shows that a port was not touched

    void setCommPort(int port) override {
        ++calls;
        number = port;
    }
    void setSettings(const std::string& text) override {
        ++calls;
        settings = text;
    }
    std::string open() override {
        ++calls;
        open_ = refusal.empty();
        return refusal;
    }
    void close() override {
        ++calls;
        open_ = false;
    }
    [[nodiscard]] bool isOpen() const override { return open_; }
    [[nodiscard]] std::size_t inBufferCount() override { return open_ ? wire.waiting() : 0; }
    void discardInput() override { wire.discard(); }
    std::uint8_t input() override { return static_cast<std::uint8_t>(wire.take(1).at(0)); }
    void output(std::string_view bytes) override {
        if (open_) {
            wire.sent(bytes);
        }
    }
    [[nodiscard]] std::string deviceName(int port) const override {
        const auto given = devices.find(port);
        return given == devices.end() ? "/dev/fake" + std::to_string(port) : given->second;
    }
    std::map<int, std::string> devices; ///< behind COMn; "/dev/faken" where none is given
    int number = 0;                     ///< last one that was set

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
    /// s from connect() to the connection or the refusal; below 0: nothing ever comes
    double connectDelay = 0;
    std::string refusal; ///< reason with which the connection fails; empty: it comes up
    std::string host;
    int port = 0;
    int connects = 0;

    /// As a socket does when the peer closes it.
    void drop() { settle(kError, "closed by the peer"); }

    void setRemote(const std::string& remoteHost, int remotePort) override {
        host = remoteHost;
        port = remotePort;
    }
    void connect() override {
        state_ = kConnecting;
        reason_.clear();
        const auto answered = [this, attempt = ++connects] {
            if (attempt == connects && state_ == kConnecting) {
                settle(refusal.empty() ? kConnected : kError, refusal);
            }
        };
        if (connectDelay == 0) {
            answered();
        } else if (connectDelay > 0) {
            pump_.atTime(pump_.clock().monotonic() + connectDelay, answered);
        }
    }
    [[nodiscard]] int state() const override { return state_; }
    void sendData(std::string_view bytes) override { wire.sent(bytes); }
    [[nodiscard]] std::size_t bytesReceived() override { return wire.waiting(); }
    std::string getData() override { return wire.take(wire.waiting()); }
    void close() override {
        state_ = kClosed;
        wire.discard();
    }
    [[nodiscard]] std::string reason() const override { return reason_; }

private:
    enum : int { kClosed = 0, kConnecting = 6, kError = 9 };

    void settle(int state, const std::string& why) {
        state_ = state;
        reason_ = why;
        pump_.wake();
    }

    FakeEventPump& pump_;
    int state_ = kClosed;
    std::string reason_;
};

/// The USB bridge's library with the attached bridges in `devices`; the open one's other end is `wire`.
class FakeUsb : public UsbBridge {
public:
    explicit FakeUsb(FakeEventPump& pump)
        : wire(pump, false) {}

    struct Device {
        std::string product;
        std::string serial;
        bool opens = true; ///< false: held by another program
    };

    FakeWire wire;
    std::vector<Device> devices;
    bool flushFails = false;
    bool writeFails = false;
    std::uint32_t baud = 0; ///< last one that was set

    /// Handles that are open, with their device's index.
    [[nodiscard]] const std::map<std::int32_t, std::uint32_t>& handles() const { return handles_; }

    int SI_GetNumDevices(std::uint32_t& count) override {
        count = static_cast<std::uint32_t>(devices.size());
        return 0;
    }
    int SI_GetProductString(std::uint32_t index, std::string& text, int option) override {
        if (index >= devices.size()) {
            return kFailure;
        }
        text = option == 4 ? devices[index].product : devices[index].serial;
        return 0;
    }
    int SI_Open(std::uint32_t index, std::int32_t& handle) override {
        const auto taken = std::any_of(handles_.begin(), handles_.end(),
                                       [index](const auto& entry) { return entry.second == index; });
        if (index >= devices.size() || !devices[index].opens || taken) {
            return kFailure;
        }
        handle = ++lastHandle_;
        handles_[handle] = index;
        return 0;
    }
    int SI_SetBaudRate(std::int32_t handle, std::uint32_t rate) override {
        baud = rate;
        return result(handle);
    }
    int SI_Close(std::int32_t handle) override { return handles_.erase(handle) != 0 ? 0 : kFailure; }
    int SI_FlushBuffers(std::int32_t handle, std::uint8_t, std::uint8_t receive) override {
        if (receive != 0 && result(handle, flushFails) == 0) {
            wire.discard();
        }
        return result(handle, flushFails);
    }
    int SI_Write(std::int32_t handle, std::string_view bytes, std::uint32_t& written) override {
        if (result(handle, writeFails) == 0) {
            wire.sent(bytes);
            written = static_cast<std::uint32_t>(bytes.size());
        }
        return result(handle, writeFails);
    }
    int SI_Read(std::int32_t handle, std::uint8_t* buffer, std::uint32_t count,
                std::uint32_t& read) override {
        const std::string bytes = wire.take(result(handle) == 0 ? count : 0);
        std::copy(bytes.begin(), bytes.end(), buffer);
        read = static_cast<std::uint32_t>(bytes.size());
        return result(handle);
    }
    [[nodiscard]] std::string reason() const override { return why; }
    std::string why; ///< a device did not open

private:
    static constexpr int kFailure = 3; ///< what a failing call returns

    [[nodiscard]] int result(std::int32_t handle, bool fails = false) const {
        return fails || handles_.count(handle) == 0 ? kFailure : 0;
    }

    std::int32_t lastHandle_ = 0;
    std::map<std::int32_t, std::uint32_t> handles_;
};

} // namespace drx9
