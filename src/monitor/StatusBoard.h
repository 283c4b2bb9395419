#pragma once

#include "link/Discovery.h"
#include "link/Link.h"
#include "monitor/AnswerRecord.h"
#include "monitor/DataLog.h"
#include "monitor/FilmChoice.h"
#include "monitor/InstrumentState.h"
#include "monitor/LinkKeeper.h"
#include "monitor/Monitor.h"
#include "monitor/PollTimer.h"
#include "monitor/Readouts.h"
#include "monitor/RequestDesk.h"
#include "monitor/RunRecord.h"
#include "monitor/Settings.h"
#include "monitor/StandingMessage.h"
#include "monitor/StatusTexts.h"
#include "platform/Clock.h"

#include <array>
#include <span>
#include <string>

namespace drx9 {

/// What the main window shows beside its readouts and its status bar, at one moment. Texts are UTF-8.
struct PanelFacts {
    std::string title;
    bool started = false; ///< the first refresh is done
    bool onLine = false;  ///< the run controls are visible
    bool running = false;
    std::span<const std::string> films; ///< valid until the list is read again
    int filmIndex = -1;                 ///< from 0; -1 none
    std::string filmName;               ///< of the film in use, where the list does not hold it
    std::string filmMark;               ///< why that film is not sure; empty when it is
    bool held = false;                  ///< a window has paused the polling
    std::string shutterCaption;
    Requests requests; ///< that wait
    int sensorCount = kMaxSensors;
    std::array<std::string, kMaxSensors> crystalMarks; ///< why a crystal looks failed; empty: it does not
    double gaugeShare = 0;                             ///< of the final thickness, 0 to 1 and above
};

/// Gathers what the main window's panels, notices and status bar speak of.
class StatusBoard {
public:
    struct Parts {
        const Monitor& monitor;
        const InstrumentState& instrument;
        const StandingMessage& message;
        const RunRecord& run;
        const FilmChoice& choice;
        const RequestDesk& desk;
        const AnswerRecord& answers;
        const LinkKeeper& keeper;
        const Readings& readings;
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

    // As things are now.

    [[nodiscard]] StatusFacts facts() const;
    [[nodiscard]] PanelFacts panels() const;

private:
    void addAnswers(StatusFacts& facts) const;
    void addRequests(StatusFacts& facts) const;
    void addLog(StatusFacts& facts) const;
    [[nodiscard]] std::string crystalMark(std::size_t sensor) const;
    [[nodiscard]] double gaugeShare() const;

    Parts parts_;
};

} // namespace drx9
