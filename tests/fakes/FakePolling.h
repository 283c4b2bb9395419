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
            explicit Hold(FakePolling& owner)
                : polling(owner) {
                ++polling.holds;
            }
            Hold(const Hold&) = delete;
            Hold& operator=(const Hold&) = delete;
            ~Hold() override {
                --polling.holds;
                polling.released();
            }
            FakePolling& polling;
        };
        return std::make_unique<Hold>(*this);
    }
};

} // namespace drx9
