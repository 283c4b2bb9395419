#pragma once

#include "graphs/controls/ChartControl.h"
#include "link/ActionQueue.h"
#include "monitor/MainWindowAccess.h"
#include "monitor/MonitorWindow.h"
#include "monitor/Readouts.h"
#include "monitor/StatusBoard.h"
#include "monitor/controls/MainMenus.h"
#include "monitor/controls/ReadoutPanel.h"
#include "monitor/controls/RunBar.h"
#include "monitor/controls/SizeStep.h"
#include "monitor/controls/StatusLine.h"
#include "monitor/controls/WindowEntry.h"
#include "platform/MessageBoxes.h"

#include <QMainWindow>
#include <QPointer>
#include <QTimer>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

class QStackedLayout;

namespace drx9 {

class WindowPlaces;

/// What the main window works with. `places` may be null, `desktopChanged` empty.
struct MainWindowParts {
    RunControl& run;
    ProgramEnd& end;
    const StatusBoard& status;
    const Readouts& readouts;
    ActionQueue& actions;
    EventPump& pump;
    const Clock& clock;
    ChartSet& charts; ///< the window takes the charts into its layout and owns them from then on
    MessageBoxes& boxes;
    HelpViewer& help;
    WindowEntries windows;
    WindowPlaces* places = nullptr;
    std::function<void()> desktopChanged = {}; ///< the desktop's colours are others now
};

/// The main window: an assembly of panels (menus, readouts around the charts, run bar, status line) that it
/// feeds with facts pulled from the status board, and the place from which the other windows open. Talks to
/// no instrument.
///
/// changed() feeds all panels; ages and notices follow a heartbeat of their own too. Closing waits until
/// nothing of the monitor is on the stack; under a modal window it is refused.
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

    using Step = SizeStep;
    [[nodiscard]] Step step() const { return step_.value_or(Step::S); }

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;

private:
    [[nodiscard]] MainMenus::Handlers menuHandlers();
    void assemble();
    QWidget* buildCharts();
    void connectBar();
    void setTabStops();
    void placeAtStart();
    void keepOnScreen();
    void chooseStep();
    void beat();
    void askToClose();

    // Keys and the windows that open from here (frmMainWindows.cpp).

    void buildKeys();
    void addKey(const QKeySequence& key, std::function<void()> action);
    void nextRegion(int direction);
    void openWindow(std::size_t entry);
    void makeWindow(std::size_t entry);
    void showHelp();

    // What the panels show (frmMainFacts.cpp).

    [[nodiscard]] MainMenus::Facts menuFacts(const PanelFacts& facts) const;
    [[nodiscard]] static RunBar::Facts barFacts(const PanelFacts& facts);
    [[nodiscard]] ReadoutPanel::Facts readoutFacts(const PanelFacts& facts) const;
    [[nodiscard]] ReadoutPanel::Looks readoutLooks(const StatusFacts& facts) const;
    [[nodiscard]] static StatusLine::Facts statusLineFacts(const StatusFacts& facts);
    void showTitle(const std::string& title);
    void showCharts(int sensors);

    MainWindowParts parts_;

    MainMenus menus_;
    QStackedLayout* charts_ = nullptr;
    ReadoutPanel* readoutPanel_ = nullptr;
    RunBar* bar_ = nullptr;
    StatusLine* status_ = nullptr;

    std::vector<QPointer<QWidget>> windows_; ///< by entry; null or hidden: not open
    QTimer heartbeat_;
    std::optional<Step> step_;
    std::string shownTitle_;
    bool closeAsked_ = false;
    bool closed_ = false;
    bool inCloseEvent_ = false;
};

} // namespace drx9
