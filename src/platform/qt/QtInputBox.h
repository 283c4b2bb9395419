#pragma once

#include "platform/InputBox.h"

namespace drx9 {

/// Asks in a dialog with the object name "InputBox".
class QtInputBox : public InputBox {
public:
    std::string ask(const std::string& prompt, const std::string& title) override;
};

} // namespace drx9
