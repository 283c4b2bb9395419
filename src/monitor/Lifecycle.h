#pragma once

#include "link/ActionQueue.h"
#include "link/Discovery.h"
#include "monitor/CloseQuestions.h"
#include "monitor/InstrumentState.h"
#include "monitor/MainWindowAccess.h"
#include "monitor/Monitor.h"
#include "monitor/MonitorWindow.h"
#include "monitor/RunRecord.h"
#include "monitor/SettingsStore.h"
#include "platform/MessageBoxes.h"

#include <exception>
#include <functional>

namespace drx9 {

/// The program's start and its ends.
class Lifecycle : public ProgramEnd {
public:
    struct Parts {
        Monitor& monitor;
        SettingsStore& settings;
        RunRecord& run;
        InstrumentState& instrument;
        Discovery& discovery;
        ActionQueue& actions;
        CloseQuestions& questions;
        MonitorWindow& window;
        MessageBoxes& boxes;
        /// Reports what a step of closing throws; closing goes on.
        std::function<void(const std::exception&)> fault;
    };

    explicit Lifecycle(Parts parts);

    /// Start-up: settings, graphs, window, link, instrument. Pumps events. False when the program must end at
    /// once because it is exiting already.
    bool Form_Load();

    [[nodiscard]] bool sessionEnds() const override { return parts_.questions.sessionEnds(); }
    void close() override;
    /// What follows the round of questions. A failure to save is told in a box, except at the session's end.
    void Form_QueryUnload();

    /// The window system has gone, and the process with it as soon as this returns: writes the end of a run's
    /// log and the settings. Sends nothing and touches no window.
    void lastWords();

private:
    void step(const std::function<void()>& action) const;

    Parts parts_;
};

} // namespace drx9
