#include "monitor/frmMain.h"

#include "controls/AppIcon.h"
#include "controls/Theme.h"
#include "controls/WindowPlaces.h"
#include "monitor/frmDataLog.h"
#include "util/ProgramName.h"

#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QMenuBar>
#include <QScreen>
#include <QWindow>

namespace drx9 {

namespace {
constexpr int kHeartbeatMs = 250;
constexpr QSize kStartSize(1280, 800);
constexpr QSize kLeastSize(940, 540);
constexpr double kFirstPaintLimit = 0.25; ///< s to wait for the window system to ask for the first paint
} // namespace

frmMain::frmMain(const MainWindowParts& parts)
    : parts_(parts)
    , monitor_(parts.monitor)
    , readouts_(parts.monitor.parts().readouts) {
    setObjectName(QStringLiteral("frmMain"));
    setWindowTitle(QString(kProgramName));
    QApplication::setWindowIcon(appIcon());
    setMinimumSize(kLeastSize);
    buildControls();
    buildMenus();
    buildKeys();
    setTabStops();
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    resize(kStartSize.boundedTo(screen.size()).expandedTo(kLeastSize));
    move(screen.center() - rect().center());
    if (parts_.places != nullptr) {
        parts_.places->follow(*this);
    }
    chooseStep();
    applyTheme();
    heartbeat_.setInterval(kHeartbeatMs);
    connect(&heartbeat_, &QTimer::timeout, this, &frmMain::beat);
    frmMain::changed();
}

frmMain::~frmMain() {
    delete dataLog_.data(); // hiding, it may still tell of a finished change
}

void frmMain::showWindow() {
    show();
    heartbeat_.start();
    cboFilms_->setFocus();
    // The first paint comes when the window system asks for it.
    EventPump& pump = monitor_.parts().pump;
    const Clock& clock = monitor_.parts().clock;
    const double limit = clock.monotonic() + kFirstPaintLimit;
    pump.processPending();
    while (windowHandle() != nullptr && !windowHandle()->isExposed() && clock.monotonic() < limit) {
        pump.sleepUntil(limit);
    }
    pump.processPending();
    keepOnScreen();
}

/// The window manager's frame is known only now: it must not push the status bar off the screen.
void frmMain::keepOnScreen() {
    const QRect room = screen()->availableGeometry();
    const QSize frame = frameGeometry().size();
    const QSize over = frame - frame.boundedTo(room.size());
    if (isMaximized() || isFullScreen() || over.isNull()) {
        return;
    }
    resize((size() - over).expandedTo(minimumSize()));
    move(room.topLeft());
}

void frmMain::setHourglass(bool on) {
    if (on) {
        setCursor(Qt::WaitCursor);
    } else {
        unsetCursor();
    }
}

void frmMain::changed() {
    showTitleAndFilms();
    showRunControls();
    showMenus();
    showReadouts();
    showCharts();
    beat();
    if (heartbeat_.isActive()) {
        heartbeat_.start(); // anew: it stands in where the monitor has nothing to tell
    }
}

void frmMain::closeOtherWindows() {
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows) {
        if (window != this && window->isVisible() && window->isWindow()) {
            window->close();
        }
    }
}

void frmMain::closeEvent(QCloseEvent* event) {
    if (!closed_ && !closeAsked_) {
        closeAsked_ = true;
        monitor_.announceClose();
        inCloseEvent_ = true;
        monitor_.parts().actions.runWhenIdle([this] {
            monitor_.Form_QueryUnload();
            closed_ = true;
            if (!inCloseEvent_) {
                close();
            }
        });
        inCloseEvent_ = false;
    }
    event->setAccepted(closed_);
    if (closed_) {
        heartbeat_.stop();
    }
}

void frmMain::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    chooseStep();
}

bool frmMain::event(QEvent* event) {
    if (event->type() == QEvent::ThemeChange && parts_.desktopChanged) {
        parts_.desktopChanged();
    }
    if (event->type() == QEvent::ApplicationPaletteChange) {
        applyTheme();
    }
    return QMainWindow::event(event);
}

/// The film of a run must stay readable while its list is locked.
void frmMain::applyTheme() {
    const Theme theme = Theme::of(QApplication::palette());
    QPalette films;
    films.setColor(QPalette::Disabled, QPalette::Text, theme.muted);
    films.setColor(QPalette::Disabled, QPalette::ButtonText, theme.muted);
    films.setColor(QPalette::Disabled, QPalette::WindowText, theme.muted);
    cboFilms_->setPalette(films);
}

} // namespace drx9
