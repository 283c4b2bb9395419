#pragma once

#include "link/MonitorAccess.h"
#include "monitor/Monitor.h"
#include "monitor/PollTimer.h"

#include <memory>
#include <string>

namespace drx9 {

/// What the windows beside the main one may ask of the monitor; each gets only the interface that it uses.
class WindowAccess : public PollingAccess,
                     public LinkSetupAccess,
                     public SystemRecordAccess,
                     public FilmMemoryAccess {
public:
    WindowAccess(Monitor& monitor, PollTimer& timer)
        : monitor_(monitor)
        , timer_(timer) {}

    [[nodiscard]] std::unique_ptr<Tenure> holdTimer(const std::string& reason) override;

    void linkSetupOpened() override { monitor_.setRunMode(RunState::Starting); }
    void linkFound() override { monitor_.linkFound(); }
    void linkSetupClosed(bool reopen, bool sameLink) override { monitor_.linkSetupClosed(reopen, sameLink); }

    [[nodiscard]] bool systemKnown() const override { return monitor_.shown().systemKnown; }
    void systemSent(bool accepted) override { monitor_.systemSent(accepted); }

    void filmMemoryChanged() override { monitor_.setRunMode(RunState::Idle); }
    void filmUnconfirmed() override { monitor_.filmUnconfirmed(); }

private:
    Monitor& monitor_;
    PollTimer& timer_;
};

} // namespace drx9
