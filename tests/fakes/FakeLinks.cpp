#include "fakes/FakeLinks.h"

#include <algorithm>

namespace drx9 {

void FakeSerial::setCommPort(int port) {
    ++calls;
    commPort = port;
}

void FakeSerial::setSettings(const std::string& text) {
    ++calls;
    settings = text;
}

std::string FakeSerial::open() {
    ++calls;
    ++opens;
    open_ = refusal.empty();
    return refusal;
}

void FakeSerial::close() {
    ++calls;
    open_ = false;
}

void FakeSerial::output(std::string_view bytes) {
    if (open_) {
        wire.sent(bytes);
    }
}

std::string FakeSerial::deviceName(int port) const {
    return "/dev/fake" + std::to_string(port);
}

void FakeSocket::drop(const std::string& why) {
    state_ = kError;
    reason_ = why;
    pump_.wake();
}

void FakeSocket::setRemote(const std::string& remoteHost, int remotePort) {
    host = remoteHost;
    port = remotePort;
}

void FakeSocket::connect() {
    const int attempt = ++connects;
    state_ = kConnecting;
    reason_.clear();
    if (connectDelay == 0) {
        settle(attempt);
    } else if (connectDelay > 0) {
        pump_.atTime(pump_.clock().monotonic() + connectDelay, [this, attempt] { settle(attempt); });
    }
}

void FakeSocket::settle(int attempt) {
    if (attempt != connects || state_ != kConnecting) {
        return;
    }
    state_ = refusal.empty() ? kConnected : kError;
    reason_ = refusal;
    pump_.wake();
}

void FakeSocket::close() {
    state_ = kClosed;
    wire.discard();
}

int FakeUsb::SI_GetNumDevices(std::uint32_t& count) {
    if (onCount) {
        onCount();
    }
    count = static_cast<std::uint32_t>(devices.size());
    return 0;
}

int FakeUsb::SI_GetProductString(std::uint32_t index, std::string& text, int option) {
    if (index >= devices.size()) {
        return kFailure;
    }
    text = option == 4 ? devices[index].product : devices[index].serial;
    return 0;
}

int FakeUsb::SI_Open(std::uint32_t index, std::int32_t& handle) {
    const auto taken = std::any_of(handles_.begin(), handles_.end(),
                                   [index](const auto& entry) { return entry.second == index; });
    if (index >= devices.size() || !devices[index].opens || taken) {
        return kFailure;
    }
    handle = ++lastHandle_;
    handles_[handle] = index;
    return 0;
}

int FakeUsb::SI_SetBaudRate(std::int32_t handle, std::uint32_t rate) {
    baud = rate;
    return handles_.count(handle) != 0 ? 0 : kFailure;
}

int FakeUsb::SI_Close(std::int32_t handle) {
    return handles_.erase(handle) != 0 ? 0 : kFailure;
}

int FakeUsb::SI_FlushBuffers(std::int32_t handle, std::uint8_t, std::uint8_t receive) {
    if (flushFails || handles_.count(handle) == 0) {
        return kFailure;
    }
    if (receive != 0) {
        wire.discard();
    }
    return 0;
}

int FakeUsb::SI_Write(std::int32_t handle, std::string_view bytes, std::uint32_t& written) {
    if (writeFails || handles_.count(handle) == 0) {
        return kFailure;
    }
    wire.sent(bytes);
    written = static_cast<std::uint32_t>(bytes.size());
    return 0;
}

int FakeUsb::SI_Read(std::int32_t handle, std::uint8_t* buffer, std::uint32_t count, std::uint32_t& read) {
    read = 0;
    if (readFails || handles_.count(handle) == 0) {
        return kFailure;
    }
    const std::string bytes = wire.take(count);
    std::copy(bytes.begin(), bytes.end(), buffer);
    read = static_cast<std::uint32_t>(bytes.size());
    return 0;
}

} // namespace drx9
