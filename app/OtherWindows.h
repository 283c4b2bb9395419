#pragma once

#include "core/Core.h"
#include "films/frmStatus.h"
#include "monitor/frmMain.h"
#include "platform/Desktop.h"
#include "platform/InputBox.h"

#include <QStringList>

#include <functional>

namespace drx9 {

/// What the windows ask of the desktop beside the core's ports.
struct DesktopPorts {
    FilePort& files;
    MessageBoxes& boxes;
    FileDialogs& dialogs;
    PrintDialog* printer; ///< may be null
    InputBox& input;
    Shell& shell;
    HelpViewer& help;
    Progress& progress;
    frmStatus* progressWindow; ///< the same, to be told who owns it; may be null
    const Clock& clock;
    std::function<QStringList()> aboutFacts; ///< lines of the About box's system information
};

/// The windows that open from the main one, with their menu items. Each maker hands its window just what that
/// uses. All that is given outlives the windows.
WindowEntries makeOtherWindows(Core& core, ChartSet& charts, const DesktopPorts& desktop);

/// What the charts use: pictures and exports, and their configuration files in the data folder. The core may
/// be made later than the charts.
ChartPorts chartPorts(const Paths& paths, const DesktopPorts& desktop, EventPump& pump,
                      std::function<ActionQueue&()> actions);

/// What the main window itself gets of the core.
MainWindowParts mainWindowParts(Core& core, EventPump& pump, ChartSet& charts, const DesktopPorts& desktop);

} // namespace drx9
