#pragma once

#include "link/ActionQueue.h"
#include "link/Discovery.h"
#include "link/Link.h"
#include "monitor/AnswerRecord.h"
#include "monitor/FilmChoice.h"
#include "monitor/InstrumentRefresh.h"
#include "monitor/LinkKeeper.h"
#include "monitor/MonitorWindow.h"
#include "monitor/RequestDesk.h"
#include "util/ProgramName.h"

#include <string>

namespace drx9 {

/// What is known of the instrument since the last refresh of the main window, and that refresh.
class InstrumentState {
public:
    struct Parts {
        InstrumentRefresh& refresh;
        Link& link;
        const Discovery& discovery;
        LinkKeeper& keeper;
        FilmChoice& choice;
        RequestDesk& desk;
        AnswerRecord& answers;
        ActionQueue& actions;
        MonitorWindow& window;
    };

    explicit InstrumentState(const Parts& parts)
        : parts_(parts) {}

    /// Refreshes the window from the instrument. Pumps events.
    void InitForm();

    /// A refresh was cut, or could not be made: the next tick that can makes it.
    [[nodiscard]] bool owed() const { return owed_; }
    void owe() { owed_ = true; }
    /// The last refresh had answers out of step and took nothing.
    [[nodiscard]] bool outOfStep() const { return outOfStep_; }

    [[nodiscard]] const std::string& title() const { return title_; } ///< of the window; UTF-8
    [[nodiscard]] bool onLine() const { return onLine_; }             ///< the run controls are visible
    [[nodiscard]] bool started() const { return started_; }           ///< the first refresh is done
    /// The record of Simulate and Etch was read from the instrument or sent to it.
    [[nodiscard]] bool systemKnown() const { return systemKnown_; }
    void setSystemKnown(bool known) { systemKnown_ = known; }

private:
    void showOffLine();
    void take(InstrumentRefresh::Result result);

    Parts parts_;
    std::string title_ = kProgramName;
    bool onLine_ = false;
    bool started_ = false;
    bool systemKnown_ = false;
    bool owed_ = false;
    bool outOfStep_ = false;
};

} // namespace drx9
