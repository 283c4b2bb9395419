#pragma once

#include "fakes/FakeClock.h"
#include "platform/EventPump.h"

#include <deque>
#include <functional>
#include <map>
#include <utility>
#include <vector>

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

    void processPending() override;
    void sleepUntil(double deadline) override;
    void wake() override { woken_ = true; }
    void post(Action action) override { posted_.push_back(std::move(action)); }

    /// Runs the action at the n-th pump from now; 1 is the next one.
    void atPump(int n, Action action) { atPump_.emplace(pumps_ + n, std::move(action)); }
    /// Runs the action at each pump from now on, but not inside itself; an empty one ends it.
    void everyPump(Action action) { every_ = std::move(action); }
    /// Runs the action once the clock has come to `time` (Clock::monotonic), in the first pump after that; a
    /// sleep goes no further than that.
    void atTime(double time, Action action) { atTime_.emplace(time, std::move(action)); }
    /// Runs posted actions until none is left, without counting as a pump.
    void runPosted();
    /// Sleeps (and runs whatever happens) until the clock has moved by `seconds`.
    void runFor(double seconds);

    [[nodiscard]] int pumps() const { return pumps_; }
    /// How long each sleepUntil() was asked to sleep at most, in seconds.
    [[nodiscard]] const std::vector<double>& sleeps() const { return sleeps_; }
    [[nodiscard]] FakeClock& clock() { return clock_; }

private:
    void count();
    bool runScripted();
    bool runDue();
    bool runPostedOnce();

    FakeClock& clock_;
    int pumps_ = 0;
    int idlePumps_ = 0; ///< pumps since the clock last moved
    double lastSeen_ = 0;
    bool woken_ = false;
    bool inEvery_ = false;
    Action every_;
    std::multimap<int, Action> atPump_;
    std::multimap<double, Action> atTime_;
    std::deque<Action> posted_;
    std::vector<double> sleeps_;
};

} // namespace drx9
