#pragma once

#include "platform/Progress.h"

namespace drx9 {

/// The progress window over the film window, as long as this lives.
class ShownProgress {
public:
    ShownProgress(Progress& progress, const char* text)
        : progress_(progress) {
        progress_.ProgressShow(text, ProgressOwner::FilmWindow);
    }
    ShownProgress(const ShownProgress&) = delete;
    ShownProgress& operator=(const ShownProgress&) = delete;
    ~ShownProgress() { progress_.ProgressHide(); }

private:
    Progress& progress_;
};

} // namespace drx9
