#include "monitor/MonitorWindow.h"

namespace drx9 {

void WindowSlot::showWindow() {
    if (window_ != nullptr) {
        window_->showWindow();
    }
}

void WindowSlot::setHourglass(bool on) {
    if (window_ != nullptr) {
        window_->setHourglass(on);
    }
}

void WindowSlot::changed() {
    if (window_ != nullptr) {
        window_->changed();
    }
}

void WindowSlot::closeOtherWindows() {
    if (window_ != nullptr) {
        window_->closeOtherWindows();
    }
}

} // namespace drx9
