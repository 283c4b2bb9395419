#include "platform/qt/QtTicker.h"

#include <QScopeGuard>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>

namespace drx9 {

QtTicker::QtTicker(const Clock& clock, int intervalMs)
    : clock_(clock)
    , interval_(intervalMs / 1000.0) {
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { fired(); });
}

void QtTicker::start() {
    if (running_) {
        return;
    }
    running_ = true;
    next_ = clock_.monotonic() + interval_;
    if (!ticking_) { // else that tick's end arms the timer
        arm();
    }
}

void QtTicker::stop() {
    running_ = false;
    timer_.stop();
}

void QtTicker::fired() {
    const double now = clock_.monotonic();
    if (now - next_ >= interval_) { // something else held the event loop up: no beat is made up for
        next_ = now;
    }
    next_ += interval_;
    ticking_ = true;
    const auto leave = qScopeGuard([this] {
        ticking_ = false;
        if (running_) {
            arm();
        }
    });
    if (tick_) {
        tick_();
    }
}

/// Armed for a beat that has passed, the timer fires once the events that wait now have run.
void QtTicker::arm() {
    const double now = clock_.monotonic();
    next_ = std::max(next_, now);
    const double wait = std::ceil((next_ - now) * 1000);
    timer_.start(std::chrono::milliseconds(static_cast<std::int64_t>(wait)));
}

} // namespace drx9
