#pragma once

#include "graphs/controls/ChartControl.h"
#include "monitor/Monitor.h"
#include "monitor/MonitorWindow.h"
#include "monitor/StatusTexts.h"
#include "platform/FilePort.h"
#include "platform/MessageBoxes.h"
#include "util/Paths.h"

#include <QMainWindow>
#include <QPointer>
#include <QTimer>

#include <array>
#include <functional>
#include <vector>

class QComboBox;
class QGridLayout;
class QHBoxLayout;
class QLabel;
class QPushButton;
class QStackedLayout;

namespace drx9 {

class frmDataLog;
class Gauge;
class MarkLabel;
class NoticePlate;
class Readout;
class SensorLabel;
class StartStopButton;
class WindowPlaces;

/// What the main window works with beside the monitor's own parts. `help` and `places` may be null,
/// `desktopChanged` empty.
struct MainWindowParts {
    Monitor& monitor;
    ChartSet& charts; ///< the window takes the charts into its layout and owns them from then on
    FilePort& files;
    const Paths& paths;
    MessageBoxes& boxes;
    FileDialogs& dialogs;
    Shell& shell;
    HelpViewer* help;
    WindowPlaces* places = nullptr;
    std::function<void()> desktopChanged = {}; ///< the desktop's colours are others now
};

/// The main window: shows what the monitor holds, passes clicks on, opens the other windows. Talks to no
/// instrument.
///
/// Everything shown is pulled from the monitor in changed(), which sets only what differs; ages and notices
/// follow a heartbeat of their own. Menu actions and closing wait until nothing of the monitor is on the
/// stack.
class frmMain : public QMainWindow, public MonitorWindow {
    Q_OBJECT
public:
    explicit frmMain(const MainWindowParts& parts);
    ~frmMain() override;

    // For the monitor.

    void showWindow() override;
    void setHourglass(bool on) override;
    void changed() override;
    void closeOtherWindows() override;

    /// Sizes of the readouts, chosen from the window's size.
    enum class Step { S, M, L };
    [[nodiscard]] Step step() const { return step_; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;

private:
    // Construction (frmMainLayout.cpp).

    void buildControls();
    void buildReadout(std::size_t field);
    QWidget* buildBand();
    QWidget* buildSensors();
    QWidget* buildBar();
    QWidget* buildOffLineRow();
    void buildStatusBar();
    void setTabStops();
    void keepOnScreen();
    void chooseStep();
    void applyStep();
    void applyTheme();

    // Menus and keys (frmMainMenus.cpp).

    QAction* addItem(QMenu* menu, const char* name, const char* caption, const QKeySequence& shortcut,
                     std::function<void()> action);
    void buildMenus();
    void buildFileAndEditMenus();
    void buildViewMenu();
    void buildHelpMenu();
    void buildKeys();
    void addKey(const QKeySequence& key, std::function<void()> action);
    void press(QPushButton* button);
    void nextRegion(int direction);
    void walkReadouts(std::size_t from, int direction);
    void showDataLog();
    void showHelp();
    void showAbout();
    void notInThisBuild();

    // What is shown (frmMainReadouts.cpp).

    void showTitleAndFilms();
    void showRunControls();
    [[nodiscard]] bool hasSpareFocus() const; ///< nobody has chosen where it is
    void showMenus();
    void showReadouts();
    void showLooks(const StatusFacts& facts);
    void showCharts();
    [[nodiscard]] double gaugeShare() const;
    [[nodiscard]] QString crystalExplanation(int sensor) const;

    // Notices and status bar (frmMainStatus.cpp).

    void beat();
    void showStatus(const StatusFacts& facts);
    struct StatusField {
        MarkLabel* label = nullptr;
        StatusText text;
    };
    using StatusFields = std::array<StatusField, 6>;
    [[nodiscard]] bool fitInStatusBar(const StatusFields& fields, bool briefLog) const;
    void showField(const StatusField& field, bool brief);

    MainWindowParts parts_;
    Monitor& monitor_;
    Readouts& readouts_;

    std::array<Readout*, Readouts::kFields> TxtData_{}; ///< from 1
    std::array<QLabel*, Readouts::kFields> LblData_{};
    std::array<SensorLabel*, kMaxSensors> sensorLabels_{};
    Gauge* gauge_ = nullptr;
    std::array<MarkLabel*, 2> ages_{}; ///< left of the labels of average rate and thickness
    QLabel* lblFilm_ = nullptr;
    QComboBox* cboFilms_ = nullptr;
    QPushButton* cmdZero_ = nullptr;
    QPushButton* cmdShutter_ = nullptr;
    StartStopButton* cmdStartStop_ = nullptr;
    NoticePlate* lblNotice_ = nullptr;
    MarkLabel* lblNotFound_ = nullptr;
    QLabel* offLineHint_ = nullptr;
    QWidget* offLineRow_ = nullptr;
    MarkLabel* staLink_ = nullptr;
    MarkLabel* staReply_ = nullptr;
    MarkLabel* staRun_ = nullptr;
    MarkLabel* staShutter_ = nullptr;
    MarkLabel* staMode_ = nullptr;
    MarkLabel* staLog_ = nullptr;
    QStackedLayout* charts_ = nullptr;
    QGridLayout* band_ = nullptr;
    QHBoxLayout* barRow_ = nullptr;
    QWidget* bandWidget_ = nullptr;
    QWidget* sensorColumn_ = nullptr;
    QWidget* bar_ = nullptr;

    QAction* mnuFileLog_ = nullptr;
    QAction* mnuSetupFilms_ = nullptr;
    QAction* mnuSetupSystem_ = nullptr;
    QAction* mnuSetupComm_ = nullptr;
    QAction* mnuHelpAbout_ = nullptr;
    std::array<QAction*, 4> graphItems_{};
    std::array<QAction*, 3> sensorItems_{};

    QPointer<frmDataLog> dataLog_;
    QTimer heartbeat_;
    Step step_ = Step::M;
    bool stepApplied_ = false;
    std::vector<std::string> shownFilms_;
    Readouts::Texts shownTexts_;
    Readouts::Texts shownLabels_;
    StatusFields shownStatus_;
    int shownStatusWidth_ = 0;
    std::string shownTitle_;
    std::int16_t shownMode_ = kStarting;
    Monitor::Requests shownRequests_;
    bool closeAsked_ = false;
    bool closed_ = false;
    bool inCloseEvent_ = false;
};

} // namespace drx9
