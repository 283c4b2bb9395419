#pragma once

#include "platform/Clock.h"
#include "platform/Desktop.h"

#include <QTimer>

#include <functional>

namespace drx9 {

/// Ticks on multiples of the interval since start(). A tick that takes longer than the interval is followed
/// by the next as soon as the events that wait have run once, and the beat starts again from there; however
/// many beats it ran over, one tick makes up for them.
class QtTicker : public Ticker {
public:
    QtTicker(const Clock& clock, int intervalMs);

    /// What a tick does; set once before start().
    void setTick(std::function<void()> tick) { tick_ = std::move(tick); }

    void start() override; ///< no effect while it runs
    void stop() override;
    [[nodiscard]] bool running() const override { return running_; }

private:
    void fired();
    void arm();

    const Clock& clock_;
    double interval_; ///< s
    double next_ = 0; ///< monotonic time (s) of the beat that is waited for
    bool running_ = false;
    bool ticking_ = false;
    std::function<void()> tick_;
    QTimer timer_;
};

} // namespace drx9
