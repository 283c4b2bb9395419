#pragma once

#include "link/MonitorAccess.h"

#include <functional>
#include <memory>
#include <string>

namespace drx9 {

/// Counts who holds the poll timer.
struct FakePolling : PollingAccess {
    int holds = 0;
    std::function<void()> released = [] {};

    std::unique_ptr<Tenure> holdTimer(const std::string&) override {
        struct Hold : Tenure {
            std::shared_ptr<void> held;
        };
        auto hold = std::make_unique<Hold>();
        ++holds;
        hold->held = {nullptr, [this](void*) {
                          --holds;
                          released();
                      }};
        return hold;
    }
};

} // namespace drx9
