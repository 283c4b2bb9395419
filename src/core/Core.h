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
#include "monitor/CloseQuestions.h"
#include "monitor/DataLog.h"
#include "monitor/Monitor.h"
#include "monitor/PollTimer.h"
#include "monitor/Readouts.h"
#include "monitor/Settings.h"
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
    Monitor monitor;
    StatusBoard status;
    WindowAccess access;
    CloseQuestions questions;
};

} // namespace drx9
