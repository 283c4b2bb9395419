#pragma once

#include <functional>

namespace drx9 {

/// The one place that waits. Everything runs on the user-interface thread; while one of these runs, any event
/// handler of the program may run (timer ticks, clicks, socket and serial events). Whoever calls them says so
/// in its header comment and holds no iterator, reference or half-written state over the call.
class EventPump {
public:
    virtual ~EventPump() = default;
    /// Runs the events that wait, once; returns at once when there are none.
    virtual void processPending() = 0;
    /// Sleeps until at least one event has run, wake() was called, or the deadline (Clock::monotonic seconds)
    /// has passed. Costs no CPU while it sleeps.
    virtual void sleepUntil(double deadline) = 0;
    /// Makes a sleepUntil() in progress, or the next one, return.
    virtual void wake() = 0;
    /// Runs the action later from the event loop, in the order of posting.
    virtual void post(std::function<void()> action) = 0;
};

} // namespace drx9
