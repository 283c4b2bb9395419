#include "platform/qt/SessionEnd.h"

#include <QGuiApplication>
#include <QSessionManager>
#include <QSocketNotifier>

#include <cstdlib>
#include <utility>

#ifndef _WIN32
#include <csignal>
#include <cstddef>
#include <fcntl.h>
#include <unistd.h>
#endif

namespace drx9 {

#ifndef _WIN32
namespace {
// A signal's handler may do little more than write: it writes a byte here, and the event loop reads it.
int signalPipe[2] = {-1, -1};

void onSignal(int) {
    const char byte = 0;
    [[maybe_unused]] const auto written = write(signalPipe[1], &byte, 1);
}
} // namespace
#endif

namespace {
SessionEnd* current = nullptr; // as with a signal, all that exit(3) calls is a plain function
}

SessionEnd::SessionEnd(std::function<void()> ended, std::function<void()> lost)
    : ended_(std::move(ended))
    , lost_(std::move(lost)) {
    current = this;
    std::atexit(&SessionEnd::atExit);
    // Nobody is to be asked then, so that the answer is always that the session may end.
    QObject::connect(
        qApp, &QGuiApplication::commitDataRequest, this,
        [this](QSessionManager& manager) {
            manager.setRestartHint(QSessionManager::RestartNever);
            QMetaObject::invokeMethod(this, &SessionEnd::come, Qt::QueuedConnection);
        },
        Qt::DirectConnection);
    listenToSignals();
}

SessionEnd::~SessionEnd() {
    current = nullptr;
#ifndef _WIN32
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        std::signal(signal, SIG_DFL);
    }
    for (int& end : signalPipe) {
        if (end >= 0) {
            close(std::exchange(end, -1));
        }
    }
#endif
}

void SessionEnd::listenToSignals() {
#ifndef _WIN32
    if (pipe(signalPipe) != 0) {
        return; // the system's own way to end a program stays
    }
    for (const int end : signalPipe) {
        fcntl(end, F_SETFL, O_NONBLOCK);
        fcntl(end, F_SETFD, FD_CLOEXEC);
    }
    auto* notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, this);
    QObject::connect(notifier, &QSocketNotifier::activated, this, [this] {
        char byte = 0;
        while (read(signalPipe[0], &byte, 1) > 0) {
        }
        come();
    });
    struct sigaction action = {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        sigaction(signal, &action, nullptr);
    }
#endif
}

/// The program has returned from main() where there is no current one.
void SessionEnd::atExit() {
    if (current != nullptr) {
        std::exchange(current, nullptr)->lost_();
    }
}

void SessionEnd::come() {
    if (!std::exchange(came_, true)) {
        ended_();
    }
}

} // namespace drx9
