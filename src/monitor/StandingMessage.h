#pragma once

#include "monitor/MonitorWindow.h"

#include <string>
#include <utility>

namespace drx9 {

/// A message in words that stays in the status bar until the next run starts: another instrument after a
/// loss, graph settings that were not saved. Empty when none.
class StandingMessage {
public:
    explicit StandingMessage(MonitorWindow& window)
        : window_(window) {}

    /// `brief` is for narrow windows.
    void tell(std::string text, std::string brief) {
        text_ = std::move(text);
        brief_ = std::move(brief);
        window_.changed();
    }
    void clear() { tell({}, {}); }

    [[nodiscard]] const std::string& text() const { return text_; }
    [[nodiscard]] const std::string& brief() const { return brief_; }

private:
    MonitorWindow& window_;
    std::string text_;
    std::string brief_;
};

} // namespace drx9
