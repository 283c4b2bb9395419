#pragma once

#include <string>

namespace drx9 {

/// A message in words that stays in the status bar until the next run starts: another instrument after a
/// loss, graph settings that were not saved. Empty when none.
struct StandingMessage {
    std::string text;
    std::string brief; ///< for narrow windows
};

} // namespace drx9
