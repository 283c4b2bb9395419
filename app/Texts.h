#pragma once

/// What the program tells before it has a window. "{}" stands for what `filled` puts in. Each has an entry
/// in the manual.
namespace drx9::appText {

inline constexpr const char* kRunningAlready = "DRX9 Comm is already running with the files in {}.";

} // namespace drx9::appText
