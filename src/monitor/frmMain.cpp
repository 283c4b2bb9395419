#include "monitor/frmMain.h"

#include "controls/AppIcon.h"
#include "controls/HairLine.h"
#include "controls/WindowPlaces.h"
#include "util/ProgramName.h"

#include <QApplication>
#include <QCloseEvent>
#include <QScreen>
#include <QStackedLayout>
#include <QVBoxLayout>
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
    , menus_(*this, parts.windows, menuHandlers(),
             [this](std::function<void()> action, ActionQueue::For purpose) {
                 parts_.actions.runWhenIdle(std::move(action), purpose);
             }) {
    windows_.resize(parts_.windows.size());
    setObjectName(QStringLiteral("frmMain"));
    setWindowTitle(QString(kProgramName));
    QApplication::setWindowIcon(appIcon());
    setMinimumSize(kLeastSize);
    assemble();
    connectBar();
    buildKeys();
    setTabStops();
    placeAtStart();
    chooseStep();
    heartbeat_.setInterval(kHeartbeatMs);
    connect(&heartbeat_, &QTimer::timeout, this, &frmMain::beat);
    frmMain::changed();
}

frmMain::~frmMain() {
    for (const QPointer<QWidget>& window : windows_) {
        delete window.data(); // hiding, it may still tell of a finished change
    }
}

MainMenus::Handlers frmMain::menuHandlers() {
    MainMenus::Handlers handlers;
    handlers.exit = [this] { close(); };
    handlers.open = [this](std::size_t entry) { openWindow(entry); };
    handlers.graph = [this](std::int16_t item) { parts_.run.graphItemClicked(item); };
    handlers.sensors = [this](std::int16_t item) { parts_.run.sensorItemClicked(item); };
    handlers.help = [this] { showHelp(); };
    return handlers;
}

void frmMain::assemble() {
    auto* centre = new QWidget(this);
    setCentralWidget(centre);
    readoutPanel_ = new ReadoutPanel(buildCharts(), centre);
    bar_ = new RunBar(centre);
    status_ = new StatusLine(this);
    setStatusBar(status_);
    auto* column = new QVBoxLayout(centre);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(new HairLine(Qt::Horizontal, centre));
    column->addWidget(readoutPanel_, 1);
    column->addWidget(new HairLine(Qt::Horizontal, centre));
    column->addWidget(bar_);
}

QWidget* frmMain::buildCharts() {
    auto* stack = new QWidget(this);
    charts_ = new QStackedLayout(stack);
    for (int number = 1; number <= 4; ++number) {
        charts_->addWidget(&parts_.charts.chart(number));
    }
    return stack;
}

void frmMain::connectBar() {
    bar_->setSpareFocus(readoutPanel_->entry());
    connect(bar_, &RunBar::filmChosen, this, [this](int index) { parts_.run.cboFilms_Click(index); });
    connect(bar_, &RunBar::zeroPressed, this, [this] { parts_.run.cmdZero_Click(); });
    connect(bar_, &RunBar::shutterPressed, this, [this] { parts_.run.cmdShutter_Click(); });
    connect(bar_, &RunBar::startStopPressed, this, [this] { parts_.run.cmdStartStop_Click(); });
}

void frmMain::setTabStops() {
    setTabOrder(bar_->lastControl(), readoutPanel_->entry());
    QWidget* last = readoutPanel_->entry();
    for (int number = 1; number <= 4; ++number) {
        setTabOrder(last, &parts_.charts.chart(number));
        last = &parts_.charts.chart(number);
    }
}

void frmMain::placeAtStart() {
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    resize(kStartSize.boundedTo(screen.size()).expandedTo(kLeastSize));
    move(screen.center() - rect().center());
    if (parts_.places != nullptr) {
        parts_.places->follow(*this);
    }
}

void frmMain::chooseStep() {
    const Step wanted = stepFor(size(), step_);
    if (step_ != wanted) {
        step_ = wanted;
        readoutPanel_->setStep(measuresOf(wanted));
        bar_->setStep(measuresOf(wanted));
    }
}

void frmMain::showWindow() {
    show();
    heartbeat_.start();
    bar_->filmList()->setFocus();
    // The first paint comes when the window system asks for it.
    const double limit = parts_.clock.monotonic() + kFirstPaintLimit;
    parts_.pump.processPending();
    while (windowHandle() != nullptr && !windowHandle()->isExposed() && parts_.clock.monotonic() < limit) {
        parts_.pump.sleepUntil(limit);
    }
    parts_.pump.processPending();
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
    const PanelFacts facts = parts_.status.panels();
    showTitle(facts.title);
    bar_->showFacts(barFacts(facts));
    menus_.showFacts(menuFacts(facts));
    readoutPanel_->showFacts(readoutFacts(facts));
    showCharts(facts.sensorCount);
    beat();
    if (heartbeat_.isActive()) {
        heartbeat_.start(); // again: it ticks where the monitor has nothing to tell
    }
}

void frmMain::beat() {
    const StatusFacts facts = parts_.status.facts();
    const Notice notice = gravestNotice(facts);
    readoutPanel_->showLooks(readoutLooks(facts));
    bar_->showNotice(static_cast<int>(notice.subject), QString::fromStdString(notice.text),
                     QString::fromStdString(notice.brief));
    status_->showFacts(statusLineFacts(facts));
    const QString silence = QString::fromStdString(silenceNote(facts));
    for (int number = 1; number <= 4; ++number) {
        parts_.charts.chart(number).setSilence(silence);
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
        askToClose();
    }
    event->setAccepted(closed_);
    if (closed_) {
        heartbeat_.stop();
    }
}

void frmMain::askToClose() {
    if (QApplication::activeModalWidget() != nullptr && !parts_.end.sessionEnds()) {
        return; // the dialog is answered first
    }
    closeAsked_ = true;
    inCloseEvent_ = true;
    parts_.actions.runWhenIdle(
        [this] {
            parts_.end.close();
            closed_ = true;
            if (!inCloseEvent_) {
                close();
            }
        },
        ActionQueue::For::Close);
    inCloseEvent_ = false;
}

void frmMain::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    chooseStep();
}

bool frmMain::event(QEvent* event) {
    if (event->type() == QEvent::ThemeChange && parts_.desktopChanged) {
        parts_.desktopChanged();
    }
    return QMainWindow::event(event);
}

} // namespace drx9
