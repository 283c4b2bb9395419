#pragma once

#include "fakes/FakeEventPump.h"

#include <deque>
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
    void answer(std::string bytes, double delay = 0) { script_.push_back({delay, std::move(bytes)}); }
    /// Answers all packets for which no answer was queued.
    void setAnswerer(Answerer answerer, double delay = 0);
    /// Bytes that come without having been asked for.
    void arrive(std::string bytes, double delay = 0);

    /// Texts of the commands that were sent, without frame and check characters.
    [[nodiscard]] const std::vector<std::string>& commands() const { return commands_; }
    /// The same with their frames.
    [[nodiscard]] const std::vector<std::string>& packets() const { return packets_; }
    void forget();

    // For the fake ports.

    void sent(std::string_view packet);
    [[nodiscard]] std::size_t waiting();
    std::string take(std::size_t most);
    void discard();

private:
    struct Timed {
        double time = 0; ///< of arrival; in the script: the delay
        std::string bytes;
    };

    void takeArrived();

    FakeEventPump& pump_;
    bool wakes_;
    Answerer answerer_;
    double answererDelay_ = 0;
    std::deque<Timed> script_;
    std::deque<Timed> underWay_;
    std::string waiting_;
    std::vector<std::string> commands_;
    std::vector<std::string> packets_;
};

} // namespace drx9
