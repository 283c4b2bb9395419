#pragma once

#include "fakes/FakeClock.h"
#include "platform/EventPump.h"

#include <deque>
#include <functional>
#include <map>
#include <stdexcept>
#include <utility>

namespace drx9 {

/// An event loop without a screen: the test says what happens, and when.
///
/// Every processPending() and every sleepUntil() counts as one pump. To put an event at each pump of an
/// operation, run the operation once, read pumps(), and run it again for each n with atPump(n, event). A
/// sleep in which nothing happens moves the clock to its deadline. Exceptions of actions come out of the
/// pump.
class FakeEventPump : public EventPump {
public:
    using Action = std::function<void()>;

    explicit FakeEventPump(FakeClock& clock)
        : clock_(clock) {}

    void processPending() override {
        count();
        runAll();
    }
    void sleepUntil(double deadline) override {
        count();
        if (!runAll() && !woken_) {
            clock_.advanceTo(atTime_.empty() ? deadline : std::min(deadline, atTime_.begin()->first));
            runAll();
        }
        woken_ = false;
    }
    void wake() override { woken_ = true; }
    void post(Action action) override { posted_.push_back(std::move(action)); }

    /// Runs the action at the n-th pump from now; 1 is the next one.
    void atPump(int n, Action action) { atPump_.emplace(pumps_ + n, std::move(action)); }
    /// Runs the action once the clock has come to `time` (Clock::monotonic), in the first pump after that; a
    /// sleep goes no further than that.
    void atTime(double time, Action action) { atTime_.emplace(time, std::move(action)); }
    /// Runs posted actions until none is left, without counting as a pump.
    void runPosted() {
        while (runPostedOnce()) {
        }
    }
    /// Sleeps (and runs whatever happens) until the clock has moved by `seconds`.
    void runFor(double seconds) {
        for (const double end = clock_.monotonic() + seconds; clock_.monotonic() < end;) {
            sleepUntil(end);
        }
        runPosted();
    }

    [[nodiscard]] int pumps() const { return pumps_; }
    [[nodiscard]] FakeClock& clock() { return clock_; }

private:
    static constexpr int kSpinLimit = 20000;

    void count() {
        ++pumps_;
        idlePumps_ = clock_.monotonic() > lastSeen_ ? 0 : idlePumps_ + 1;
        lastSeen_ = clock_.monotonic();
        if (idlePumps_ > kSpinLimit) {
            throw std::runtime_error("the event pump is called again and again while the clock stands");
        }
    }
    /// Whether anything happened.
    bool runAll() {
        const bool scripted = runUpTo(atPump_, pumps_);
        const bool due = runUpTo(atTime_, clock_.monotonic());
        return runPostedOnce() || scripted || due;
    }
    /// Takes each entry out before it runs: it may pump, and add entries.
    template<class Key>
    static bool runUpTo(std::multimap<Key, Action>& entries, Key now) {
        bool happened = false;
        while (!entries.empty() && entries.begin()->first <= now) {
            entries.extract(entries.begin()).mapped()();
            happened = true;
        }
        return happened;
    }
    bool runPostedOnce() {
        const std::size_t waiting = posted_.size();
        // An action may pump and so run what waits behind it: the queue can be shorter than counted.
        for (std::size_t i = 0; i < waiting && !posted_.empty(); ++i) {
            const Action action = std::move(posted_.front());
            posted_.pop_front();
            action();
        }
        return waiting > 0;
    }

    FakeClock& clock_;
    int pumps_ = 0;
    int idlePumps_ = 0; ///< pumps since the clock last moved
    double lastSeen_ = 0;
    bool woken_ = false;
    std::multimap<int, Action> atPump_;
    std::multimap<double, Action> atTime_;
    std::deque<Action> posted_;
};

} // namespace drx9
