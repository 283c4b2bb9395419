#pragma once

#include <cstdint>

namespace drx9 {

/// Values of Monitor::RunMode().
enum : std::int16_t { kStarting = 0, kIdle = 1, kRunning = 2, kExiting = 3 };

} // namespace drx9
