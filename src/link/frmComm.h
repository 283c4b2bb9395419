#pragma once

#include "controls/Window.h"
#include "link/ActionQueue.h"
#include "link/CommSetup.h"
#include "link/CommandHistory.h"
#include "link/Discovery.h"
#include "link/Link.h"
#include "link/MonitorAccess.h"
#include "platform/Desktop.h"
#include "platform/MessageBoxes.h"

#include <QTimer>

#include <array>
#include <memory>

class QComboBox;
class QLabel;
class QLayout;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QStackedWidget;

namespace drx9 {

class WarnMark;

struct CommWindowParts {
    LinkSettings& settings;
    Link& link;
    Discovery& discovery;
    SerialTransport& serial; ///< opened again
    UsbTransport& usb;       ///< bridges are counted
    Shell& shell;
    MessageBoxes& boxes;
    ActionQueue& actions;
    LinkSetupAccess& setup;
    PollingAccess& polling;
};

/// The communications window: chooses the link, looks for the instrument, and carries typed commands. Every
/// change takes effect at once. Modal to its owner and above all other windows: open() it, never exec(). It
/// holds the timer from its construction until it has closed, and deletes itself then.
///
/// Find and Send pump events. While one runs the other buttons, the lists and the options do nothing, and a
/// close waits for its end. On close the window hides first, then tells the monitor, which may pump.
class frmComm : public Window {
    Q_OBJECT
public:
    frmComm(const CommWindowParts& parts, QWidget* owner);

    /// Closes, at once or behind the operation that is on the stack. Esc and the Close button come here.
    void reject() override;

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class Operation;

    // Construction (frmCommLayout.cpp).

    QWidget* buildLink();
    QLayout* buildOptions(QWidget* frame);
    QWidget* buildSerialPage();
    QWidget* buildUsbPage();
    QWidget* buildEthernetPage();
    QWidget* buildTerminal();
    QLayout* buildBottom();
    QPushButton* button(const char* name, const char* caption, const char* toolTip = "");
    QComboBox* list(const char* name, const char* accessible, QWidget* page);
    void setTabStops();

    // What is shown (frmCommShown.cpp).

    void Form_Load();
    void showLink();
    void showSerial();
    void showUsb();
    void showState();
    void say(const CommState& state);
    [[nodiscard]] QString fitted(const QString& text) const;
    void refillUsb();
    void followDevices();
    [[nodiscard]] CommSetup::Facts facts() const;

    // What the operator does.

    void optComm_Click(int index);
    void cboRS232_Click();
    void cboBaud_Click();
    void cboUSB_Click();
    void txtEPort_LostFocus();
    void txtEAddr_LostFocus();
    void cmdFind_Click();
    void cmdSend_Click();
    void cmdESetup_Click();
    void openSerialPort(int port);
    void takeAddress();
    void walkHistory(bool older);
    void whenIdle(void (frmComm::*action)());
    void find();
    void send();
    void startSetup();
    void Form_Unload();

    CommWindowParts parts_;
    std::unique_ptr<Tenure> hold_;
    CommSetup setup_;
    CommandHistory history_;
    bool loading_ = true;
    bool busy_ = false; ///< an operation of this window is on the stack, or it is closing
    bool closeWanted_ = false;
    QTimer devices_;

    std::array<QRadioButton*, 3> optComm_{}; ///< by CommType
    QStackedWidget* pages_ = nullptr;
    QComboBox* cboRS232_ = nullptr;
    QComboBox* cboBaud_ = nullptr;
    QComboBox* cboUSB_ = nullptr;
    QLabel* lblDevice_ = nullptr;
    QLabel* lblBaud_ = nullptr;
    QLabel* lblSerialNumber_ = nullptr;
    QLabel* lblBridges_ = nullptr;
    QLineEdit* txtEAddr_ = nullptr;
    QLineEdit* txtEport_ = nullptr;
    QPushButton* cmdESetup_ = nullptr;
    QPushButton* cmdFind_ = nullptr;
    QLineEdit* txtSend_ = nullptr;
    QLineEdit* txtRcv_ = nullptr;
    QPushButton* cmdSend_ = nullptr;
    QPushButton* cmdOK_ = nullptr;
    WarnMark* stateMark_ = nullptr;
    QLabel* lblState_ = nullptr;
    CommState state_;
    CommSetup::Facts shownFacts_; ///< when state_ was said
};

} // namespace drx9
