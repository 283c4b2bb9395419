#pragma once

#include "fakes/FakeEventPump.h"

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace drx9 {

/// The instrument's end of a fake link: what the program sent, and what it gets back. All answers are raw
/// bytes (replyPacket() of link/Crc.h makes a good one), so that a test can also answer rubbish.
class FakeWire {
public:
    /// Raw answer to a command text ("P1"); an empty one is silence.
    using Answerer = std::function<std::string(const std::string& command)>;

    /// `wakes` says whether arriving bytes wake the event pump, as they do for serial ports and sockets.
    FakeWire(FakeEventPump& pump, bool wakes)
        : pump_(pump)
        , wakes_(wakes) {}

    /// Answer to the next packet that has none yet, `delay` seconds after it was sent.
    void answer(std::string bytes, double delay = 0) { script_.emplace_back(delay, std::move(bytes)); }
    /// Answers all packets for which no answer was queued.
    void setAnswerer(Answerer answerer, double delay = 0) {
        answerer_ = std::move(answerer);
        answererDelay_ = delay;
    }
    /// Bytes that come without having been asked for.
    void arrive(std::string bytes, double delay = 0) {
        if (bytes.empty()) {
            return;
        }
        const double time = pump_.clock().monotonic() + delay;
        underWay_.emplace(time, std::move(bytes));
        if (wakes_ && delay > 0) {
            pump_.atTime(time, [this] { pump_.wake(); });
        } else if (wakes_) {
            pump_.wake();
        }
    }

    /// Texts of the commands that were sent, without frame and check characters.
    [[nodiscard]] const std::vector<std::string>& commands() const { return commands_; }
    /// The same with their frames.
    [[nodiscard]] const std::vector<std::string>& packets() const { return packets_; }
    void forget() {
        commands_.clear();
        packets_.clear();
    }

    // For the fake ports.

    void sent(std::string_view packet) {
        packets_.emplace_back(packet);
        // Sync and length before the text, two check characters behind it.
        commands_.emplace_back(packet.size() > 4 ? packet.substr(2, packet.size() - 4) : packet);
        if (!script_.empty()) {
            const auto [delay, bytes] = std::move(script_.front());
            script_.pop_front();
            arrive(bytes, delay);
        } else if (answerer_) {
            arrive(answerer_(commands_.back()), answererDelay_);
        }
    }
    [[nodiscard]] std::size_t waiting() {
        while (!underWay_.empty() && underWay_.begin()->first <= pump_.clock().monotonic()) {
            waiting_ += underWay_.extract(underWay_.begin()).mapped();
        }
        return waiting_.size();
    }
    std::string take(std::size_t most) {
        const std::size_t count = std::min(most, waiting());
        std::string bytes = waiting_.substr(0, count);
        waiting_.erase(0, count);
        return bytes;
    }
    void discard() { take(waiting()); }

private:
    FakeEventPump& pump_;
    bool wakes_;
    Answerer answerer_;
    double answererDelay_ = 0;
    std::deque<std::pair<double, std::string>> script_; ///< delay and bytes of the next answers
    std::multimap<double, std::string> underWay_;       ///< by time of arrival
    std::string waiting_;
    std::vector<std::string> commands_;
    std::vector<std::string> packets_;
};

} // namespace drx9
