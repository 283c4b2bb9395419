#include "fakes/FakeEventPump.h"

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <utility>

namespace drx9 {

namespace {
constexpr int kSpinLimit = 20000;

/// Takes the entry out before it runs: it may pump, and add entries.
template<class Map>
void runAndErase(Map& entries, typename Map::iterator entry) {
    const FakeEventPump::Action action = std::move(entry->second);
    entries.erase(entry);
    action();
}
} // namespace

void FakeEventPump::processPending() {
    count();
    runScripted();
    runDue();
    runPostedOnce();
}

void FakeEventPump::sleepUntil(double deadline) {
    sleeps_.push_back(deadline - clock_.monotonic());
    count();
    bool happened = runScripted();
    happened = runDue() || happened;
    happened = runPostedOnce() || happened;
    if (!happened && !woken_) {
        const double next = atTime_.empty() ? deadline : std::min(deadline, atTime_.begin()->first);
        clock_.advanceTo(next);
        runDue();
        runPostedOnce();
    }
    woken_ = false;
}

void FakeEventPump::runPosted() {
    while (runPostedOnce()) {
    }
}

void FakeEventPump::runFor(double seconds) {
    const double end = clock_.monotonic() + seconds;
    while (clock_.monotonic() < end) {
        sleepUntil(end);
    }
    runPosted();
}

void FakeEventPump::count() {
    ++pumps_;
    if (clock_.monotonic() > lastSeen_) {
        lastSeen_ = clock_.monotonic();
        idlePumps_ = 0;
    } else if (++idlePumps_ > kSpinLimit) {
        throw std::runtime_error("the event pump is called again and again while the clock stands");
    }
}

bool FakeEventPump::runScripted() {
    const int now = pumps_;
    bool happened = false;
    for (auto entry = atPump_.find(now); entry != atPump_.end(); entry = atPump_.find(now)) {
        runAndErase(atPump_, entry);
        happened = true;
    }
    if (every_ && !inEvery_) {
        inEvery_ = true;
        const std::shared_ptr<bool> leave(&inEvery_, [](bool* flag) { *flag = false; });
        const Action action = every_;
        action();
    }
    return happened;
}

bool FakeEventPump::runDue() {
    bool happened = false;
    while (!atTime_.empty() && atTime_.begin()->first <= clock_.monotonic()) {
        runAndErase(atTime_, atTime_.begin());
        happened = true;
    }
    return happened;
}

bool FakeEventPump::runPostedOnce() {
    const std::size_t waiting = posted_.size();
    // An action may pump and so run what waits behind it: the queue can be shorter than counted.
    for (std::size_t i = 0; i < waiting && !posted_.empty(); ++i) {
        const Action action = std::move(posted_.front());
        posted_.pop_front();
        action();
    }
    return waiting > 0;
}

} // namespace drx9
