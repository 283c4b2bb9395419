#pragma once

namespace drx9 {

/// The program's name, as windows and message boxes are titled.
inline constexpr const char* kProgramName = "DRX9 Comm";

} // namespace drx9
