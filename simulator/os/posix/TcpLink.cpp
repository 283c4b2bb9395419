#include "simulator/os/posix/TcpLink.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <stdexcept>

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace drx9::sim {

namespace {
struct AddressList {
    explicit AddressList(const TcpAddress& wanted) {
        addrinfo hints{};
        hints.ai_socktype = SOCK_STREAM;
        hints.ai_flags = AI_PASSIVE;
        const int error = ::getaddrinfo(wanted.host.c_str(), wanted.port.c_str(), &hints, &first);
        if (error != 0) {
            throw std::runtime_error(wanted.host + ":" + wanted.port + ": " + ::gai_strerror(error));
        }
    }
    ~AddressList() { ::freeaddrinfo(first); }
    AddressList(const AddressList&) = delete;
    AddressList& operator=(const AddressList&) = delete;
    addrinfo* first = nullptr;
};

void switchOn(int socket, int level, int option) {
    const int on = 1;
    ::setsockopt(socket, level, option, &on, sizeof on);
}
} // namespace

TcpLink::TcpLink(Simulator& simulator, TcpAddress address, bool quiet)
    : simulator_(simulator)
    , address_(std::move(address))
    , quiet_(quiet) {}

void TcpLink::plug() {
    if (listener_.open()) {
        return;
    }
    const AddressList list(address_);
    Descriptor listener(::socket(list.first->ai_family, SOCK_STREAM, 0));
    switchOn(listener.get(), SOL_SOCKET, SO_REUSEADDR);
    if (::bind(listener.get(), list.first->ai_addr, list.first->ai_addrlen) != 0 ||
        ::listen(listener.get(), 8) != 0) {
        failWithReason("cannot listen on " + address_.host + ":" + address_.port);
    }
    prepare(listener.get());
    listener_ = std::move(listener);
    address_.port = boundPort();
    say("tcp " + address_.host + ":" + address_.port);
}

void TcpLink::unplug() {
    drop();
    listener_.reset();
}

void TcpLink::drop() {
    if (client_.open()) {
        note("client gone");
    }
    client_.reset();
    line_.reset();
}

void TcpLink::watch(std::vector<pollfd>& polled) const {
    if (listener_.open()) {
        polled.push_back({listener_.get(), POLLIN, 0});
    }
    if (client_.open()) {
        polled.push_back({client_.get(), static_cast<short>(line_->full() ? 0 : POLLIN), 0});
    }
}

double TcpLink::nextDue() const {
    return line_ ? std::min(line_->nextDue(), simulator_.dropTime(*line_)) : kNever;
}

void TcpLink::serve(double now) {
    receive(now);
    send(now);
    if (line_ && simulator_.dropTime(*line_) <= now) {
        drop();
    }
    accept(now);
}

void TcpLink::note(const char* text) const {
    if (!quiet_) {
        std::fprintf(stderr, "tcp: %s\n", text);
    }
}

std::string TcpLink::boundPort() const {
    sockaddr_storage bound{};
    socklen_t size = sizeof bound;
    std::array<char, NI_MAXSERV> port{};
    ::getsockname(listener_.get(), reinterpret_cast<sockaddr*>(&bound), &size);
    ::getnameinfo(reinterpret_cast<sockaddr*>(&bound), size, nullptr, 0, port.data(), port.size(),
                  NI_NUMERICSERV);
    return port.data();
}

void TcpLink::accept(double now) {
    Descriptor client(listener_.open() ? ::accept(listener_.get(), nullptr, nullptr) : -1);
    if (!client.open()) {
        return;
    }
    drop();
    prepare(client.get());
    switchOn(client.get(), IPPROTO_TCP, TCP_NODELAY);
    client_ = std::move(client);
    line_.emplace(simulator_.openLine("tcp", now));
    note("client connected");
}

void TcpLink::receive(double now) {
    std::string bytes;
    while (client_.open() && !line_->full()) {
        const Got got = readSome(client_.get(), bytes);
        if (got == Got::Nothing) {
            return;
        }
        if (got == Got::End) {
            drop();
        } else {
            line_->receive(bytes, now);
            send(now);
        }
    }
}

void TcpLink::send(double now) {
    while (line_) {
        const std::optional<std::string> bytes = line_->takeDue(now);
        if (!bytes) {
            return;
        }
        if (::write(client_.get(), bytes->data(), bytes->size()) != static_cast<ssize_t>(bytes->size())) {
            drop(); // gone, or it has long stopped reading
        }
    }
}

} // namespace drx9::sim
