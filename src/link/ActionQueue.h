#pragma once

#include "platform/EventPump.h"

#include <cstdint>
#include <deque>
#include <exception>
#include <functional>
#include <utility>

namespace drx9 {

/// Knows whether one of our operations is on the stack, and keeps menu actions and the close request until
/// none is.
///
/// An operation that pumps events (an exchange, a tick, a run-mode change, a film transfer) holds a Scope. An
/// action that touches the link, runs an event loop of its own or closes the program goes through
/// runWhenIdle(): at once when nothing of ours is on the stack, else from the event loop after the last scope
/// has ended. Operations of several exchanges look at waiting() between them and end early, so that an action
/// never waits longer than one exchange, or the few that belong together.
class ActionQueue {
public:
    /// For what an action waits; a refresh that is cut for System still reads the record it shows.
    enum class For : std::uint8_t { Other, System, Close };

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
    [[nodiscard]] bool waitingFor(For purpose) const;
    /// The program has been asked to close: nothing new is begun.
    [[nodiscard]] bool closing() const { return closing_; }
    /// The session ends: the program must be gone within two seconds, and nothing more is sent.
    void hurry() { hurrying_ = true; }
    [[nodiscard]] bool hurrying() const { return hurrying_; }
    /// Runs the action now or, while busy, after the operation in hand. Actions keep their order. A close
    /// goes before all: what waits is dropped for it, and so is what comes after it.
    void runWhenIdle(std::function<void()> action, For purpose = For::Other);
    /// Takes what an action throws; without it the exception goes on to the event loop. The queue goes on
    /// either way.
    void setFaultHandler(std::function<void(const std::exception&)> handler) { fault_ = std::move(handler); }

private:
    struct Waiting {
        std::function<void()> action;
        For purpose;
    };

    void leave();
    void scheduleDrain();
    void drain();
    void run(const std::function<void()>& action);

    EventPump& pump_;
    int depth_ = 0;
    bool drainPosted_ = false;
    bool closing_ = false;
    bool hurrying_ = false;
    std::deque<Waiting> actions_;
    std::function<void(const std::exception&)> fault_;
};

} // namespace drx9
