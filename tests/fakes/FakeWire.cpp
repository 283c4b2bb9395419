#include "fakes/FakeWire.h"

#include <algorithm>

namespace drx9 {

void FakeWire::setAnswerer(Answerer answerer, double delay) {
    answerer_ = std::move(answerer);
    answererDelay_ = delay;
}

void FakeWire::arrive(std::string bytes, double delay) {
    if (bytes.empty()) {
        return;
    }
    const double time = pump_.clock().monotonic() + delay;
    const auto later = [](double t, const Timed& entry) { return t < entry.time; };
    underWay_.insert(std::upper_bound(underWay_.begin(), underWay_.end(), time, later),
                     {time, std::move(bytes)});
    if (wakes_ && delay > 0) {
        pump_.atTime(time, [&pump = pump_] { pump.wake(); });
    } else if (wakes_) {
        pump_.wake();
    }
}

void FakeWire::forget() {
    commands_.clear();
    packets_.clear();
}

void FakeWire::sent(std::string_view packet) {
    packets_.emplace_back(packet);
    // Sync and length before the text, two check characters behind it.
    commands_.emplace_back(packet.size() > 4 ? packet.substr(2, packet.size() - 4) : packet);
    if (!script_.empty()) {
        const Timed next = std::move(script_.front());
        script_.pop_front();
        arrive(next.bytes, next.time);
    } else if (answerer_) {
        arrive(answerer_(commands_.back()), answererDelay_);
    }
}

std::size_t FakeWire::waiting() {
    takeArrived();
    return waiting_.size();
}

std::string FakeWire::take(std::size_t most) {
    takeArrived();
    std::string bytes = waiting_.substr(0, most);
    waiting_.erase(0, bytes.size());
    return bytes;
}

void FakeWire::discard() {
    takeArrived();
    waiting_.clear();
}

void FakeWire::takeArrived() {
    while (!underWay_.empty() && underWay_.front().time <= pump_.clock().monotonic()) {
        waiting_ += underWay_.front().bytes;
        underWay_.pop_front();
    }
}

} // namespace drx9
