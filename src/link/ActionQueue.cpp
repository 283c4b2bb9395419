#include "link/ActionQueue.h"

#include <utility>

namespace drx9 {

ActionQueue::Scope::Scope(ActionQueue& queue)
    : queue_(queue) {
    ++queue_.depth_;
}

ActionQueue::Scope::~Scope() {
    queue_.leave();
}

ActionQueue::ActionQueue(EventPump& pump)
    : pump_(pump) {}

void ActionQueue::runWhenIdle(std::function<void()> action) {
    if (!busy() && actions_.empty()) {
        action();
        return;
    }
    actions_.push_back(std::move(action));
    scheduleDrain();
}

void ActionQueue::leave() {
    --depth_;
    scheduleDrain();
}

void ActionQueue::scheduleDrain() {
    if (depth_ == 0 && !actions_.empty() && !drainPosted_) {
        drainPosted_ = true;
        // From the event loop, not from here: whoever held the scope is still on the stack.
        pump_.post([this] { drain(); });
    }
}

void ActionQueue::drain() {
    drainPosted_ = false;
    if (busy() || actions_.empty()) {
        return; // the end of the operation in hand posts again
    }
    const std::function<void()> action = std::move(actions_.front());
    actions_.pop_front();
    action();
    scheduleDrain();
}

} // namespace drx9
