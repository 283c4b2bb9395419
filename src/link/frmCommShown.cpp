// What the communications window shows of the link and of the devices.
#include "link/frmComm.h"

#include "controls/Build.h"
#include "controls/Theme.h"
#include "controls/WarnMark.h"
#include "link/Texts.h"

#include <QComboBox>
#include <QLabel>
#include <QLayout>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QStackedWidget>

namespace drx9 {

namespace {
void setShortened(QLabel* label, const std::string& text) {
    const QString whole = shown(text);
    const QString fitting = label->fontMetrics().elidedText(whole, Qt::ElideMiddle, label->minimumWidth());
    label->setText(fitting);
    label->setToolTip(fitting == whole ? QString() : whole);
    label->setAccessibleName(whole);
}
} // namespace

CommSetup::Facts frmComm::facts() const {
    return {parts_.link.CommOK(), parts_.link.Comm_VersionText(), parts_.link.isOpen()};
}

/// Shows the controls of the link that is set, also where an option was chosen that did not count.
void frmComm::showLink() {
    const auto page = static_cast<std::size_t>(knownLink(parts_.settings.CommType));
    const QSignalBlocker blocker(optComm_[page]);
    optComm_[page]->setChecked(true);
    pages_->setCurrentIndex(static_cast<int>(page));
    followDevices();
}

void frmComm::showSerial() {
    for (int entry = 0; entry < cboRS232_->count(); ++entry) {
        const std::string device = parts_.serial.deviceName(entry + 1);
        cboRS232_->setItemData(entry, shown(device.empty() ? linkText::kNoDevice : device), Qt::ToolTipRole);
    }
    const std::int16_t port = parts_.settings.Port;
    const bool listed = portEntry(port).has_value();
    const std::string device = listed ? parts_.serial.deviceName(port) : std::string();
    setShortened(lblDevice_, deviceText(port, device));
    cboRS232_->setToolTip(shown(device));
    lblBaud_->setText(shown(baudText(parts_.settings.Baud)));
}

void frmComm::showUsb() {
    const int listed = cboUSB_->count();
    lblBridges_->setText(shown(bridgeText(listed, parts_.usb.attached())));
    const bool isListed = cboUSB_->findText(shown(parts_.settings.USBSerNum), Qt::MatchFixedString) >= 0;
    setShortened(lblSerialNumber_, serialNumberText(listed, isListed, parts_.settings.USBSerNum));
}

/// What is shown beside the lists follows devices that come and go; the list of bridges itself does not.
void frmComm::followDevices() {
    if (busy_) {
        return;
    }
    switch (knownLink(parts_.settings.CommType)) {
    case LinkType::Serial:
        showSerial();
        break;
    case LinkType::Usb:
        showUsb();
        break;
    case LinkType::Ethernet:
        break;
    }
    if (!(facts() == shownFacts_)) {
        showState();
    }
}

void frmComm::showState() {
    say(setup_.state(parts_.settings, facts()));
}

/// The text, without its middle where it is longer than its place.
QString frmComm::fitted(const QString& text) const {
    const QRect room(0, 0, lblState_->width(), QWIDGETSIZE_MAX);
    QString fitting = text;
    for (qsizetype keep = text.size() - 1; keep > 1; --keep) {
        const QRect needed = lblState_->fontMetrics().boundingRect(room, Qt::TextWordWrap, fitting);
        if (!isVisible() || needed.height() <= lblState_->height()) {
            break;
        }
        fitting = text.left(keep / 2) + QStringLiteral("\u2026") + text.right(keep - keep / 2);
    }
    return fitting;
}

void frmComm::say(const CommState& state) {
    state_ = state;
    shownFacts_ = facts();
    const QString text = shown(state.text);
    QPalette colours = lblState_->palette();
    colours.setColor(QPalette::WindowText, Theme::of(palette()).tone(state.tone));
    lblState_->setPalette(colours);
    stateMark_->setExplanation(state.tone == Tone::Plain ? QString() : text, state.tone);
    layout()->activate();
    lblState_->setText(fitted(text));
    lblState_->setToolTip(text);
    lblState_->setAccessibleName(text);
}

void frmComm::refillUsb() {
    cboUSB_->clear();
    for (const std::string& serialNumber : parts_.discovery.USBSerialList()) {
        cboUSB_->addItem(shown(serialNumber));
    }
    const int chosen = cboUSB_->findText(shown(parts_.settings.USBSerNum), Qt::MatchFixedString);
    cboUSB_->setCurrentIndex(chosen < 0 && cboUSB_->count() > 0 ? 0 : chosen);
}

} // namespace drx9
