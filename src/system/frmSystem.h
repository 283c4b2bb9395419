#pragma once

#include "controls/Window.h"
#include "link/ActionQueue.h"
#include "link/Commands.h"
#include "link/Link.h"
#include "link/MonitorAccess.h"
#include "link/Records.h"
#include "platform/Clock.h"
#include "platform/MessageBoxes.h"
#include "system/SystemFields.h"
#include "system/SystemState.h"
#include "util/NumberLocale.h"

#include <memory>
#include <vector>

class QBoxLayout;
class QGridLayout;
class QGroupBox;
class QPushButton;
class QRadioButton;

namespace drx9 {

class MarkLabel;
class SystemSpinBox;
class ValueMark;

/// What the system parameters window works with; everything outlives it.
struct SystemWindowParts {
    SystemParameters& record;
    Commands& commands;
    const Link& link; ///< only asked: on line
    SystemRecordAccess& access;
    PollingAccess& polling;
    ActionQueue& actions;
    MessageBoxes& boxes;
    const Clock& clock;
    const NumberLocale& locale;
};

/// The system parameters window: shows the program's record, and on Save stores what was changed into it and
/// sends it. Modal to its owner, to be shown by open(); it deletes itself when it closes. The timer is held
/// as long as it lives.
///
/// Save pumps events. Meanwhile the buttons do nothing; a close waits for its end, and is dropped when the
/// save failed, so that the reason is seen.
class frmSystem : public Window {
    Q_OBJECT
public:
    frmSystem(const SystemWindowParts& parts, QWidget* owner);
    ~frmSystem() override;

    void reject() override;

private:
    struct Number {
        SpinnerField* field;
        SystemSpinBox* box;
        ValueMark* mark;
        QString label;
        std::string unit;
        int parameter; ///< index of spnSysParam; -1 for others
    };
    struct Mode {
        ModeField* field;
        QRadioButton* off;
        QRadioButton* on;
        ValueMark* mark;
        QString label;
    };
    /// How a number's row looks; see the tables in frmSystemLayout.cpp.
    struct Row;
    struct ModeBox;
    class Sending;

    // Construction, in frmSystemLayout.cpp.
    void buildWindow();
    QGroupBox* buildGroup(const char* name, const char* caption, const std::vector<Row>& rows, int labelWidth,
                          const char* toolTip);
    void buildNumber(QGridLayout& grid, const Row& row, const QString& toolTip);
    QGroupBox* buildMode(const ModeBox& look);
    QBoxLayout* buildNumbers();
    QBoxLayout* buildTooling();
    QBoxLayout* buildModes();
    QLayout* buildColumns();
    QLayout* buildBottom();
    QPushButton* button(const char* name, const char* caption, const char* toolTip,
                        void (frmSystem::*click)());

    void InitForm();
    void InitDisplays();
    void cmdRead_Click();
    void cmdSave_Click();
    void cmdOK_Click();
    void numberChanged(const Number& number);
    void numberRefused(const Number& number);
    void optMode_Click(Mode& mode, bool on);
    bool finishTyped();
    void tellTooClose();
    void showTooClose();
    void holdFrequencies(bool held);
    void send();
    void saved(const Commands::SystemSent& sent);
    void showFields();
    /// The Tab key comes to the button that is checked.
    static void oneTabStop(const Mode& mode);
    void showMarks();
    void showState();

    SystemWindowParts parts_;
    std::unique_ptr<Tenure> timerHold_;
    SystemFields fields_;
    std::vector<std::unique_ptr<Number>> numbers_;
    std::vector<std::unique_ptr<Mode>> modes_;
    SystemState state_;
    bool telling_ = false;     ///< the message on the frequencies is to come, or is open
    bool saveSpoiled_ = false; ///< the press on Save left a field whose text was refused
    bool closeWanted_ = false;
    QPushButton* cmdSave_ = nullptr;
    MarkLabel* lblState_ = nullptr;
};

} // namespace drx9
