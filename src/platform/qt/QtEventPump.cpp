#include "platform/qt/QtEventPump.h"

#include "platform/Texts.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QScopeGuard>
#include <QThread>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

namespace drx9 {

namespace {

constexpr double kFresh = 0.0005; ///< s

QAbstractEventDispatcher& dispatcher() {
    return *QAbstractEventDispatcher::instance();
}

int runningLoops() {
    return QThread::currentThread()->loopLevel();
}

} // namespace

QtEventPump::QtEventPump(const Clock& clock)
    : clock_(clock) {
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    connect(&timer_, &QTimer::timeout, this, &QtEventPump::timerFired);
    connect(&dispatcher(), &QAbstractEventDispatcher::aboutToBlock, this, &QtEventPump::beforeBlocking);
}

void QtEventPump::processPending() {
    if (clock_.monotonic() - lastTurn_ < kFresh) {
        QCoreApplication::sendPostedEvents();
    } else {
        turn(QEventLoop::AllEvents);
    }
    finishSleeps();
}

void QtEventPump::turn(QEventLoop::ProcessEventsFlags flags) {
    dispatcher().processEvents(flags);
    lastTurn_ = clock_.monotonic();
}

void QtEventPump::sleepUntil(double deadline) {
    if (std::exchange(wokenEarly_, false)) {
        return;
    }
    watchForLoops();
    if (clock_.monotonic() >= deadline) {
        turn(QEventLoop::AllEvents);
        return finishSleeps();
    }
    armTimer(deadline);
    Sleep sleep{.deadline = deadline, .loops = runningLoops(), .outer = sleep_};
    sleep_ = &sleep;
    const auto leave = qScopeGuard([&] {
        sleep_ = sleep.outer;
        finishSleeps();
    });
    turn(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}

void QtEventPump::wake() {
    if (sleep_ == nullptr) {
        wokenEarly_ = true;
    } else {
        finishSleeps();
    }
}

/// Every sleep on the stack has had its event; beforeBlocking() makes those that have not blocked yet return.
void QtEventPump::finishSleeps() {
    for (Sleep* sleep = sleep_; sleep != nullptr && !sleep->done; sleep = sleep->outer) {
        sleep->done = true;
    }
}

/// The dispatcher runs posted events before it blocks: a wake-up that came from one of them, or from a pump
/// or a dialog that one of them ran, must not be slept through.
void QtEventPump::beforeBlocking() {
    watchForLoops();
    if (sleep_ != nullptr && sleep_->done) {
        dispatcher().wakeUp();
    }
}

void QtEventPump::watchForLoops() {
    if (sleep_ != nullptr && !sleep_->loopTold && runningLoops() > sleep_->loops) {
        sleep_->loopTold = true;
        qCritical("%s", platformText::kLoopAboveWait);
    }
}

/// A timer that is set for an earlier time is left to run: it is armed again when it has fired.
void QtEventPump::armTimer(double deadline) {
    if (timer_.isActive() && armedFor_ <= deadline) {
        return;
    }
    const double wait = std::clamp(std::ceil((deadline - clock_.monotonic()) * 1000), 0.0, 86400e3);
    armedFor_ = deadline;
    timer_.start(std::chrono::milliseconds(static_cast<std::int64_t>(wait)));
}

void QtEventPump::timerFired() {
    if (sleep_ == nullptr) {
        return;
    }
    if (clock_.monotonic() < sleep_->deadline) {
        armTimer(sleep_->deadline);
    } else {
        finishSleeps();
    }
}

void QtEventPump::post(std::function<void()> action) {
    posted_.push_back(std::move(action));
    QMetaObject::invokeMethod(this, &QtEventPump::runPosted, Qt::QueuedConnection);
}

void QtEventPump::runPosted() {
    const std::function<void()> action = std::move(posted_.front());
    posted_.pop_front();
    action();
    finishSleeps();
}

} // namespace drx9
