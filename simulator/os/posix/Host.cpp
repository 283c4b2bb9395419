#include "simulator/os/Host.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <exception>
#include <optional>
#include <string>
#include <vector>

#include <poll.h>
#include <unistd.h>

#include "simulator/Control.h"
#include "simulator/os/posix/Descriptor.h"
#include "simulator/os/posix/PtyLink.h"
#include "simulator/os/posix/TcpLink.h"

namespace drx9::sim {

namespace {
int signalPipe = -1; // the one thing that a signal handler can reach

void onSignal(int /*number*/) {
    const int kept = errno;
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(signalPipe, &byte, 1);
    errno = kept;
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
            failWithReason("cannot make a pipe");
        }
        signals_ = Descriptor(ends[0]);
        signalled_ = Descriptor(ends[1]);
        prepare(ends[0]);
        prepare(ends[1]);
        signalPipe = ends[1];
        for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
            if (std::signal(number, onSignal) == SIG_IGN && number == SIGHUP) {
                std::signal(number, SIG_IGN); // started to outlive its terminal
            }
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
