#include "core/Core.h"

namespace drx9 {

Core::Core(const Ports& ports, const Paths& folders, const NumberLocale& numbers, const AppInfo& app)
    : paths(folders)
    , locale(numbers)
    , engine(ports.files)
    , file(ports.files)
    , errors({ports.files, ports.boxes, ports.clock, locale, app, paths})
    , libraryErrors(errors, engine, paths, settings.DBFileName)
    , faults(errors, ports.clock)
    , actions(ports.pump)
    , transports{SerialTransport(ports.serial), UsbTransport(ports.usb), SocketTransport(ports.socket)}
    , link(settings.link, transports, ports.pump, ports.clock, actions)
    , commands(link, ports.boxes, ports.clock)
    , discovery(link, settings.link, transports, ports.pump, ports.clock, actions, ports.boxes, errors)
    , log(ports.files, ports.clock, locale, paths, ports.boxes, ports.pump, settings.log)
    , readouts(locale, settings.system)
    , timer(ports.ticker, ports.clock)
    , monitor({settings, films, link, commands, discovery, actions, log, readouts, timer, ports.graphs,
               ports.progress, ports.sleep, ports.boxes, ports.clock,
               [this, &files = ports.files] { LoadSettings(settings, file, files, paths, locale); },
               [this, &files = ports.files] {
                   return SaveSettings(settings, file, files, paths, locale) ? std::string()
                                                                             : file.writeFailure();
               },
               [this](const std::exception& error) { faults.report(error); }})
    , status({monitor, settings, link, discovery, log, timer, readouts, ports.clock})
    , access(monitor, timer) {
    actions.setFaultHandler([this](const std::exception& error) { faults.report(error); });
}

Core::~Core() {
    transports.closeAll();
}

} // namespace drx9
