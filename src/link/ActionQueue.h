#pragma once

#include "platform/EventPump.h"

#include <deque>
#include <functional>

namespace drx9 {

/// Knows whether one of our operations is on the stack, and keeps menu actions and the close request until
/// none is.
///
/// An operation that pumps events (an exchange, a tick, a run-mode change, a film transfer) holds a Scope. A
/// menu action goes through runWhenIdle(): at once when nothing of ours is on the stack, else from the event
/// loop after the last scope has ended. A tick looks at waiting() after each exchange and ends early, so that
/// an action never waits longer than one exchange.
class ActionQueue {
public:
    class Scope {
    public:
        explicit Scope(ActionQueue& queue);
        ~Scope();
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        ActionQueue& queue_;
    };

    explicit ActionQueue(EventPump& pump);

    [[nodiscard]] bool busy() const { return depth_ > 0; }
    [[nodiscard]] bool waiting() const { return !actions_.empty(); }
    /// Runs the action now or, while busy, after the operation in hand. Actions keep their order.
    void runWhenIdle(std::function<void()> action);

private:
    void leave();
    void scheduleDrain();
    void drain();

    EventPump& pump_;
    int depth_ = 0;
    bool drainPosted_ = false;
    std::deque<std::function<void()>> actions_;
};

} // namespace drx9
