#pragma once

#include "core/Core.h"
#include "monitor/frmMain.h"
#include "platform/Desktop.h"

namespace drx9 {

/// What the windows ask of the desktop beside the core's ports.
struct DesktopPorts {
    FilePort& files;
    MessageBoxes& boxes;
    FileDialogs& dialogs;
    Shell& shell;
};

/// Makers of the windows that open from the main one. Each hands its window just what that uses. All that is
/// given outlives the windows.
OtherWindows makeOtherWindows(Core& core, const DesktopPorts& desktop);

/// What the main window itself gets of the core.
MainWindowParts mainWindowParts(Core& core, EventPump& pump, const Clock& clock, ChartSet& charts,
                                const DesktopPorts& desktop);

} // namespace drx9
