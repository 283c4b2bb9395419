#pragma once

#include "errors/CErrHandler.h"
#include "errors/FaultReports.h"
#include "films/JetHeaders.h"
#include "films/LibraryErrors.h"
#include "link/ActionQueue.h"
#include "link/Commands.h"
#include "link/Discovery.h"
#include "link/Link.h"
#include "link/Transports.h"
#include "monitor/AnswerRecord.h"
#include "monitor/CloseQuestions.h"
#include "monitor/DataLog.h"
#include "monitor/FilmChoice.h"
#include "monitor/InstrumentRefresh.h"
#include "monitor/InstrumentState.h"
#include "monitor/Lifecycle.h"
#include "monitor/LinkKeeper.h"
#include "monitor/LinkSetupDesk.h"
#include "monitor/Monitor.h"
#include "monitor/MonitorWindow.h"
#include "monitor/PollTimer.h"
#include "monitor/Readouts.h"
#include "monitor/RequestDesk.h"
#include "monitor/RunRecord.h"
#include "monitor/Settings.h"
#include "monitor/SettingsStore.h"
#include "monitor/StandingMessage.h"
#include "monitor/StatusBoard.h"
#include "monitor/WindowAccess.h"
#include "monitor/cFile.h"

namespace drx9 {

/// Everything that the program asks of the machine and of its windows. All of it outlives the core.
struct Ports {
    FilePort& files;
    const Clock& clock;
    EventPump& pump;
    MessageBoxes& boxes;
    SerialControl& serial;
    SocketControl& socket;
    UsbBridge& usb;
    Ticker& ticker;
    Progress& progress;
    SleepInhibitor& sleep;
    GraphSet graphs;
};

/// Every object of the program that knows no window, made once in this order. A plain assembly: whoever
/// composes the windows hands each of them the few members that it uses.
struct Core {
    Core(const Ports& ports, const Paths& paths, const NumberLocale& locale, const AppInfo& app);
    /// Closes the link: a bridge's library must not be left with an open handle.
    ~Core();
    Core(const Core&) = delete;
    Core& operator=(const Core&) = delete;

    const Paths paths;
    const NumberLocale locale;
    Settings settings;
    Films films;
    Readings readings;
    jet::DBEngine engine;
    cFile file;
    CErrHandler errors;
    LibraryErrors libraryErrors;
    FaultReports faults;
    ActionQueue actions;
    Transports transports;
    Link link;
    Commands commands;
    Discovery discovery;
    DataLog log;
    Readouts readouts;
    PollTimer timer;
    WindowSlot window;
    StandingMessage message;
    RunRecord run;
    AnswerRecord answers;
    LinkKeeper keeper;
    FilmChoice choice;
    RequestDesk desk;
    InstrumentRefresh refresh;
    InstrumentState instrument;
    Monitor monitor;
    StatusBoard status;
    WindowAccess access;
    LinkSetupDesk linkSetup;
    CloseQuestions questions;
    SettingsStore store;
    Lifecycle lifecycle;
};

} // namespace drx9
