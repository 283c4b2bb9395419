#pragma once

#include "platform/Progress.h"
#include "util/Numbers.h"

namespace drx9 {

/// The progress window, as long as this lives.
class ShownProgress {
public:
    /// Pumps events.
    ShownProgress(Progress& progress, const char* text, ProgressOwner owner)
        : progress_(progress) {
        progress_.ProgressShow(text, owner);
    }
    ShownProgress(const ShownProgress&) = delete;
    ShownProgress& operator=(const ShownProgress&) = delete;
    ~ShownProgress() { progress_.ProgressHide(); }

    /// `part` of `whole` is being done.
    void reach(int part, int whole) const { progress_.setProgress(toInt16(part * 100.0 / whole)); }

private:
    Progress& progress_;
};

} // namespace drx9
