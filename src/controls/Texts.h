#pragma once

/// What shared windows tell by themselves. Each has an entry in the manual.
namespace drx9::controlsText {

inline constexpr const char* kNotFound = "Not found"; ///< by the manual's find box

} // namespace drx9::controlsText
