#pragma once

#include <cstdint>

namespace drx9 {

/// Values of Monitor::RunMode().
enum class RunState : std::uint8_t { Starting, Idle, Running, Exiting };

} // namespace drx9
