#include "app/Program.h"

#include "controls/Theme.h"

#include <QApplication>
#include <QTimer>

namespace drx9 {

namespace {
AppInfo appInfo() {
    AppInfo app;
    app.major = DRX9_VERSION_MAJOR;
    app.minor = DRX9_VERSION_MINOR;
    app.revision = DRX9_VERSION_PATCH;
    return app;
}
} // namespace

Program::Program(FilePort& files, const Paths& paths, const NumberLocale& locale, const QString& placesFile)
    : paths_(paths)
    , locale_(locale)
    , pump_(clock_)
    , serial_(pump_, paths_.programFolder)
    , socket_(pump_)
    , usb_(paths_.programFolder)
    , ticker_(clock_, PollTimer::kIntervalMs)
    , file_(files)
    , errors_({files, boxes_, clock_, locale_, appInfo(), paths_})
    , actions_(pump_)
    , transports_{SerialTransport(serial_), UsbTransport(usb_), SocketTransport(socket_)}
    , link_(settings_.link, transports_, pump_, clock_, actions_)
    , commands_(link_, boxes_, clock_)
    , discovery_(link_, settings_.link, transports_, pump_, clock_, actions_, boxes_, errors_)
    , log_(files, clock_, locale_, paths_, boxes_, pump_, settings_.log)
    , readouts_(locale_, settings_.system)
    , timer_(ticker_)
    , places_(placesFile)
    , progress_(pump_)
    , monitor_({settings_, films_, link_, commands_, discovery_, actions_, log_, readouts_, timer_,
                charts_.graphs(), progress_, sleep_, clock_, pump_,
                [this, &files] { LoadSettings(settings_, file_, files, paths_, locale_); },
                [this, &files] { SaveSettings(settings_, file_, files, paths_, locale_); }})
    , window_({monitor_, charts_, files, paths_, boxes_, dialogs_, shell_, nullptr, &places_,
               [this] { followDesktop(*qApp, darkWanted_); }}) {
    monitor_.setWindow(window_);
    progress_.setOwner(ProgressOwner::MainWindow, &window_);
    ticker_.setTick([this] { monitor_.tmrUpdate_Timer(); });
}

Program::~Program() {
    transports_.closeAll();
}

void Program::reportError(const std::exception& error) noexcept {
    errors_.HandleError({.number = 0, .line = 0, .description = error.what()});
}

void Program::start() {
    appearance_ = std::make_unique<AppearancePortal>([this](std::optional<bool> dark) {
        if (darkWanted_ != dark) {
            darkWanted_ = dark;
            followDesktop(*qApp, darkWanted_);
        }
    });
    QTimer::singleShot(0, &window_, [this] {
        if (!monitor_.Form_Load()) {
            QApplication::quit();
        }
    });
}

} // namespace drx9
