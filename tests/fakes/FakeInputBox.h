#pragma once

#include "platform/InputBox.h"

#include <string>

namespace drx9 {

struct FakeInput : InputBox {
    std::string answer;
    std::string title;
    std::string ask(const std::string& /*prompt*/, const std::string& asked) override {
        title = asked;
        return answer;
    }
};

} // namespace drx9
