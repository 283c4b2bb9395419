// The communications window's controls and where they are.
#include "link/frmComm.h"

#include "controls/Build.h"
#include "controls/HairLine.h"
#include "controls/ReadOnlyLine.h"
#include "controls/Theme.h"
#include "controls/WarnMark.h"

#include <QComboBox>
#include <QFontDatabase>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedWidget>

namespace drx9 {

namespace {
constexpr int kListWidth = 160;
constexpr int kGap = 8;
constexpr const char* kLongNote = "0A7C21 is set: choose one"; ///< the room beside a list
constexpr int kPortWidth = 72;                                 ///< five digits
constexpr int kRowHeight = 28;
constexpr int kStateLines = 3; ///< the longest reason, with the command that mends it

int noteWidth(const QWidget* page) {
    return page->fontMetrics().horizontalAdvance(latin(kLongNote)) + 2;
}

QLabel* note(const char* name, QWidget* page) {
    QLabel* label = makeMutedLabel(page, {});
    label->setObjectName(latin(name));
    label->setFixedWidth(noteWidth(page));
    return label;
}

QLabel* caption(const char* name, const char* text, QWidget* parent) {
    auto* label = new QLabel(latin(text), parent);
    label->setObjectName(latin(name));
    return label;
}

QLineEdit* field(QLineEdit* edit, const char* name, const char* toolTip, QLabel* label) {
    edit->setObjectName(latin(name));
    edit->setToolTip(latin(toolTip));
    edit->setMinimumHeight(kRowHeight);
    label->setBuddy(edit);
    return edit;
}

QGridLayout* pageLayout(QWidget* page) {
    auto* grid = new QGridLayout(page);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(kGap);
    grid->setVerticalSpacing(kGap);
    grid->setColumnStretch(3, 1);
    grid->setRowStretch(2, 1);
    return grid;
}
} // namespace

QPushButton* frmComm::button(const char* name, const char* captionText, const char* toolTip) {
    QPushButton* made = makeButton(this, name, captionText, toolTip);
    made->setAutoDefault(true);
    made->setMinimumHeight(kRowHeight);
    return made;
}

QComboBox* frmComm::list(const char* name, const char* accessible, QWidget* page) {
    auto* made = new QComboBox(page);
    made->setObjectName(latin(name));
    made->setAccessibleName(latin(accessible));
    made->setFixedWidth(kListWidth);
    made->setMinimumHeight(kRowHeight);
    made->installEventFilter(this);
    return made;
}

QWidget* frmComm::buildLink() {
    auto* frame = new QGroupBox(QStringLiteral("Comm Port"), this);
    frame->setObjectName(QStringLiteral("Frame1"));
    pages_ = new QStackedWidget(frame);
    pages_->addWidget(buildSerialPage());
    pages_->addWidget(buildUsbPage());
    pages_->addWidget(buildEthernetPage());
    cmdFind_ = button("cmdFind", "&Find", "Search for an instrument on the selected comm port.");
    cmdFind_->setDefault(true);
    connect(cmdFind_, &QPushButton::clicked, this, &frmComm::cmdFind_Click);
    auto* row = new QHBoxLayout(frame);
    row->setContentsMargins(12, 12, 12, 12);
    row->setSpacing(16);
    row->addLayout(buildOptions(frame));
    row->addWidget(new HairLine(Qt::Vertical, frame));
    row->addWidget(pages_, 1);
    row->addWidget(cmdFind_, 0, Qt::AlignTop);
    return frame;
}

QLayout* frmComm::buildOptions(QWidget* frame) {
    struct Option {
        const char* caption;
        const char* toolTip;
    };
    static constexpr std::array<Option, 3> kOptions{{{"&RS-232", "Select RS-242 communications."}, // kept
                                                     {"&USB", "Select USB communications."},
                                                     {"&Ethernet", "Select Ethernet communications."}}};
    auto* column = new QVBoxLayout;
    column->setSpacing(4);
    for (std::size_t i = 0; i < kOptions.size(); ++i) {
        auto* option = new QRadioButton(latin(kOptions[i].caption), frame);
        option->setObjectName(QStringLiteral("optComm_%1").arg(i));
        option->setToolTip(latin(kOptions[i].toolTip));
        option->setMinimumHeight(kRowHeight);
        connect(option, &QRadioButton::toggled, this, [this, index = static_cast<int>(i)](bool on) {
            if (on) {
                optComm_Click(index);
            }
        });
        column->addWidget(option);
        optComm_[i] = option;
    }
    return column;
}

QWidget* frmComm::buildSerialPage() {
    auto* page = new QWidget(pages_);
    cboRS232_ = list("cboRS232", "Serial port", page);
    for (int port = 1; port <= SerialControl::kPorts; ++port) {
        cboRS232_->addItem(QStringLiteral("COM%1").arg(port));
    }
    cboBaud_ = list("cboBaud", "Baud rate", page);
    cboBaud_->setAccessibleDescription(QStringLiteral("Baud rate, as set at the instrument."));
    for (const std::int32_t rate : kBaudRates) {
        cboBaud_->addItem(QString::fromStdString(std::to_string(rate)), rate);
    }
    connect(cboRS232_, &QComboBox::activated, this, &frmComm::cboRS232_Click);
    connect(cboBaud_, &QComboBox::activated, this, &frmComm::cboBaud_Click);
    lblDevice_ = note("lblDevice", page);
    lblBaud_ = note("lblBaud", page);
    QGridLayout* grid = pageLayout(page);
    grid->addWidget(cboRS232_, 0, 0);
    grid->addWidget(lblDevice_, 0, 1);
    grid->addWidget(cboBaud_, 1, 0);
    grid->addWidget(lblBaud_, 1, 1);
    return page;
}

QWidget* frmComm::buildUsbPage() {
    auto* page = new QWidget(pages_);
    cboUSB_ = list("cboUSB", "USB serial number", page);
    cboUSB_->setAccessibleDescription(QStringLiteral("Serial number of the instrument's USB bridge."));
    connect(cboUSB_, &QComboBox::activated, this, &frmComm::cboUSB_Click);
    lblSerialNumber_ = note("lblSerialNumber", page);
    lblBridges_ = note("lblBridges", page);
    lblBridges_->setFixedWidth(kListWidth + kGap + noteWidth(page));
    lblBridges_->setWordWrap(true);
    lblBridges_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    const int line = lblBridges_->fontMetrics().lineSpacing();
    const int above = (kRowHeight - line) / 2; // on the line of the second list's text on the page beside
    lblBridges_->setContentsMargins(0, above, 0, 0);
    lblBridges_->setFixedHeight(above + 2 * line);
    QGridLayout* grid = pageLayout(page);
    grid->addWidget(cboUSB_, 0, 0);
    grid->addWidget(lblSerialNumber_, 0, 1);
    grid->addWidget(lblBridges_, 1, 0, 1, 2);
    return page;
}

QWidget* frmComm::buildEthernetPage() {
    auto* page = new QWidget(pages_);
    auto* lblEAddress = caption("lblEAddress", "Address", page);
    auto* lblPort = caption("lblPort", "Port", page);
    txtEAddr_ = field(new QLineEdit(page), "txtEAddr", "KTC-5 Ethernet address, typically 192.168.1.200",
                      lblEAddress);
    txtEAddr_->setFixedWidth(kListWidth);
    txtEport_ = field(new QLineEdit(page), "txtEport", "KTC-5 Ethernet port, typically 2101.", lblPort);
    txtEport_->setFixedWidth(kPortWidth);
    connect(txtEAddr_, &QLineEdit::editingFinished, this, &frmComm::txtEAddr_LostFocus);
    connect(txtEport_, &QLineEdit::editingFinished, this, &frmComm::txtEPort_LostFocus);
    cmdESetup_ = button("cmdESetup", "&Setup");
    cmdESetup_->setAccessibleDescription(QStringLiteral("Starts the serial server's setup program."));
    connect(cmdESetup_, &QPushButton::clicked, this, &frmComm::cmdESetup_Click);
    QGridLayout* grid = pageLayout(page);
    grid->addWidget(lblEAddress, 0, 0);
    grid->addWidget(txtEAddr_, 0, 1);
    grid->addWidget(cmdESetup_, 0, 2);
    grid->addWidget(lblPort, 1, 0);
    grid->addWidget(txtEport_, 1, 1);
    return page;
}

QWidget* frmComm::buildTerminal() {
    auto* frame = new QGroupBox(this);
    frame->setObjectName(QStringLiteral("Frame2"));
    frame->setAccessibleName(QStringLiteral("Commands"));
    auto* lblCommand = caption("Label2", "Command:", frame);
    auto* lblResponse = caption("Label3", "Response:", frame);
    txtSend_ = field(new QLineEdit(frame), "txtSend", "Enter a command to send.", lblCommand);
    txtSend_->installEventFilter(this);
    txtRcv_ = field(new ReadOnlyLine(frame), "txtRcv", "Instrument response to the command.", lblResponse);
    QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    fixed.setPixelSize(fontInfo().pixelSize());
    txtSend_->setFont(fixed);
    txtRcv_->setFont(fixed);
    cmdSend_ = button("cmdSend", "&Send", "Send command to the instrument.");
    connect(cmdSend_, &QPushButton::clicked, this, &frmComm::cmdSend_Click);
    auto* grid = new QGridLayout(frame);
    grid->setContentsMargins(12, 12, 12, 12);
    grid->setHorizontalSpacing(kGap);
    grid->setVerticalSpacing(kGap);
    grid->addWidget(lblCommand, 0, 0);
    grid->addWidget(txtSend_, 0, 1);
    grid->addWidget(cmdSend_, 0, 2);
    grid->addWidget(lblResponse, 1, 0);
    grid->addWidget(txtRcv_, 1, 1);
    return frame;
}

QLayout* frmComm::buildBottom() {
    stateMark_ = new WarnMark(this);
    keepRoomWhenHidden(*stateMark_, false);
    lblState_ = new QLabel(this);
    lblState_->setObjectName(QStringLiteral("lblState"));
    lblState_->setTextFormat(Qt::PlainText);
    lblState_->setWordWrap(true);
    lblState_->setTextInteractionFlags(Qt::TextSelectableByMouse); // it may name a command to type
    lblState_->setContextMenuPolicy(Qt::NoContextMenu);
    lblState_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    lblState_->setFixedHeight(kStateLines * lblState_->fontMetrics().lineSpacing());
    cmdOK_ = button("cmdOK", "&Close", "Close this form.");
    connect(cmdOK_, &QPushButton::clicked, this, &frmComm::reject);
    auto* row = new QHBoxLayout;
    row->setSpacing(kGap);
    row->addWidget(stateMark_);
    row->addWidget(lblState_, 1);
    row->addWidget(cmdOK_);
    return row;
}

void frmComm::setTabStops() {
    const std::array<QWidget*, 14> order{optComm_[0], optComm_[1], optComm_[2], cboRS232_,  cboBaud_,
                                         cboUSB_,     txtEAddr_,   txtEport_,   cmdESetup_, cmdFind_,
                                         txtSend_,    cmdSend_,    txtRcv_,     cmdOK_};
    for (std::size_t i = 1; i < order.size(); ++i) {
        setTabOrder(order[i - 1], order[i]);
    }
}

} // namespace drx9
