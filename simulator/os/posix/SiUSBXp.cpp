// The stand-in for the USB bridge's library: every device that DRX9SIM_USB lists is a TCP connection to a
// running drx9sim, so that the USB link runs end to end without hardware.

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include "simulator/BridgeDevices.h"
#include "simulator/UsbBridgeAbi.h"

namespace {
using drx9::sim::BridgeDevice;

enum Result { kSuccess = 0, kNoDevice = 1, kBadArgument = 2, kCannotOpen = 3, kLost = 4 };

constexpr int kPatience = 1000; // ms, for a simulator that does not answer
constexpr std::uint32_t kSerialOption = 0;
constexpr std::uint32_t kProductOption = 4;

struct Connection {
    int socket = -1;
};

std::vector<BridgeDevice> attached() {
    const char* list = std::getenv("DRX9SIM_USB");
    return drx9::sim::bridgeDevices(list != nullptr ? list : "");
}

bool ready(int socket, short events) {
    pollfd polled{socket, events, 0};
    return ::poll(&polled, 1, kPatience) == 1;
}

bool connectTo(int socket, const addrinfo& address) {
    if (::connect(socket, address.ai_addr, address.ai_addrlen) == 0) {
        return true;
    }
    int error = 0;
    socklen_t size = sizeof error;
    return errno == EINPROGRESS && ready(socket, POLLOUT) &&
           ::getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &size) == 0 && error == 0;
}

/// A connected socket, or -1.
int openSocket(const BridgeDevice& device) {
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* list = nullptr;
    if (::getaddrinfo(device.host.c_str(), device.port.c_str(), &hints, &list) != 0) {
        return -1;
    }
    const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owner(list, &::freeaddrinfo);
    const int socket = ::socket(list->ai_family, SOCK_STREAM, 0);
    ::fcntl(socket, F_SETFL, ::fcntl(socket, F_GETFL) | O_NONBLOCK);
    ::fcntl(socket, F_SETFD, FD_CLOEXEC);
    if (!connectTo(socket, *list)) {
        ::close(socket);
        return -1;
    }
    const int on = 1;
    ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    return socket;
}

/// -1: lost; 0: nothing waits.
ssize_t receive(int socket, void* buffer, std::size_t size, int flags) {
    const ssize_t count = ::recv(socket, buffer, size, flags);
    if (count > 0) {
        return count;
    }
    return count < 0 && (errno == EAGAIN || errno == EINTR) ? 0 : -1;
}

bool lost(int socket) {
    char byte = 0;
    return receive(socket, &byte, 1, MSG_PEEK) < 0;
}

bool sendAll(int socket, const char* bytes, std::size_t size) {
#ifdef MSG_NOSIGNAL
    constexpr int flags = MSG_NOSIGNAL;
#else
    constexpr int flags = 0;
#endif
    while (size > 0) {
        const ssize_t sent = ::send(socket, bytes, size, flags);
        if (sent > 0) {
            bytes += sent;
            size -= static_cast<std::size_t>(sent);
        } else if ((errno != EAGAIN && errno != EINTR) || !ready(socket, POLLOUT)) {
            return false;
        }
    }
    return true;
}

Connection* connectionOf(void* handle) {
    return static_cast<Connection*>(handle);
}
} // namespace

extern "C" {

int SI_GetNumDevices(std::uint32_t* count) {
    if (count == nullptr) {
        return kBadArgument;
    }
    *count = static_cast<std::uint32_t>(attached().size());
    return kSuccess;
}

int SI_GetProductString(std::uint32_t index, void* text, std::uint32_t option) {
    const std::vector<BridgeDevice> devices = attached();
    if (index >= devices.size()) {
        return kNoDevice;
    }
    if (text == nullptr || (option != kSerialOption && option != kProductOption)) {
        return kBadArgument;
    }
    const std::string& wanted = option == kSerialOption ? devices[index].serial : devices[index].product;
    std::memcpy(text, wanted.c_str(), wanted.size() + 1);
    return kSuccess;
}

int SI_Open(std::uint32_t index, void** handle) {
    const std::vector<BridgeDevice> devices = attached();
    if (index >= devices.size()) {
        return kNoDevice;
    }
    if (handle == nullptr) {
        return kBadArgument;
    }
    const int socket = openSocket(devices[index]);
    if (socket < 0) {
        return kCannotOpen;
    }
    *handle = std::make_unique<Connection>(Connection{socket}).release();
    return kSuccess;
}

int SI_Close(void* handle) {
    if (handle == nullptr) {
        return kBadArgument;
    }
    const std::unique_ptr<Connection> connection(connectionOf(handle));
    ::close(connection->socket);
    return kSuccess;
}

int SI_SetBaudRate(void* handle, std::uint32_t baud) {
    return handle != nullptr && baud > 0 ? kSuccess : kBadArgument;
}

int SI_FlushBuffers(void* handle, unsigned char /*transmit: written at once, so never full*/,
                    unsigned char receiveToo) {
    if (handle == nullptr) {
        return kBadArgument;
    }
    std::array<char, 512> dropped{};
    ssize_t count = receiveToo != 0 ? 1 : 0;
    while (count > 0) {
        count = receive(connectionOf(handle)->socket, dropped.data(), dropped.size(), 0);
    }
    return count < 0 ? kLost : kSuccess;
}

int SI_Write(void* handle, void* buffer, std::uint32_t bytes, std::uint32_t* written, void* /*overlapped*/) {
    if (handle == nullptr || buffer == nullptr || written == nullptr) {
        return kBadArgument;
    }
    *written = 0;
    const int socket = connectionOf(handle)->socket;
    if (lost(socket) || !sendAll(socket, static_cast<const char*>(buffer), bytes)) {
        return kLost;
    }
    *written = bytes;
    return kSuccess;
}

int SI_Read(void* handle, void* buffer, std::uint32_t bytes, std::uint32_t* read, void* /*overlapped*/) {
    if (handle == nullptr || buffer == nullptr || read == nullptr || bytes == 0) {
        return kBadArgument;
    }
    const ssize_t count = receive(connectionOf(handle)->socket, buffer, bytes, 0);
    *read = static_cast<std::uint32_t>(std::max<ssize_t>(count, 0));
    return count < 0 ? kLost : kSuccess;
}

int SI_GetPartNumber(void* handle, unsigned char* part) {
    if (handle == nullptr || part == nullptr) {
        return kBadArgument;
    }
    *part = 0;
    return kSuccess;
}

int SI_SetTimeouts(std::uint32_t /*read*/, std::uint32_t /*write*/) {
    return kSuccess; // nothing here waits, so there is nothing to limit
}

int SI_GetTimeouts(std::uint32_t* read, std::uint32_t* write) {
    if (read == nullptr || write == nullptr) {
        return kBadArgument;
    }
    *read = *write = 0;
    return kSuccess;
}

int SI_SetLineControl(void* handle, std::uint16_t /*control*/) {
    return handle != nullptr ? kSuccess : kBadArgument;
}

int SI_SetFlowControl(void* handle, unsigned char /*cts*/, unsigned char /*rts*/, unsigned char /*dtr*/,
                      unsigned char /*dsr*/, unsigned char /*dcd*/, int /*xonXoff*/) {
    return handle != nullptr ? kSuccess : kBadArgument;
}

int SI_GetModemmlStatus(void* handle, unsigned char* lines) {
    if (handle == nullptr || lines == nullptr) {
        return kBadArgument;
    }
    *lines = 0;
    return kSuccess;
}

int SI_CheckRXQueue(void* handle, std::uint32_t* bytes, std::uint32_t* state) {
    if (handle == nullptr || bytes == nullptr || state == nullptr) {
        return kBadArgument;
    }
    int waiting = 0;
    ::ioctl(connectionOf(handle)->socket, FIONREAD, &waiting);
    *bytes = static_cast<std::uint32_t>(waiting);
    *state = waiting > 0 ? 2 : 0;
    return kSuccess;
}
}
