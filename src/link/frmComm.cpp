#include "link/frmComm.h"

#include "controls/Build.h"
#include "link/Texts.h"
#include "util/ProgramName.h"
#include "util/Text.h"

#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QScopeGuard>
#include <QVBoxLayout>

namespace drx9 {

namespace {
constexpr const char* kSetupTool = "dgdiscvr.exe";
constexpr int kDevicesMs = 1000;

int entryOrNone(const std::optional<std::size_t>& entry) {
    return entry ? static_cast<int>(*entry) : -1;
}
} // namespace

/// What an exchange of this window does to it and to the rest: nothing else starts, the pointer waits, and
/// Send is disabled. A close that was asked for meanwhile comes from the event loop.
class frmComm::Operation {
public:
    explicit Operation(frmComm& window)
        : window_(&window)
        , scope_(window.parts_.actions)
        , sendHadFocus_(window.cmdSend_->hasFocus()) {
        window.busy_ = true;
        QApplication::setOverrideCursor(Qt::WaitCursor);
        window.cmdSend_->setEnabled(false);
    }
    ~Operation() {
        QApplication::restoreOverrideCursor();
        if (window_ == nullptr) {
            return;
        }
        window_->busy_ = false;
        window_->cmdSend_->setEnabled(true);
        if (sendHadFocus_) {
            window_->cmdSend_->setFocus();
        }
        if (window_->closeWanted_) {
            QMetaObject::invokeMethod(window_, &QDialog::reject, Qt::QueuedConnection);
        }
    }
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;

private:
    QPointer<frmComm> window_;
    ActionQueue::Scope scope_;
    bool sendHadFocus_;
};

frmComm::frmComm(const CommWindowParts& parts, QWidget* owner)
    : Window(owner, Qt::WindowStaysOnTopHint)
    , parts_(parts)
    , hold_(parts.polling.holdTimer(linkText::kHoldReason))
    , setup_(parts.settings, facts(), parts.discovery.failure()) {
    setObjectName(QStringLiteral("frmComm"));
    setWindowTitle(QStringLiteral("DRX-9 Comm Setup"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(16, 16, 16, 16);
    column->setSpacing(12);
    column->setSizeConstraint(QLayout::SetFixedSize);
    column->addWidget(buildLink());
    column->addWidget(buildTerminal());
    column->addLayout(buildBottom());
    setTabStops();
    Form_Load();
    connect(&devices_, &QTimer::timeout, this, &frmComm::followDevices);
    devices_.start(kDevicesMs);
}

void frmComm::Form_Load() {
    parts_.setup.linkSetupOpened();
    const LinkSettings& settings = parts_.settings;
    cboRS232_->setCurrentIndex(entryOrNone(portEntry(settings.Port)));
    cboBaud_->setCurrentIndex(entryOrNone(baudEntry(settings.Baud)));
    txtEport_->setText(shown(settings.EPort));
    txtEAddr_->setText(shown(settings.EAddress));
    const auto type = static_cast<std::size_t>(knownLink(settings.CommType));
    optComm_[type]->setChecked(true); // runs optComm_Click
    optComm_[type]->setFocus();
    showState();
    loading_ = false;
}

void frmComm::optComm_Click(int index) {
    if (busy_) {
        showLink();
        return;
    }
    takeAddress();
    parts_.settings.CommType = static_cast<LinkType>(index);
    if (parts_.settings.CommType == LinkType::Usb) {
        refillUsb();
    }
    showLink();
    if (!loading_ && parts_.settings.CommType == LinkType::Serial) {
        openSerialPort(cboRS232_->currentIndex() + 1);
    } else if (!loading_) {
        showState();
    }
}

void frmComm::cboRS232_Click() {
    if (busy_) {
        cboRS232_->setCurrentIndex(entryOrNone(portEntry(parts_.settings.Port)));
        return;
    }
    parts_.settings.Port = static_cast<std::int16_t>(cboRS232_->currentIndex() + 1);
    showSerial();
    openSerialPort(parts_.settings.Port);
}

/// A port that refuses is told in a box, as everywhere, and with its reason on the bottom line.
void frmComm::openSerialPort(int port) {
    const Operation operation(*this);
    parts_.serial.close();
    const std::string reason = parts_.serial.open(port, parts_.settings.Baud);
    setup_.portOpened(parts_.settings.Port, reason);
    showState();
    if (!reason.empty() && SerialControl::isPort(port)) {
        parts_.boxes.show(filled(linkText::kPortNotAvailable, {std::to_string(port)}), kProgramName,
                          MessageIcon::Information);
    }
}

void frmComm::cboBaud_Click() {
    if (busy_) {
        cboBaud_->setCurrentIndex(entryOrNone(baudEntry(parts_.settings.Baud)));
        return;
    }
    parts_.settings.Baud = cboBaud_->currentData().toInt();
    showSerial();
    showState();
}

void frmComm::cboUSB_Click() {
    if (busy_) {
        cboUSB_->setCurrentIndex(std::max(0, cboUSB_->findText(shown(parts_.settings.USBSerNum))));
        return;
    }
    parts_.settings.USBSerNum = cboUSB_->currentText().toStdString();
    showUsb();
    showState();
}

void frmComm::txtEPort_LostFocus() {
    takeAddress();
}

void frmComm::txtEAddr_LostFocus() {
    takeAddress();
}

/// What is typed counts as soon as its field is left or anything else of the window acts.
void frmComm::takeAddress() {
    if (loading_) {
        return;
    }
    LinkSettings& settings = parts_.settings;
    const std::string address = txtEAddr_->text().toStdString();
    const std::string port = txtEport_->text().toStdString();
    if (settings.EAddress == address && settings.EPort == port) {
        return;
    }
    settings.EAddress = address;
    settings.EPort = port;
    if (!busy_) {
        showState();
    }
}

/// Runs it now or, when something of the monitor is on the stack, behind that; not at all while an operation
/// of this window runs.
void frmComm::whenIdle(void (frmComm::*action)()) {
    if (busy_) {
        return;
    }
    takeAddress();
    parts_.actions.runWhenIdle(ifAlive([this, action] {
        if (!busy_) {
            (this->*action)();
        }
    }));
}

void frmComm::cmdFind_Click() {
    whenIdle(&frmComm::find);
}

void frmComm::cmdSend_Click() {
    whenIdle(&frmComm::send);
}

void frmComm::cmdESetup_Click() {
    whenIdle(&frmComm::startSetup);
}

void frmComm::find() {
    const QPointer<frmComm> self(this);
    const Operation operation(*this);
    LinkSettings sought = parts_.settings; // what is typed meanwhile is another link
    txtSend_->clear();
    txtRcv_->clear();
    say({filled(linkText::kLooking, {linkName(sought)}), Tone::Plain});
    const bool found =
        parts_.discovery.Comm_Open(Messages::Blocking, [this] { return parts_.actions.closing(); });
    if (self == nullptr) {
        return;
    }
    sought.USBSerNum = parts_.settings.USBSerNum; // a single bridge is adopted
    setup_.searched(sought, parts_.discovery.failure());
    if (parts_.settings.CommType == LinkType::Usb) {
        refillUsb();
        showUsb();
    }
    showState();
    if (found) {
        parts_.setup.linkFound();
        parts_.boxes.show(filled(linkText::kFound, {parts_.link.Comm_VersionText()}), kProgramName,
                          MessageIcon::None);
    }
}

void frmComm::send() {
    const std::string typed = txtSend_->text().toStdString();
    const RawCommand command = rawCommand(typed);
    txtRcv_->clear();
    if (!command.refusal.empty()) {
        say({command.refusal, Tone::Warn});
        return;
    }
    const QPointer<frmComm> self(this);
    const Operation operation(*this);
    history_.add(typed);
    if (command.changesFilm) {
        parts_.setup.filmUnconfirmed();
    }
    const Exchange exchange = parts_.link.Comm_Send(command.bytes);
    if (self == nullptr) {
        return;
    }
    txtRcv_->setText(shown(responseText(exchange)));
    txtRcv_->setCursorPosition(0);
    if (comm::isSilence(exchange.status) && facts().open) {
        say(CommSetup::silence(parts_.settings, facts()));
    } else if (exchange.ok()) {
        say(setup_.answered(parts_.settings, facts(), !exchange.reply.empty()));
    } else {
        showState();
    }
}

void frmComm::startSetup() {
    const std::string reason = parts_.shell.startProgram(kSetupTool);
    if (!reason.empty()) {
        const Operation operation(*this);
        parts_.boxes.show(reason, kProgramName, MessageIcon::Exclamation);
    }
}

void frmComm::walkHistory(bool older) {
    const std::string line = txtSend_->text().toStdString();
    txtSend_->setText(shown(older ? history_.older(line) : history_.newer(line)));
}

void frmComm::reject() {
    if (busy_) {
        closeWanted_ = true;
        return;
    }
    if (parts_.actions.busy()) {
        whenIdle(&frmComm::Form_Unload);
        return;
    }
    takeAddress();
    Form_Unload(); // not by the queue, which takes nothing more once the program closes
}

void frmComm::Form_Unload() {
    // Also when the monitor's part throws: the timer must not stay held by a window that nobody sees.
    const auto leave = qScopeGuard([self = QPointer<frmComm>(this)] {
        if (self != nullptr) {
            self->hold_.reset();
            self->Window::reject();
            self->deleteLater();
        }
    });
    busy_ = true;
    devices_.stop();
    hide(); // opening the link and reading the films take their time: the main window shows them
    parts_.setup.linkSetupClosed(setup_.reopens(parts_.settings, facts()),
                                 setup_.isSameLink(parts_.settings));
}

/// The close box goes the same way as the button; the window goes when that is through.
void frmComm::closeEvent(QCloseEvent* event) {
    event->ignore();
    QMetaObject::invokeMethod(this, &QDialog::reject, Qt::QueuedConnection);
}

void frmComm::changeEvent(QEvent* event) {
    Window::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && lblState_ != nullptr) {
        say(state_);
    }
}

/// A box over the window has the common pointer, whatever waits below it.
bool frmComm::event(QEvent* event) {
    if (event->type() == QEvent::Show) {
        say(state_); // only now its place is known
    }
    const bool operates = busy_ && isVisible();
    if (operates && event->type() == QEvent::WindowBlocked) {
        QApplication::changeOverrideCursor(Qt::ArrowCursor);
    } else if (operates && event->type() == QEvent::WindowUnblocked) {
        QApplication::changeOverrideCursor(Qt::WaitCursor);
    }
    return Window::event(event);
}

bool frmComm::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Wheel) {
        event->ignore(); // a list that is closed does not follow the wheel: each choice opens a port
        return true;
    }
    if (watched != txtSend_) {
        return Window::eventFilter(watched, event);
    }
    if (event->type() == QEvent::FocusIn) {
        cmdSend_->setDefault(true);
    } else if (event->type() == QEvent::FocusOut) {
        cmdFind_->setDefault(true);
    } else if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Up || key == Qt::Key_Down) {
            walkHistory(key == Qt::Key_Up);
            return true;
        }
    }
    return Window::eventFilter(watched, event);
}

} // namespace drx9
