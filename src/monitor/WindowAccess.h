#pragma once

#include "link/ActionQueue.h"
#include "link/Discovery.h"
#include "link/Link.h"
#include "link/MonitorAccess.h"
#include "monitor/AnswerRecord.h"
#include "monitor/FilmChoice.h"
#include "monitor/InstrumentForm.h"
#include "monitor/LinkKeeper.h"
#include "monitor/Monitor.h"
#include "monitor/MonitorWindow.h"
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
    struct Parts {
        Monitor& monitor;
        PollTimer& timer;
        Link& link;
        Discovery& discovery;
        LinkKeeper& keeper;
        FilmChoice& choice;
        AnswerRecord& answers;
        InstrumentForm& form;
        ActionQueue& actions;
        MonitorWindow& window;
    };

    explicit WindowAccess(const Parts& parts)
        : parts_(parts) {}

    [[nodiscard]] std::unique_ptr<Tenure> holdTimer(const std::string& reason) override;

    void linkSetupOpened() override { parts_.monitor.setRunMode(RunState::Starting); }
    void linkFound() override;
    void linkSetupClosed(bool reopen, bool sameLink) override;

    [[nodiscard]] bool systemKnown() const override { return parts_.form.systemKnown(); }
    void systemSent(bool accepted) override;
    void systemClosed() override;

    void filmMemoryChanged() override { parts_.monitor.setRunMode(RunState::Idle); }
    void filmUnconfirmed() override;

private:
    Parts parts_;
};

} // namespace drx9
