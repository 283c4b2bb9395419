#include "app/OtherWindows.h"

#include "monitor/frmDataLog.h"

namespace drx9 {

OtherWindows makeOtherWindows(Core& core, const DesktopPorts& desktop) {
    OtherWindows windows;
    windows.dataLog = [&core, desktop](QWidget* owner) -> QWidget* {
        auto* window = new frmDataLog({core.settings.log, core.log, desktop.files, desktop.dialogs,
                                       desktop.shell, desktop.boxes, core.actions},
                                      owner);
        window->setAttribute(Qt::WA_DeleteOnClose);
        return window;
    };
    return windows;
}

MainWindowParts mainWindowParts(Core& core, EventPump& pump, const Clock& clock, ChartSet& charts,
                                const DesktopPorts& desktop) {
    return {core.monitor,
            core.readouts,
            core.status,
            core.settings.system,
            core.actions,
            core.timer,
            core.questions,
            pump,
            clock,
            charts,
            desktop.boxes,
            [&core](const std::exception& error) { core.faults.report(error); },
            makeOtherWindows(core, desktop)};
}

} // namespace drx9
