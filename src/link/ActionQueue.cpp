#include "link/ActionQueue.h"

#include <algorithm>
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

bool ActionQueue::waitingFor(For purpose) const {
    return std::any_of(actions_.begin(), actions_.end(),
                       [purpose](const Waiting& waiting) { return waiting.purpose == purpose; });
}

void ActionQueue::runWhenIdle(std::function<void()> action, For purpose) {
    if (closing_) {
        return;
    }
    if (purpose == For::Close) {
        closing_ = true;
        actions_.clear();
    }
    if (!busy() && actions_.empty()) {
        run(action);
        return;
    }
    actions_.push_back({std::move(action), purpose});
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
    const std::function<void()> action = std::move(actions_.front().action);
    actions_.pop_front();
    scheduleDrain(); // before the action, which may open a dialog and run the event loop for hours
    run(action);
}

void ActionQueue::run(const std::function<void()>& action) {
    if (!fault_) {
        action();
        return;
    }
    try {
        action();
    } catch (const std::exception& error) {
        fault_(error);
    }
}

} // namespace drx9
