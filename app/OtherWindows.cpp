#include "app/OtherWindows.h"

#include "films/frmFilm.h"
#include "graphs/Texts.h"
#include "graphs/frmGraphSet.h"
#include "link/frmComm.h"
#include "monitor/frmDataLog.h"
#include "system/frmSystem.h"
#include "util/frmAbout.h"

#include <algorithm>
#include <utility>

namespace drx9 {

namespace {
QWidget* makeDataLog(Core& core, const DesktopPorts& desktop, QWidget* owner) {
    return new frmDataLog({core.settings.log, core.log, desktop.files, desktop.dialogs, desktop.shell,
                           desktop.boxes, core.actions},
                          owner);
}

QWidget* makeSystem(Core& core, const DesktopPorts& desktop, QWidget* owner) {
    return new frmSystem({core.settings.system, core.commands, core.link, core.access, core.access,
                          core.actions, desktop.boxes, desktop.clock, core.locale},
                         owner);
}

QWidget* makeComm(Core& core, const DesktopPorts& desktop, QWidget* owner) {
    return new frmComm({core.settings.link, core.link, core.discovery, core.transports.serial,
                        core.transports.usb, desktop.shell, desktop.boxes, core.actions, core.linkSetup,
                        core.access},
                       owner);
}

QWidget* makeFilms(Core& core, const DesktopPorts& desktop, QWidget* owner) {
    auto* window = new frmFilm({core.engine, desktop.files, core.paths, core.settings.DBFileName, core.films,
                                FilmInstrument(core.link, core.commands, desktop.clock), desktop.dialogs,
                                desktop.input, desktop.boxes, desktop.progress, core.actions, desktop.clock,
                                core.locale, core.access, core.access, core.questions},
                               owner);
    if (desktop.progressWindow != nullptr) {
        desktop.progressWindow->setOwner(ProgressOwner::FilmWindow, window);
    }
    return window;
}

QWidget* makeGraphSet(Core& core, ChartSet& charts, QWidget* owner) {
    auto* window = new frmGraphSet(charts, std::max<int>(1, core.readouts.checkedGraphItem()), owner);
    QObject::connect(window, &frmGraphSet::settingsNotSaved, owner, [&core](const QString& text) {
        core.message.tell(text.toStdString(), graphText::kSettingsNotSavedBrief);
    });
    return window;
}
} // namespace

WindowEntries makeOtherWindows(Core& core, ChartSet& charts, const DesktopPorts& desktop) {
    using Menu = WindowEntry::Menu;
    const auto maker = [&core, desktop](auto make) {
        return [&core, desktop, make](QWidget* owner) { return make(core, desktop, owner); };
    };
    return {{.menu = Menu::File,
             .item = "mnuFileLog",
             .caption = "&Data Log",
             .make = maker(makeDataLog),
             .key = {Qt::CTRL | Qt::Key_L}},
            {.menu = Menu::Edit,
             .item = "mnuSetupFilms",
             .caption = "&Films",
             .make = maker(makeFilms),
             .holdsTimer = true},
            {.menu = Menu::Edit,
             .item = "mnuSetupSystem",
             .caption = "&System",
             .make = maker(makeSystem),
             .holdsTimer = true,
             .modal = true,
             .purpose = ActionQueue::For::System},
            {.menu = Menu::Edit,
             .item = "mnuSetupComm",
             .caption = "&Communcations",
             .make = maker(makeComm),
             .holdsTimer = true,
             .modal = true},
            {.menu = Menu::Edit,
             .item = "mnuSetupGraphs",
             .caption = "&Graph",
             .separator = "mnuSetupSep2",
             .make = [&core, &charts](QWidget* owner) { return makeGraphSet(core, charts, owner); },
             .lockedInRun = false},
            {.menu = Menu::Help,
             .item = "mnuHelpAbout",
             .caption = "&About",
             .separator = "mnuHelpSep1",
             .make = [facts = desktop.aboutFacts](QWidget* owner) { return new frmAbout(facts(), owner); }}};
}

ChartPorts chartPorts(const Paths& paths, const DesktopPorts& desktop, EventPump& pump,
                      std::function<ActionQueue&()> actions) {
    ChartPorts ports;
    ports.files = &desktop.files;
    ports.dialogs = &desktop.dialogs;
    ports.printer = desktop.printer;
    ports.whenIdle = [actions = std::move(actions)](std::function<void()> action) {
        actions().runWhenIdle(std::move(action));
    };
    ports.pump = &pump;
    ports.folder = paths.dataFolder;
    return ports;
}

MainWindowParts mainWindowParts(Core& core, EventPump& pump, ChartSet& charts, const DesktopPorts& desktop) {
    return {core.monitor,
            core.lifecycle,
            core.status,
            core.readouts,
            core.actions,
            pump,
            desktop.clock,
            charts,
            desktop.boxes,
            desktop.help,
            makeOtherWindows(core, charts, desktop)};
}

} // namespace drx9
