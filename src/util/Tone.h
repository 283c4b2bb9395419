#pragma once

#include <cstdint>

namespace drx9 {

/// How grave a text on a window's bottom line or in the status bar is.
enum class Tone : std::uint8_t { Plain, Warn, Alarm };

} // namespace drx9
