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
    : places_(placesFile)
    , manual_(places_)
    , pump_(clock_)
    , serial_(pump_, paths)
    , socket_(pump_)
    , usb_(paths.programFolder)
    , ticker_(clock_, PollTimer::kIntervalMs)
    , progress_(pump_)
    , desktop_{files,
               boxes_,
               dialogs_,
               &printer_,
               input_,
               shell_,
               manual_,
               progress_,
               &progress_,
               clock_,
               [this] { return aboutFacts(); }}
    , charts_(chartParts(paths))
    , core_({files, clock_, pump_, boxes_, serial_, socket_, usb_, ticker_, progress_, sleep_,
             charts_.graphs()},
            paths, locale, appInfo())
    , window_(windowParts()) {
    core_.window.set(window_);
    progress_.setOwner(ProgressOwner::MainWindow, &window_);
    ticker_.setTick([this] { core_.monitor.tmrUpdate_Timer(); });
}

Program::~Program() {
    core_.window.clear(); // what still goes with the windows tells nobody
}

ChartPorts Program::chartParts(const Paths& paths) {
    ChartPorts ports = chartPorts(paths, desktop_, pump_, [this]() -> ActionQueue& { return core_.actions; });
    ports.place = [this](QWidget& window) { places_.follow(window); };
    return ports;
}

MainWindowParts Program::windowParts() {
    MainWindowParts parts = mainWindowParts(core_, pump_, charts_, desktop_);
    parts.places = &places_;
    parts.desktopChanged = [this] { followDesktop(*qApp, darkWanted_); };
    return parts;
}

QStringList Program::aboutFacts() const {
    const std::string bridges = usb_.library().empty() ? "as serial ports" : usb_.library();
    return {QString::fromStdString("Files: " + core_.paths.dataFolder),
            QString::fromStdString("USB bridges: " + bridges)};
}

void Program::reportError(const std::exception& error) noexcept {
    core_.faults.report(error);
}

void Program::endSession() {
    core_.questions.setSessionEnds();
    core_.actions.hurry();
    boxes_.endSession();
    // A box that is closed may uncover another one.
    for (QWidget* modal = QApplication::activeModalWidget(); modal != nullptr;) {
        modal->close();
        QWidget* next = QApplication::activeModalWidget();
        modal = next == modal ? nullptr : next;
    }
    window_.close();
}

void Program::start() {
    appearance_ = std::make_unique<AppearancePortal>([this](std::optional<bool> dark) {
        if (darkWanted_ != dark) {
            darkWanted_ = dark;
            followDesktop(*qApp, darkWanted_);
        }
    });
    QTimer::singleShot(0, &window_, [this] {
        if (!core_.lifecycle.Form_Load()) {
            QApplication::quit();
        }
    });
}

} // namespace drx9
