#pragma once

#include "app/Manual.h"
#include "app/OtherWindows.h"
#include "controls/WindowPlaces.h"
#include "core/Core.h"
#include "films/frmStatus.h"
#include "monitor/frmMain.h"
#include "platform/qt/AppearancePortal.h"
#include "platform/qt/QtClock.h"
#include "platform/qt/QtEventPump.h"
#include "platform/qt/QtFileDialogs.h"
#include "platform/qt/QtInputBox.h"
#include "platform/qt/QtMessageBoxes.h"
#include "platform/qt/QtPrintDialog.h"
#include "platform/qt/QtSerialControl.h"
#include "platform/qt/QtShell.h"
#include "platform/qt/QtSleepInhibitor.h"
#include "platform/qt/QtSocketControl.h"
#include "platform/qt/QtTicker.h"
#include "platform/qt/QtUsbBridge.h"

#include <exception>
#include <memory>
#include <optional>

namespace drx9 {

/// Every object of the program, made once in this order and handed on. Needs a QApplication. Tests build the
/// same program in a folder of their own.
class Program {
public:
    /// `placesFile` keeps where windows are; without one each start places them itself.
    Program(FilePort& files, const Paths& paths, const NumberLocale& locale, const QString& placesFile = {});
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    /// Starts up from the event loop: posts Form_Load.
    void start();

    /// What an event handler threw, for the error report.
    void reportError(const std::exception& error) noexcept;

    /// The session ends: boxes and dialogs that are open are closed as Cancel, and the program closes without
    /// asking, as soon as the exchange in hand has ended.
    void endSession();
    /// The window system has gone, and the process with it as soon as this returns: what must not be lost is
    /// written.
    void lastWords() { core_.lifecycle.lastWords(); }

    // For tests and benchmarks.

    [[nodiscard]] Core& core() { return core_; }
    [[nodiscard]] const Clock& clock() const { return clock_; }
    [[nodiscard]] frmMain& window() { return window_; }
    [[nodiscard]] ChartSet& charts() { return charts_; }

private:
    [[nodiscard]] ChartPorts chartParts(const Paths& paths);
    [[nodiscard]] MainWindowParts windowParts();
    [[nodiscard]] QStringList aboutFacts() const;

    WindowPlaces places_;
    Manual manual_;

    // Ports
    QtClock clock_;
    QtEventPump pump_;
    QtMessageBoxes boxes_;
    QtFileDialogs dialogs_;
    QtPrintDialog printer_;
    QtInputBox input_;
    QtShell shell_;
    QtSleepInhibitor sleep_;
    QtSerialControl serial_;
    QtSocketControl socket_;
    QtUsbBridge usb_;
    QtTicker ticker_;
    frmStatus progress_;
    DesktopPorts desktop_;
    ChartSet charts_;

    Core core_;

    frmMain window_;
    std::optional<bool> darkWanted_; ///< what the desktop said
    std::unique_ptr<AppearancePortal> appearance_;
};

} // namespace drx9
