#pragma once

#include "platform/Clock.h"
#include "platform/EventPump.h"

#include <QEventLoop>
#include <QObject>
#include <QTimer>

#include <deque>
#include <functional>

namespace drx9 {

/// The event pump on the event dispatcher of the thread it is made in (after the QApplication).
///
/// Sleeps may be nested: an event handler that runs inside one may sleep itself. When the inner one returns
/// the outer one returns too, an event having run in it, so that neither can miss a wake-up that the other
/// one saw.
///
/// An event loop that a handler starts inside a sleep and that goes on above it (a dialog that is executed, a
/// drag) holds up the exchange under it until it ends. That is a fault of the program: it is written to the
/// log as a critical message, once a sleep, and the tests fail on it.
class QtEventPump : public QObject, public EventPump {
public:
    explicit QtEventPump(const Clock& clock);

    /// Within half a millisecond of the last turn of the event loop only the queued events run; what the
    /// system has to tell since then waits for the next turn. So a quick exchange does not pay for looking
    /// three times.
    void processPending() override;
    void sleepUntil(double deadline) override;
    void wake() override;
    void post(std::function<void()> action) override;

private:
    /// One sleepUntil() on the stack.
    struct Sleep {
        double deadline;
        int loops; ///< event loops of the thread at its start
        bool loopTold = false;
        bool done = false; ///< an event of ours ran, or wake() was called
        Sleep* outer = nullptr;
    };

    void turn(QEventLoop::ProcessEventsFlags flags);
    void armTimer(double deadline);
    void timerFired();
    void beforeBlocking();
    void watchForLoops();
    void runPosted();
    void finishSleeps();

    const Clock& clock_;
    /// Runs on from one sleep to the next: arming a timer for each exchange, a second ahead and never
    /// reached, costs more than one idle expiry a second.
    QTimer timer_;
    double armedFor_ = 0; ///< deadline (s) of the running timer
    double lastTurn_ = 0; ///< when the event loop last came round
    Sleep* sleep_ = nullptr;
    bool wokenEarly_ = false; ///< wake() came while nobody slept
    std::deque<std::function<void()>> posted_;
};

} // namespace drx9
