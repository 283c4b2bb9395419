#pragma once

#include <cstdint>

namespace drx9 {

/// Values of Monitor::RunMode(): the run modes 0 (Starting), 1 (Idle), 2 (Running) and 3 (Exiting).
enum class RunState : std::uint8_t { Starting, Idle, Running, Exiting };

} // namespace drx9
