#pragma once

#include "platform/Desktop.h"

#include <string>

namespace drx9 {

struct FakeFileDialogs : FileDialogs {
    FileDialogRequest request;
    int asked = 0;
    std::string answer; ///< empty: cancelled
    std::string openFile(const FileDialogRequest& wanted) override { return saveFile(wanted); }
    std::string saveFile(const FileDialogRequest& wanted) override {
        request = wanted;
        ++asked;
        return answer;
    }
};

} // namespace drx9
