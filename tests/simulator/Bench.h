#pragma once

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "link/Crc.h"
#include "simulator/Simulator.h"

namespace drx9::sim {

/// Status letter and data of a reply packet; "" when the bytes are not exactly one good packet.
inline std::string unwrapped(std::string_view packet) {
    if (packet.size() < 5 || replyPacket(packet[2], packet.substr(3, packet.size() - 5)) != packet) {
        return "";
    }
    return std::string(packet.substr(2, packet.size() - 4));
}

/// An instrument on the bench, with one cable to it.
struct Bench {
    explicit Bench(const SimulatorOptions& options = {})
        : simulator(options, [](const std::string&) {})
        , line(simulator.openLine("test", 0)) {}

    /// All bytes that have left by `now`.
    std::string sentBy(double now) {
        std::string bytes;
        while (const auto some = line.takeDue(now)) {
            bytes += *some;
        }
        return bytes;
    }

    std::string raw(std::string_view command, double now = 0) {
        line.receive(commandPacket(command), now);
        return sentBy(now);
    }

    std::string ask(std::string_view command, double now = 0) { return unwrapped(raw(command, now)); }

    double number(std::string_view command, double now) {
        const std::string reply = ask(command, now);
        EXPECT_EQ(reply.substr(0, 1), "A") << command;
        return std::stod(reply.substr(1));
    }

    Simulator simulator;
    Line line;
};

inline SimulatorOptions withFaults(std::string_view list) {
    SimulatorOptions options;
    FaultList parsed = parseFaults(list);
    EXPECT_EQ(parsed.error, "");
    options.faults = std::move(parsed.faults);
    return options;
}

} // namespace drx9::sim
