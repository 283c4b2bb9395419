// Nine characters there and back: through the program's own controls and event pump, and beside it through
// bare blocking descriptors, with the same server thread. Pin it: "taskset -c 0,1 exchange_bench" and
// "taskset -c 0 ...".

#include "platform/qt/QtClock.h"
#include "platform/qt/QtEventPump.h"
#include "platform/qt/QtSocketControl.h"

#include <QApplication>

#include <benchmark/benchmark.h>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <pthread.h>
#include <sched.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

#include <functional>
#include <string>
#include <thread>

using namespace drx9;

namespace {

constexpr char kRequest[] = "!#P1xx";  // six bytes, as "P1" in its packet
constexpr char kReply[] = "!*A012.34"; // nine bytes
constexpr std::size_t kRequestSize = sizeof kRequest - 1;
constexpr std::size_t kReplySize = sizeof kReply - 1;

/// The processors that the process was started on; asked once, before any thread is pinned.
cpu_set_t startProcessors() {
    cpu_set_t allowed;
    sched_getaffinity(0, sizeof allowed, &allowed);
    return allowed;
}

/// Pins the calling thread to the first or the last of the processors that the process was started on.
void pin(bool last) {
    static const cpu_set_t allowed = startProcessors();
    int chosen = -1;
    for (int cpu = 0; cpu < CPU_SETSIZE; ++cpu)
        if (CPU_ISSET(cpu, &allowed) && (chosen < 0 || last))
            chosen = cpu;
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(chosen, &one);
    pthread_setaffinity_np(pthread_self(), sizeof one, &one);
}

/// Reads exactly `size` bytes; false at the end.
bool readAll(int fd, char* bytes, std::size_t size) {
    for (std::size_t have = 0; have < size;) {
        const ssize_t got = ::read(fd, bytes + have, size - have);
        if (got <= 0)
            return false;
        have += static_cast<std::size_t>(got);
    }
    return true;
}

void serve(int fd) {
    pin(true);
    char request[kRequestSize];
    while (readAll(fd, request, kRequestSize) &&
           ::write(fd, kReply, kReplySize) == static_cast<ssize_t>(kReplySize)) {
    }
    ::close(fd);
}

/// A listening socket on loopback whose accepted connections are answered by a thread each.
class TcpServer {
public:
    TcpServer() {
        fd_ = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        ::bind(fd_, reinterpret_cast<sockaddr*>(&address), sizeof address);
        ::listen(fd_, 1);
        socklen_t length = sizeof address;
        ::getsockname(fd_, reinterpret_cast<sockaddr*>(&address), &length);
        port_ = ntohs(address.sin_port);
        thread_ = std::thread([this] {
            const int client = ::accept(fd_, nullptr, nullptr);
            const int on = 1;
            ::setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
            serve(client);
        });
    }
    ~TcpServer() {
        thread_.join();
        ::close(fd_);
    }
    int port() const { return port_; }

private:
    int fd_ = -1;
    int port_ = 0;
    std::thread thread_;
};

void exchangeBare(benchmark::State& state, int fd) {
    char reply[kReplySize];
    for (auto _ : state) {
        if (::write(fd, kRequest, kRequestSize) != static_cast<ssize_t>(kRequestSize) ||
            !readAll(fd, reply, kReplySize))
            return state.SkipWithError("the server went away");
    }
}

void BM_TcpBare(benchmark::State& state) {
    pin(false);
    TcpServer server;
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    const int on = 1;
    ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(server.port()));
    ::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
    exchangeBare(state, fd);
    ::close(fd);
}

void BM_TcpProgram(benchmark::State& state) {
    pin(false);
    TcpServer server;
    QtClock clock;
    QtEventPump pump(clock);
    QtSocketControl socket(pump);
    socket.setRemote("127.0.0.1", server.port());
    socket.connect();
    while (socket.state() != SocketControl::kConnected)
        pump.sleepUntil(clock.monotonic() + 1);
    for (auto _ : state) {
        socket.sendData(std::string_view(kRequest, kRequestSize));
        const double deadline = clock.monotonic() + 1;
        std::size_t have = 0;
        while (have < kReplySize && clock.monotonic() < deadline) {
            pump.sleepUntil(deadline);
            have += socket.getData().size();
        }
        if (have != kReplySize)
            return state.SkipWithError("no reply");
    }
    socket.close();
    pump.processPending();
}

/// A turn of the event loop with nothing to do: what each further look at the events adds to an exchange.
void BM_ProcessPending(benchmark::State& state) {
    pin(false);
    QtClock clock;
    QtEventPump pump(clock);
    for (auto _ : state)
        pump.processPending();
}

BENCHMARK(BM_ProcessPending);
BENCHMARK(BM_TcpBare)->UseRealTime()->Repetitions(15);
BENCHMARK(BM_TcpProgram)->UseRealTime()->Repetitions(15);

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
