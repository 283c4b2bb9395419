#include "link/Transports.h"

#include "link/Texts.h"
#include "util/Numbers.h"
#include "util/Text.h"

#include <algorithm>
#include <array>

namespace drx9 {

namespace {
constexpr std::uint32_t kUsbChunk = 252; // bytes that one read of the bridge asks for
constexpr double kConnectLimit = 1.0;    // s
constexpr int kMostDropped = 4096;       // bytes: a port that is flooded must not hold up the sending

// States of the socket control in which nothing more is to be waited for.
constexpr int kSocketClosed = 0;
constexpr int kSocketFailed = 9;

// The bridge wakes nobody. Looks are spaced by an eighth of the time waited so far, within these limits: a
// prompt answer is seen at once, a late one at most an eighth later, and a whole second costs some seventy
// looks.
constexpr double kShortestPoll = 0.001;
constexpr double kLongestPoll = 0.02;
constexpr double kPollShare = 8;
} // namespace

double Transport::pollInterval(double) const {
    return 0;
}

bool SerialTransport::isOpen() {
    return control_.isOpen();
}

bool SerialTransport::send(std::string_view packet, const Feed& dropped) {
    if (!control_.isOpen()) {
        return false;
    }
    int left = kMostDropped;
    receive(dropped, [&left] { return left-- > 0; });
    control_.discardInput();
    control_.output(packet);
    return true;
}

void SerialTransport::receive(const Feed& feed, const Awaiting& awaiting) {
    while (awaiting() && control_.isOpen() && control_.inBufferCount() >= 1) {
        feed(control_.input());
    }
}

void SerialTransport::close() {
    if (control_.isOpen()) {
        control_.close();
    }
}

std::string SerialTransport::open(int port, std::int32_t baud) {
    if (!SerialControl::isPort(port)) {
        return linkText::kOnlyNinePorts;
    }
    close();
    control_.setCommPort(port);
    control_.setSettings(std::to_string(baud) + ",N,8,1");
    const std::string reason = control_.open();
    return !reason.empty() || control_.isOpen() ? reason : linkText::kPortClosed;
}

bool UsbTransport::isOpen() {
    return handle_ > 0 && !bridge_.isGone(handle_);
}

bool UsbTransport::send(std::string_view packet, const Feed&) {
    if (!isOpen()) {
        close();
        return false;
    }
    std::uint32_t written = 0;
    const bool sent =
        bridge_.SI_FlushBuffers(handle_, 1, 1) == 0 && bridge_.SI_Write(handle_, packet, written) == 0;
    if (!sent) {
        close();
    }
    return sent;
}

void UsbTransport::receive(const Feed& feed, const Awaiting& awaiting) {
    if (!isOpen()) {
        return;
    }
    std::array<std::uint8_t, kUsbChunk> buffer{};
    std::uint32_t read = 0;
    bridge_.SI_Read(handle_, buffer.data(), kUsbChunk, read);
    const std::size_t count = std::min<std::size_t>(read, buffer.size());
    for (std::size_t i = 0; i < count && awaiting(); ++i) {
        feed(buffer[i]);
    }
}

void UsbTransport::close() {
    if (handle_ > 0) {
        bridge_.SI_Close(handle_);
        handle_ = 0;
    }
}

double UsbTransport::pollInterval(double waited) const {
    return std::clamp(waited / kPollShare, kShortestPoll, kLongestPoll);
}

bool UsbTransport::open(std::int32_t index) {
    close();
    std::int32_t handle = 0;
    if (bridge_.SI_Open(static_cast<std::uint32_t>(index), handle) != 0) {
        return false;
    }
    handle_ = handle;
    bridge_.SI_SetBaudRate(handle_, kBaud);
    return true;
}

bool SocketTransport::isOpen() {
    return control_.state() == SocketControl::kConnected;
}

bool SocketTransport::send(std::string_view packet, const Feed& dropped) {
    if (!isOpen()) {
        return false;
    }
    receive(dropped, {}); // a late reply must not be taken for the next one
    control_.sendData(packet);
    return true;
}

void SocketTransport::receive(const Feed& feed, const Awaiting&) {
    if (control_.bytesReceived() < 1) {
        return;
    }
    // All of it, even past a complete reply (kept): a stray byte behind one is seen here, and on no other
    // link.
    for (const char c : control_.getData()) {
        feed(static_cast<std::uint8_t>(c));
    }
}

void SocketTransport::close() {
    control_.close();
}

bool SocketTransport::open(const std::string& host, const std::string& port, EventPump& pump,
                           const Clock& clock, const std::function<bool()>& abandon) {
    control_.setRemote(host, toInt32(Val(port)));
    control_.connect();
    const double deadline = clock.monotonic() + kConnectLimit;
    const auto settled = [this] {
        const int state = control_.state();
        return state == SocketControl::kConnected || state == kSocketClosed || state == kSocketFailed;
    };
    pump.processPending();
    while (!settled() && clock.monotonic() < deadline && !(abandon && abandon())) {
        pump.sleepUntil(deadline);
    }
    return isOpen();
}

int UsbTransport::attached() {
    std::uint32_t devices = 0;
    if (bridge_.SI_GetNumDevices(devices) != 0) {
        return 0;
    }
    int count = 0;
    for (std::uint32_t i = 0; i < devices; ++i) {
        std::string product;
        const bool told = bridge_.SI_GetProductString(i, product, kProductId) == 0;
        count += !told || equalNoCase(product, kProduct) ? 1 : 0;
    }
    return count;
}

Transport& Transports::of(LinkType type) {
    switch (type) {
    case LinkType::Usb:
        return usb;
    case LinkType::Ethernet:
        return socket;
    default:
        return serial;
    }
}

void Transports::closeAll() {
    serial.close();
    usb.close();
    socket.close();
}

} // namespace drx9
