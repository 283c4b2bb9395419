#pragma once

#include "link/ActionQueue.h"
#include "link/Discovery.h"
#include "link/Link.h"
#include "link/MonitorAccess.h"
#include "monitor/AnswerRecord.h"
#include "monitor/FilmChoice.h"
#include "monitor/InstrumentState.h"
#include "monitor/LinkKeeper.h"
#include "monitor/Monitor.h"
#include "monitor/MonitorWindow.h"

namespace drx9 {

/// What the communications window changes in the running program.
class LinkSetupDesk : public LinkSetupAccess {
public:
    struct Parts {
        Monitor& monitor;
        const Link& link;
        Discovery& discovery;
        LinkKeeper& keeper;
        FilmChoice& choice;
        AnswerRecord& answers;
        InstrumentState& instrument;
        ActionQueue& actions;
        MonitorWindow& window;
    };

    explicit LinkSetupDesk(const Parts& parts)
        : parts_(parts) {}

    void linkSetupOpened() override { parts_.monitor.setRunMode(RunState::Starting); }
    void linkFound() override;
    void filmUnconfirmed() override;
    void linkSetupClosed(bool reopen, bool sameLink) override;

private:
    Parts parts_;
};

} // namespace drx9
