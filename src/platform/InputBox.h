#pragma once

#include <string>

namespace drx9 {

/// Asks the operator for a line of text over the window that is active.
class InputBox {
public:
    virtual ~InputBox() = default;
    /// Runs the event loop until answered. Texts are UTF-8; empty when cancelled.
    virtual std::string ask(const std::string& prompt, const std::string& title) = 0;
};

} // namespace drx9
