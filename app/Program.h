#pragma once

#include "errors/CErrHandler.h"
#include "films/frmStatus.h"
#include "link/ActionQueue.h"
#include "link/Commands.h"
#include "link/Discovery.h"
#include "link/Link.h"
#include "monitor/DataLog.h"
#include "monitor/Monitor.h"
#include "monitor/PollTimer.h"
#include "monitor/Readouts.h"
#include "monitor/Settings.h"
#include "monitor/cFile.h"
#include "monitor/frmMain.h"
#include "platform/qt/AppearancePortal.h"
#include "platform/qt/QtClock.h"
#include "platform/qt/QtEventPump.h"
#include "platform/qt/QtFileDialogs.h"
#include "platform/qt/QtMessageBoxes.h"
#include "platform/qt/QtSerialControl.h"
#include "platform/qt/QtShell.h"
#include "platform/qt/QtSleepInhibitor.h"
#include "platform/qt/QtSocketControl.h"
#include "platform/qt/QtTicker.h"
#include "platform/qt/QtUsbBridge.h"
#include "controls/WindowPlaces.h"

#include <exception>
#include <memory>
#include <optional>

namespace drx9 {

/// Every object of the program, made once in this order and handed on. Needs a QApplication. Tests build the
/// same program in a folder of their own.
class Program {
public:
    /// `placesFile` keeps where windows stand; without one each start puts them anew.
    Program(FilePort& files, const Paths& paths, const NumberLocale& locale, const QString& placesFile = {});
    /// Closes the link: a bridge's library must not be left with an open handle.
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    /// Starts up from the event loop: posts Form_Load.
    void start();

    /// What an event handler threw, for the error report.
    void reportError(const std::exception& error) noexcept;

    [[nodiscard]] Monitor& monitor() { return monitor_; }
    [[nodiscard]] frmMain& window() { return window_; }

private:
    const Paths paths_;
    const NumberLocale locale_;

    // Ports
    QtClock clock_;
    QtEventPump pump_;
    QtMessageBoxes boxes_;
    QtFileDialogs dialogs_;
    QtShell shell_;
    QtSleepInhibitor sleep_;
    QtSerialControl serial_;
    QtSocketControl socket_;
    QtUsbBridge usb_;
    QtTicker ticker_;

    // Records and logic
    Settings settings_;
    Films films_;
    cFile file_;
    CErrHandler errors_;
    ActionQueue actions_;
    Transports transports_;
    Link link_;
    Commands commands_;
    Discovery discovery_;
    DataLog log_;
    Readouts readouts_;
    PollTimer timer_;

    // Windows
    WindowPlaces places_;
    ChartSet charts_;
    frmStatus progress_;
    Monitor monitor_;
    frmMain window_;
    std::optional<bool> darkWanted_; ///< what the desktop said
    std::unique_ptr<AppearancePortal> appearance_;
};

} // namespace drx9
