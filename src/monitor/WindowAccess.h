#pragma once

#include "link/MonitorAccess.h"
#include "monitor/FilmChoice.h"
#include "monitor/InstrumentState.h"
#include "monitor/Monitor.h"
#include "monitor/MonitorWindow.h"
#include "monitor/PollTimer.h"

#include <memory>
#include <string>

namespace drx9 {

/// What the windows beside the main one may ask of the monitor; each gets only the interface that it uses.
/// The communications window has LinkSetupDesk too.
class WindowAccess : public PollingAccess, public SystemRecordAccess, public FilmMemoryAccess {
public:
    struct Parts {
        Monitor& monitor;
        PollTimer& timer;
        FilmChoice& choice;
        InstrumentState& instrument;
        MonitorWindow& window;
    };

    explicit WindowAccess(const Parts& parts)
        : parts_(parts) {}

    [[nodiscard]] std::unique_ptr<Tenure> holdTimer(const std::string& reason) override;

    [[nodiscard]] bool systemKnown() const override { return parts_.instrument.systemKnown(); }
    void systemSent(bool accepted) override;
    void systemClosed() override;

    void filmMemoryChanged() override { parts_.monitor.setRunMode(RunState::Idle); }
    void filmUnconfirmed() override;

private:
    Parts parts_;
};

} // namespace drx9
