#pragma once

#include "link/LinkSettings.h"
#include "platform/Clock.h"
#include "platform/EventPump.h"
#include "platform/LinkPorts.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace drx9 {

/// One way to reach the instrument, as the exchange needs it.
class Transport {
public:
    using Feed = std::function<void(std::uint8_t)>;
    using Awaiting = std::function<bool()>;

    virtual ~Transport() = default;
    [[nodiscard]] virtual bool isOpen() = 0;
    /// Drops the bytes that wait, then sends the packet. False when nothing could be sent. What was dropped
    /// is fed to `dropped`, a few thousand bytes at most; nothing on USB, where a flush of the library drops
    /// it.
    virtual bool send(std::string_view packet, const Feed& dropped) = 0;
    /// Feeds what has arrived; RS-232 and USB stop as soon as `awaiting` is false, Ethernet feeds the whole
    /// chunk.
    virtual void receive(const Feed& feed, const Awaiting& awaiting) = 0;
    virtual void close() = 0;
    /// Longest sleep (s) between two looks at a link that cannot wake the event pump by itself, given how
    /// long the wait has lasted; 0 when arriving bytes wake the pump.
    [[nodiscard]] virtual double pollInterval(double waited) const;
};

/// RS-232 over the serial communications control.
class SerialTransport : public Transport {
public:
    explicit SerialTransport(SerialControl& control)
        : control_(control) {}

    [[nodiscard]] bool isOpen() override;
    bool send(std::string_view packet, const Feed& dropped) override;
    void receive(const Feed& feed, const Awaiting& awaiting) override;
    void close() override;
    /// Opens port 1..SerialControl::kPorts with `baud`,N,8,1; any other port is refused without touching the
    /// control. Empty on success, else the reason.
    std::string open(int port, std::int32_t baud);
    /// Device that is present behind a port, for people; empty when there is none.
    [[nodiscard]] std::string deviceName(int port) const { return control_.deviceName(port); }

private:
    SerialControl& control_;
};

/// USB over the bridge's library.
class UsbTransport : public Transport {
public:
    static constexpr std::uint32_t kBaud = 115200; ///< fixed, whatever the Baud setting says
    static constexpr const char* kProduct =
        "83F5";                          ///< tells the instrument's bridge from others of its family
    static constexpr int kProductId = 4; ///< option of SI_GetProductString

    explicit UsbTransport(UsbBridge& bridge)
        : bridge_(bridge) {}

    [[nodiscard]] bool isOpen() override;
    bool send(std::string_view packet, const Feed& dropped) override; ///< a failed write closes the device
    void receive(const Feed& feed, const Awaiting& awaiting) override;
    void close() override;
    [[nodiscard]] double pollInterval(double waited) const override;
    /// Opens device `index` at 115200 baud; false on failure.
    bool open(std::int32_t index);

    /// Bridges with the instrument's product that are attached now, opened by anyone or not. One that does
    /// not tell its product counts: that is one in use. Opens none.
    [[nodiscard]] int attached();
    /// The library itself, for who searches its devices.
    [[nodiscard]] UsbBridge& bridge() { return bridge_; }

private:
    UsbBridge& bridge_;
    std::int32_t handle_ = 0; ///< USBHandle; 0 when closed
};

/// Ethernet over the TCP socket control.
class SocketTransport : public Transport {
public:
    explicit SocketTransport(SocketControl& control)
        : control_(control) {}

    [[nodiscard]] bool isOpen() override;
    bool send(std::string_view packet, const Feed& dropped) override;
    void receive(const Feed& feed, const Awaiting& awaiting) override;
    void close() override;
    /// Connects and waits until connected, refused, abandoned, or 1.0 s have passed: pumps events. True when
    /// connected. `abandon` (may be empty) is asked after each event.
    bool open(const std::string& host, const std::string& port, EventPump& pump, const Clock& clock,
              const std::function<bool()>& abandon = {});
    /// Why the last connection failed or ended, for people; empty when unknown.
    [[nodiscard]] std::string reason() const { return control_.reason(); }

private:
    SocketControl& control_;
};

/// The three links; exactly one is used at a time.
struct Transports {
    SerialTransport serial;
    UsbTransport usb;
    SocketTransport socket;

    [[nodiscard]] Transport& of(LinkType type);
    void closeAll();
};

} // namespace drx9
