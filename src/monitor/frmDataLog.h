#pragma once

#include "controls/Window.h"
#include "link/ActionQueue.h"
#include "monitor/DataLog.h"
#include "monitor/DataLogSpan.h"
#include "monitor/Settings.h"
#include "platform/Desktop.h"
#include "platform/FilePort.h"
#include "platform/MessageBoxes.h"

#include <QTimer>

#include <array>

class QGroupBox;
class QPushButton;
class QRadioButton;

namespace drx9 {

class MarkLabel;
class ReadOnlyLine;
class SpinBox;

struct DataLogWindowParts {
    DataLogSettings& settings;
    const DataLog& log;
    const FilePort& files;
    FileDialogs& dialogs;
    Shell& shell;
    MessageBoxes& boxes;
    ActionQueue& actions;
};

/// The data log window: file, mode, logged span of the run and interval. Every change takes effect at once.
class frmDataLog : public Window {
    Q_OBJECT
public:
    frmDataLog(const DataLogWindowParts& parts, QWidget* owner);

private:
    /// Hour, minute and second spinners; the interval has no hours.
    struct Spinners {
        SpinBox* hours = nullptr;
        SpinBox* minutes = nullptr;
        SpinBox* seconds = nullptr;
    };

    QGroupBox* buildFile();
    QGroupBox* buildSpan();
    QLayout* buildBottom();
    SpinBox* spinner(const char* name, const char* accessible, int most, int digits);
    void showSettings();
    void fill(const Spinners& spinners, const SpanFields& fields);
    [[nodiscard]] SpanFields fieldsOf(const Spinners& spinners) const;
    void showFile();
    void showState();

    void optLog_Click(int index);
    void spnStart_Change();
    void spnEnd_Change();
    void spnInt_Change();
    void cmdNew_Click();
    void cmdView_Click();
    void chooseFile();
    void viewFile();

    DataLogWindowParts parts_;
    DataLogSpan span_;
    bool loading_ = true;
    std::array<QRadioButton*, 3> optLog_{}; ///< by log mode
    QPushButton* cmdNew_ = nullptr;
    QPushButton* cmdView_ = nullptr;
    QPushButton* cmdForm_ = nullptr;
    ReadOnlyLine* path_ = nullptr;
    Spinners start_;
    Spinners end_;
    Spinners interval_;
    MarkLabel* state_ = nullptr;
    QTimer stateTimer_;
};

} // namespace drx9
