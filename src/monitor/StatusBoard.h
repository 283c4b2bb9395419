#pragma once

#include "link/Discovery.h"
#include "link/Link.h"
#include "monitor/DataLog.h"
#include "monitor/Monitor.h"
#include "monitor/PollTimer.h"
#include "monitor/Readouts.h"
#include "monitor/Settings.h"
#include "monitor/StatusTexts.h"
#include "platform/Clock.h"

namespace drx9 {

/// Gathers what notices and status bar speak of.
class StatusBoard {
public:
    struct Parts {
        const Monitor& monitor;
        const Settings& settings;
        const Link& link;
        const Discovery& discovery;
        const DataLog& log;
        const PollTimer& timer;
        const Readouts& readouts;
        const Clock& clock;
    };

    explicit StatusBoard(const Parts& parts)
        : parts_(parts) {}

    /// As things are now.
    [[nodiscard]] StatusFacts facts() const;

private:
    void addAnswers(StatusFacts& facts) const;
    void addRequests(StatusFacts& facts) const;
    void addLog(StatusFacts& facts) const;

    Parts parts_;
};

} // namespace drx9
