#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace drx9 {

/// The serial communications control. Failures are told by a reason for people, empty on success. A port that
/// reports a fault while open (device unplugged) is closed by the implementation outside its own signal;
/// isOpen() is false from then on and no event of it arrives any more. Arriving bytes wake the event pump.
class SerialControl {
public:
    static constexpr int kPorts = 9; ///< "COM1" to "COM9"
    static constexpr bool isPort(int port) { return port >= 1 && port <= kPorts; }

    virtual ~SerialControl() = default;
    virtual void setCommPort(int port) = 0; ///< 1..kPorts, the number of the list entry "COMn"
    virtual void setSettings(const std::string& settings) = 0; ///< "19200,N,8,1"
    /// Opens exclusively: no handshake, binary, 2048 bytes of input buffer, DTR and RTS options off.
    virtual std::string open() = 0;
    virtual void close() = 0;
    [[nodiscard]] virtual bool isOpen() const = 0;
    [[nodiscard]] virtual std::size_t inBufferCount() = 0;
    virtual void discardInput() = 0;
    /// Takes one byte; only called when inBufferCount() is at least 1.
    virtual std::uint8_t input() = 0;
    virtual void output(std::string_view bytes) = 0;
    /// Device that is present behind COMn, for people ("/dev/ttyUSB0"); empty when there is none.
    [[nodiscard]] virtual std::string deviceName(int port) const = 0;
};

/// The TCP socket control. Arriving bytes and state changes wake the event pump. A socket that reports an
/// error or is closed by the peer leaves state Connected.
class SocketControl {
public:
    static constexpr int kConnected = 7;

    virtual ~SocketControl() = default;
    virtual void setRemote(const std::string& host, int port) = 0;
    virtual void connect() = 0;                  ///< starts connecting and returns
    [[nodiscard]] virtual int state() const = 0; ///< kConnected or another value
    virtual void sendData(std::string_view bytes) = 0;
    [[nodiscard]] virtual std::size_t bytesReceived() = 0;
    virtual std::string getData() = 0; ///< all bytes that wait
    virtual void close() = 0;
    /// Why the last connection failed or ended, for people; empty when unknown.
    [[nodiscard]] virtual std::string reason() const = 0;
};

/// The USB-to-UART bridge's library, or bridges that the system shows as serial ports where the library is
/// absent. All functions return the library's status, 0 = success.
class UsbBridge {
public:
    virtual ~UsbBridge() = default;
    virtual int SI_GetNumDevices(std::uint32_t& count) = 0;
    /// option 0: serial number, option 4: product identifier as four hexadecimal digits. `text` ends at the
    /// first zero, at most 255 characters.
    virtual int SI_GetProductString(std::uint32_t index, std::string& text, int option) = 0;
    /// Handles are numbers above 0.
    virtual int SI_Open(std::uint32_t index, std::int32_t& handle) = 0;
    virtual int SI_SetBaudRate(std::int32_t handle, std::uint32_t baud) = 0;
    virtual int SI_Close(std::int32_t handle) = 0;
    virtual int SI_FlushBuffers(std::int32_t handle, std::uint8_t transmit, std::uint8_t receive) = 0;
    virtual int SI_Write(std::int32_t handle, std::string_view bytes, std::uint32_t& written) = 0;
    /// Returns at once with what waits, at most `count` bytes, into `buffer`.
    virtual int SI_Read(std::int32_t handle, std::uint8_t* buffer, std::uint32_t count,
                        std::uint32_t& read) = 0;
    /// True once an open device is found to be gone. A bridge that cannot tell says false: the next write
    /// fails.
    [[nodiscard]] virtual bool isGone(std::int32_t /*handle*/) const { return false; }
    /// Why a device did not open since they were last counted, for people; empty when unknown.
    [[nodiscard]] virtual std::string reason() const { return {}; }
};

} // namespace drx9
