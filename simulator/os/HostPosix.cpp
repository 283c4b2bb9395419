#include <array>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include "simulator/Control.h"
#include "simulator/os/Host.h"

namespace drx9::sim {

namespace {
int signalPipe = -1; // the one thing that a signal handler can reach

void onSignal(int /*number*/) {
    const int kept = errno;
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(signalPipe, &byte, 1);
    errno = kept;
}

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int value)
        : value_(value) {}
    Descriptor(Descriptor&& other) noexcept
        : value_(std::exchange(other.value_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(value_, other.value_);
        other.reset();
        return *this;
    }
    ~Descriptor() { reset(); }

    void reset() {
        if (value_ >= 0) {
            ::close(std::exchange(value_, -1));
        }
    }
    int get() const { return value_; }
    bool open() const { return value_ >= 0; }

private:
    int value_ = -1;
};

void prepare(int descriptor) {
    ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) | O_NONBLOCK);
    ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
}

void say(const std::string& line) {
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

/// What a read found: bytes, nothing yet, or the other end gone.
enum class Got { Bytes, Nothing, End };

Got readSome(int descriptor, std::string& bytes) {
    std::array<char, 4096> buffer{};
    const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
    if (count > 0) {
        bytes.assign(buffer.data(), static_cast<std::size_t>(count));
        return Got::Bytes;
    }
    return count < 0 && (errno == EAGAIN || errno == EINTR) ? Got::Nothing : Got::End;
}

/// Sleeps until a descriptor is ready or `seconds` have passed, as exactly as the system allows: a byte at
/// 19200 baud takes half a millisecond.
void sleepIn(std::vector<pollfd>& polled, double seconds) {
#ifdef __linux__
    timespec limit{};
    if (seconds < kNever) {
        const double whole = std::floor(std::min(seconds, 1e6));
        limit.tv_sec = static_cast<time_t>(whole);
        limit.tv_nsec = static_cast<long>((std::min(seconds, 1e6) - whole) * 1e9);
    }
    ::ppoll(polled.data(), polled.size(), seconds < kNever ? &limit : nullptr, nullptr);
#else
    const int limit = seconds < kNever ? static_cast<int>(std::ceil(std::min(seconds, 1e6) * 1000)) : -1;
    ::poll(polled.data(), static_cast<nfds_t>(polled.size()), limit);
#endif
}

// --- TCP
// ------------------------------------------------------------------------------------------------------------

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

/// A listening port and its one client.
class TcpLink {
public:
    TcpLink(Simulator& simulator, TcpAddress address, bool quiet)
        : simulator_(simulator)
        , address_(std::move(address))
        , quiet_(quiet) {}

    void plug() {
        if (listener_.open()) {
            return;
        }
        const AddressList list(address_);
        Descriptor listener(::socket(list.first->ai_family, SOCK_STREAM, 0));
        const int on = 1;
        ::setsockopt(listener.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        if (::bind(listener.get(), list.first->ai_addr, list.first->ai_addrlen) != 0 ||
            ::listen(listener.get(), 8) != 0) {
            fail("cannot listen on " + address_.host + ":" + address_.port);
        }
        prepare(listener.get());
        listener_ = std::move(listener);
        address_.port = boundPort();
        say("tcp " + address_.host + ":" + address_.port);
    }

    void unplug() {
        drop();
        listener_.reset();
    }

    void drop() {
        if (client_.open()) {
            note("client gone");
        }
        client_.reset();
        line_.reset();
    }

    void watch(std::vector<pollfd>& polled) const {
        if (listener_.open()) {
            polled.push_back({listener_.get(), POLLIN, 0});
        }
        if (client_.open()) {
            polled.push_back({client_.get(), static_cast<short>(line_->full() ? 0 : POLLIN), 0});
        }
    }

    double nextDue() const {
        return line_ ? std::min(line_->nextDue(), simulator_.dropTime(*line_)) : kNever;
    }

    /// Moves whatever can be moved.
    void serve(double now) {
        receive(now);
        send(now);
        if (line_ && simulator_.dropTime(*line_) <= now) {
            drop();
        }
        accept(now);
    }

private:
    void note(const char* text) const {
        if (!quiet_) {
            std::fprintf(stderr, "tcp: %s\n", text);
        }
    }

    std::string boundPort() const {
        sockaddr_storage bound{};
        socklen_t size = sizeof bound;
        std::array<char, NI_MAXSERV> port{};
        ::getsockname(listener_.get(), reinterpret_cast<sockaddr*>(&bound), &size);
        ::getnameinfo(reinterpret_cast<sockaddr*>(&bound), size, nullptr, 0, port.data(), port.size(),
                      NI_NUMERICSERV);
        return port.data();
    }

    /// The newest client wins: a program that was killed or lost its cable may come back at once.
    void accept(double now) {
        Descriptor client(listener_.open() ? ::accept(listener_.get(), nullptr, nullptr) : -1);
        if (!client.open()) {
            return;
        }
        drop();
        prepare(client.get());
        const int on = 1;
        ::setsockopt(client.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        client_ = std::move(client);
        line_.emplace(simulator_.openLine("tcp", now));
        note("client connected");
    }

    void receive(double now) {
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

    void send(double now) {
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

    Simulator& simulator_;
    TcpAddress address_; ///< with the port that was bound, once one was
    bool quiet_;
    Descriptor listener_;
    Descriptor client_;
    std::optional<Line> line_; ///< while there is a client
};

// --- pseudo-terminal
// ------------------------------------------------------------------------------------------------

/// A pseudo-terminal, which is the same whoever opens it. While nobody has it open, the far side is held open
/// here: a pseudo-terminal that nobody holds reports "hung up" without end.
class PtyLink {
public:
    PtyLink(Simulator& simulator, std::string linkPath)
        : simulator_(simulator)
        , linkPath_(std::move(linkPath)) {}
    ~PtyLink() { unplug(); }
    PtyLink(const PtyLink&) = delete;
    PtyLink& operator=(const PtyLink&) = delete;

    void plug() {
        if (master_.open()) {
            return;
        }
        Descriptor master(::posix_openpt(O_RDWR | O_NOCTTY));
        if (!master.open() || ::grantpt(master.get()) != 0 || ::unlockpt(master.get()) != 0) {
            fail("cannot make a pseudo-terminal");
        }
        prepare(master.get());
        path_ = ::ptsname(master.get());
        master_ = std::move(master);
        if (!hold()) {
            fail("cannot open " + path_);
        }
        link();
        say("pty " + path_);
    }

    void unplug() {
        line_.reset();
        held_.reset();
        master_.reset();
        if (!linkPath_.empty() && linkTarget() == path_) {
            ::unlink(linkPath_.c_str());
        }
    }

    void drop() {
        if (master_.open()) {
            unplug();
            plug();
        }
    }

    void watch(std::vector<pollfd>& polled) const {
        if (master_.open()) {
            polled.push_back({master_.get(), static_cast<short>(line_ && line_->full() ? 0 : POLLIN), 0});
        }
    }

    double nextDue() const {
        return line_ ? std::min(line_->nextDue(), simulator_.dropTime(*line_)) : kNever;
    }

    void serve(double now) {
        receive(now);
        send(now);
        if (line_ && simulator_.dropTime(*line_) <= now) {
            drop();
        }
    }

private:
    bool hold() {
        held_ = Descriptor(::open(path_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
        if (!held_.open()) {
            return false;
        }
        termios modes{};
        ::tcgetattr(held_.get(), &modes);
        ::cfmakeraw(&modes);
        ::tcsetattr(held_.get(), TCSANOW, &modes);
        return true;
    }

    std::string linkTarget() const {
        std::array<char, 4096> target{};
        const ssize_t size = ::readlink(linkPath_.c_str(), target.data(), target.size());
        return size > 0 ? std::string(target.data(), static_cast<std::size_t>(size)) : "";
    }

    void link() const {
        if (linkPath_.empty()) {
            return;
        }
        if (!linkTarget().empty()) {
            ::unlink(linkPath_.c_str()); // an older link; anything else is left alone and fails below
        }
        if (::symlink(path_.c_str(), linkPath_.c_str()) != 0) {
            fail("cannot make the link " + linkPath_);
        }
    }

    void receive(double now) {
        std::string bytes;
        while (master_.open() && !(line_ && line_->full())) {
            const Got got = readSome(master_.get(), bytes);
            if (got == Got::Nothing) {
                return;
            }
            if (got == Got::End) {
                left();
                return;
            }
            if (!line_) {
                line_.emplace(simulator_.openLine("pty", now));
            }
            line_->receive(bytes, now);
            send(now);
            held_.reset(); // somebody is there: let us notice when they leave
        }
    }

    /// Where the one who left had it to themselves and never gave that up, nobody can open it again: make
    /// another.
    void left() {
        line_.reset();
        if (!hold()) {
            drop();
        }
    }

    void send(double now) {
        while (line_) {
            const std::optional<std::string> bytes = line_->takeDue(now);
            if (!bytes) {
                return;
            }
            // As on a wire, what nobody takes is lost.
            [[maybe_unused]] const ssize_t sent = ::write(master_.get(), bytes->data(), bytes->size());
        }
    }

    Simulator& simulator_;
    std::string linkPath_;
    std::string path_;
    Descriptor master_;
    Descriptor held_;          ///< the far side, while nobody else is known to have it
    std::optional<Line> line_; ///< from the first byte of one who opened it
};

// --- the loop
// -------------------------------------------------------------------------------------------------------

class Host {
public:
    Host(Simulator& simulator, const Options& options)
        : simulator_(simulator) {
        if (options.tcp) {
            tcp_.emplace(simulator, *options.tcp, options.quiet);
        }
        if (options.pty) {
            pty_.emplace(simulator, options.ptyLink);
        }
    }

    void run() {
        catchSignals();
        each([](auto& link) { link.plug(); });
        while (!ended_) {
            turn();
        }
    }

private:
    template<class Action>
    void each(Action action) {
        if (tcp_) {
            action(*tcp_);
        }
        if (pty_) {
            action(*pty_);
        }
    }

    double now() const {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    }

    void catchSignals() {
        std::array<int, 2> ends{};
        if (::pipe(ends.data()) != 0) {
            fail("cannot make a pipe");
        }
        signals_ = Descriptor(ends[0]);
        signalled_ = Descriptor(ends[1]);
        prepare(ends[0]);
        prepare(ends[1]);
        signalPipe = ends[1];
        for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
            std::signal(number, onSignal);
        }
        std::signal(SIGPIPE, SIG_IGN);
        std::signal(SIGTTIN, SIG_IGN); // in the background a terminal then gives an error instead of a stop
    }

    void turn() {
        std::vector<pollfd> polled{{signals_.get(), POLLIN, 0}, {inputOpen_ ? STDIN_FILENO : -1, POLLIN, 0}};
        double due = kNever;
        each([&](const auto& link) {
            link.watch(polled);
            due = std::min(due, link.nextDue());
        });
        sleepIn(polled, std::max(due - now(), 0.0));
        ended_ = polled[0].revents != 0;
        if (polled[1].revents != 0) {
            readInput();
        }
        each([this](auto& link) { link.serve(now()); });
    }

    /// The end of the input ends nothing: the program may well run without one.
    void readInput() {
        std::string bytes;
        const Got got = readSome(STDIN_FILENO, bytes);
        if (got != Got::Bytes) {
            inputOpen_ = got == Got::Nothing;
            return;
        }
        input_ += bytes;
        for (std::size_t end = 0; (end = input_.find('\n')) != std::string::npos && !ended_;) {
            std::string line = input_.substr(0, end);
            input_.erase(0, end + 1);
            if (line.ends_with('\r')) {
                line.pop_back();
            }
            command(line);
        }
        if (input_.size() > kLongestInput) {
            input_.clear();
        }
    }

    void command(const std::string& line) {
        ControlAnswer answer = control(simulator_, line, now());
        try {
            act(answer.action);
        } catch (const std::exception& error) {
            answer.text = std::string("error: ") + error.what();
        }
        if (!answer.text.empty()) {
            say(answer.text);
        }
    }

    void act(LinkAction action) {
        switch (action) {
        case LinkAction::None:
            break;
        case LinkAction::Drop:
            each([](auto& link) { link.drop(); });
            break;
        case LinkAction::Unplug:
            each([](auto& link) { link.unplug(); });
            break;
        case LinkAction::Plug:
            each([](auto& link) { link.plug(); });
            break;
        case LinkAction::Quit:
            ended_ = true;
            break;
        }
    }

    static constexpr std::size_t kLongestInput = 65536;

    Simulator& simulator_;
    std::optional<TcpLink> tcp_;
    std::optional<PtyLink> pty_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    Descriptor signals_;
    Descriptor signalled_;
    std::string input_;
    bool inputOpen_ = true;
    bool ended_ = false;
};
} // namespace

int runHost(Simulator& simulator, const Options& options) {
    try {
        Host(simulator, options).run();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "drx9sim: %s\n", error.what());
        return 1;
    }
    return 0;
}

} // namespace drx9::sim
