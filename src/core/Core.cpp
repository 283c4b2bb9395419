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
    , message(window)
    , run({settings.log, log, ports.graphs, ports.sleep, ports.clock})
    , answers(link, ports.clock)
    , keeper(link, discovery, actions, ports.clock)
    , choice(films, link, discovery, settings.link, timer, ports.clock)
    , desk({commands, link, films, choice, answers, keeper, actions, ports.clock})
    , refresh({commands, link, discovery, films, settings.system, answers, actions, ports.progress})
    , instrument({refresh, link, discovery, keeper, choice, desk, answers, actions, window})
    , monitor({link, commands, discovery, actions, timer, readings, readouts, run, answers, keeper, choice,
               desk, instrument, message, window, ports.clock})
    , status({monitor, instrument, message, run, choice, desk, answers, keeper, readings, settings, link,
              discovery, log, timer, readouts, ports.clock})
    , access({monitor, timer, choice, instrument, window})
    , linkSetup({monitor, link, discovery, keeper, choice, answers, instrument, actions, window})
    , store(settings, readouts, file, ports.files, paths, locale)
    , lifecycle({monitor, store, run, instrument, discovery, actions, questions, window, ports.boxes,
                 [this](const std::exception& error) { faults.report(error); }}) {
    actions.setFaultHandler([this](const std::exception& error) { faults.report(error); });
}

Core::~Core() {
    transports.closeAll();
}

} // namespace drx9
