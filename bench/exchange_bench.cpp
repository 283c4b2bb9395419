// One exchange, "P1" and a reply of nine characters: through the program's own link, controls and event
// pump, and beside it through bare blocking descriptors, with the same server thread. The client runs on the
// first, the server on the last of the processors that the program may use:
//   taskset -c 0,1 exchange_bench --benchmark_enable_random_interleaving=true
//   taskset -c 0 exchange_bench --benchmark_enable_random_interleaving=true

#include "link/ActionQueue.h"
#include "link/Crc.h"
#include "link/Link.h"
#include "link/Transports.h"
#include "platform/qt/EventLoopChoice.h"
#include "platform/qt/QtClock.h"
#include "platform/qt/QtEventPump.h"
#include "platform/qt/QtSerialControl.h"
#include "platform/qt/QtSocketControl.h"
#include "platform/qt/QtUsbBridge.h"

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>

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

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

using namespace drx9;

namespace {

const std::string kData = "123.45678"; // nine characters
const std::string kRequest = commandPacket("P1");
const std::string kReply = replyPacket('A', kData);

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
    for (int cpu = 0; cpu < CPU_SETSIZE; ++cpu) {
        if (CPU_ISSET(cpu, &allowed) && (chosen < 0 || last)) {
            chosen = cpu;
        }
    }
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(chosen, &one);
    pthread_setaffinity_np(pthread_self(), sizeof one, &one);
}

/// Reads exactly `size` bytes; false at the end.
bool readAll(int fd, char* bytes, std::size_t size) {
    for (std::size_t have = 0; have < size;) {
        const ssize_t got = ::read(fd, bytes + have, size - have);
        if (got <= 0) {
            return false;
        }
        have += static_cast<std::size_t>(got);
    }
    return true;
}

bool writeAll(int fd, const std::string& bytes) {
    return ::write(fd, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
}

/// Answers each request, until the client has gone.
void serve(int fd) {
    pin(true);
    char request[64];
    while (readAll(fd, request, kRequest.size()) && writeAll(fd, kReply)) {
    }
    ::close(fd);
}

sockaddr_in loopback(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    return address;
}

int portOf(int listener) {
    sockaddr_in address{};
    socklen_t length = sizeof address;
    ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length);
    return ntohs(address.sin_port);
}

void mustBe(bool good, const char* what) {
    if (!good) {
        std::perror(what);
        std::abort();
    }
}

/// A listening socket on loopback whose accepted connections are answered by a thread each.
class TcpServer {
public:
    TcpServer() {
        fd_ = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address = loopback(0);
        mustBe(::bind(fd_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0, "bind");
        ::listen(fd_, 1);
        port_ = portOf(fd_);
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

/// A pseudo-terminal whose far end is answered by a thread.
class PtyServer {
public:
    PtyServer()
        : fd_(::posix_openpt(O_RDWR | O_NOCTTY)) {
        ::grantpt(fd_);
        ::unlockpt(fd_);
        path_ = ::ptsname(fd_);
        // Held open by us, so that the far end reads no end before the client has come.
        hold_ = ::open(path_.c_str(), O_RDWR | O_NOCTTY);
        termios line{};
        ::tcgetattr(hold_, &line);
        ::cfmakeraw(&line);
        ::tcsetattr(hold_, TCSANOW, &line);
        thread_ = std::thread([this] { serve(fd_); });
    }
    ~PtyServer() {
        ::close(hold_); // the last one closed ends the server
        thread_.join();
    }
    const std::string& path() const { return path_; }

private:
    int fd_;
    int hold_ = -1;
    std::string path_;
    std::thread thread_;
};

void exchangeBare(benchmark::State& state, int fd) {
    char reply[64];
    for ([[maybe_unused]] auto _ : state) {
        if (!writeAll(fd, kRequest) || !readAll(fd, reply, kReply.size())) {
            return state.SkipWithError("the server went away");
        }
    }
}

void BM_TcpBare(benchmark::State& state) {
    pin(false);
    TcpServer server;
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    const int on = 1;
    ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    sockaddr_in address = loopback(server.port());
    mustBe(::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0, "connect");
    exchangeBare(state, fd);
    ::close(fd);
}

void BM_PtyBare(benchmark::State& state) {
    pin(false);
    PtyServer server;
    const int fd = ::open(server.path().c_str(), O_RDWR | O_NOCTTY);
    exchangeBare(state, fd);
    ::close(fd);
}

/// The program's own link over its own controls.
struct Program {
    explicit Program(LinkType type) {
        settings.CommType = type;
        (void)serial.deviceName(
            9); // the look for serial devices that otherwise comes later, into the figures
    }

    void exchange(benchmark::State& state) {
        for ([[maybe_unused]] auto _ : state) {
            if (link.Comm_Send("P1").reply != kData) {
                return state.SkipWithError("no reply");
            }
        }
    }

    QTemporaryDir folder; ///< the program's: COM1 is a link in it
    QtClock clock;
    QtEventPump pump{clock};
    QtSerialControl serial{pump, {folder.path().toStdString(), folder.path().toStdString()}};
    QtSocketControl socket{pump};
    QtUsbBridge usb{folder.path().toStdString()};
    LinkSettings settings;
    ActionQueue actions{pump};
    Transports transports{SerialTransport(serial), UsbTransport(usb), SocketTransport(socket)};
    Link link{settings, transports, pump, clock, actions};
};

void BM_TcpProgram(benchmark::State& state) {
    pin(false);
    TcpServer server;
    Program program(LinkType::Ethernet);
    if (!program.transports.socket.open("127.0.0.1", std::to_string(server.port()), program.pump,
                                        program.clock)) {
        return state.SkipWithError("no connection");
    }
    program.exchange(state);
    program.transports.closeAll();
    program.pump.processPending();
}

void BM_PtyProgram(benchmark::State& state) {
    pin(false);
    PtyServer server;
    Program program(LinkType::Serial);
    QFile::link(QString::fromStdString(server.path()), program.folder.filePath("COM1"));
    if (!program.transports.serial.open(1, 19200).empty()) {
        return state.SkipWithError("the port does not open");
    }
    program.exchange(state);
    program.transports.closeAll();
    program.pump.processPending();
}

/// A turn of the event loop with nothing to do: what a look at the events would add to an exchange.
void BM_ProcessPending(benchmark::State& state) {
    pin(false);
    const QtClock clock;
    QtEventPump pump(clock);
    for ([[maybe_unused]] auto _ : state) {
        pump.processPending();
    }
}

/// A reply that never comes: the wait must end at 1.0 s and cost nothing. The CPU column is the figure;
/// "late_ms" is by how much the longest wait was over.
void BM_TimeOut(benchmark::State& state) {
    pin(false);
    const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = loopback(0);
    mustBe(::bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0, "bind");
    ::listen(listener, 1);
    Program program(LinkType::Ethernet);
    if (!program.transports.socket.open("127.0.0.1", std::to_string(portOf(listener)), program.pump,
                                        program.clock)) {
        return state.SkipWithError("no connection");
    }
    double late = 0;
    for ([[maybe_unused]] auto _ : state) {
        const double start = program.clock.monotonic();
        program.link.Comm_Send("P1");
        late = std::max(late, program.clock.monotonic() - start - Link::kReplyLimit);
    }
    state.counters["late_ms"] = late * 1000;
    program.transports.closeAll();
    ::close(listener);
}

BENCHMARK(BM_TcpBare)->UseRealTime()->Repetitions(15);
BENCHMARK(BM_TcpProgram)->UseRealTime()->Repetitions(15);
BENCHMARK(BM_PtyBare)->UseRealTime()->Repetitions(15);
BENCHMARK(BM_PtyProgram)->UseRealTime()->Repetitions(15);
BENCHMARK(BM_ProcessPending);
BENCHMARK(BM_TimeOut)->UseRealTime()->Iterations(3)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const EventLoopChoice choice; // as the program does
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
