#include "platform/qt/QtTicker.h"

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
    if (running_)
        return;
    running_ = true;
    next_ = clock_.monotonic();
    // Started from within a tick: that tick's end schedules the next.
    if (!ticking_)
        schedule();
}

void QtTicker::stop() {
    running_ = false;
    timer_.stop();
}

void QtTicker::fired() {
    ticking_ = true;
    if (tick_)
        tick_();
    ticking_ = false;
    if (running_)
        schedule();
}

void QtTicker::schedule() {
    const double now = clock_.monotonic();
    next_ += interval_ * std::max(1.0, std::floor((now - next_) / interval_) + 1);
    const double wait = std::max(0.0, std::ceil((next_ - now) * 1000));
    timer_.start(std::chrono::milliseconds(static_cast<std::int64_t>(wait)));
}

} // namespace drx9
