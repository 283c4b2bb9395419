#include "link/Discovery.h"

#include "link/Texts.h"
#include "util/Numbers.h"
#include "util/ProgramName.h"
#include "util/Text.h"

namespace drx9 {

namespace {
constexpr int kSerialNumber = 0;     // options of SI_GetProductString
constexpr double kStrayWatch = 0.05; // s

/// A procedure's name with the error handler, as long as it runs.
class Registered {
public:
    Registered(CErrHandler& errors, const std::string& name)
        : errors_(errors) {
        errors_.Push(name);
    }
    ~Registered() { errors_.Pop(); }
    Registered(const Registered&) = delete;
    Registered& operator=(const Registered&) = delete;

private:
    CErrHandler& errors_;
};

std::string productText(UsbBridge& bridge, std::uint32_t index, int option) {
    std::string text;
    return bridge.SI_GetProductString(index, text, option) == 0 ? text : std::string();
}

/// Opens and closes device `index`; false when another program holds it.
bool canOpen(UsbBridge& bridge, std::uint32_t index) {
    std::int32_t handle = 0;
    if (bridge.SI_Open(index, handle) != 0) {
        return false;
    }
    bridge.SI_Close(handle);
    return true;
}
} // namespace

/// Holds off everything else while a link is opened, and leaves "lost" behind when an event handler's
/// exception ends the attempt.
class Discovery::Attempt {
public:
    explicit Attempt(Discovery& discovery)
        : discovery_(discovery)
        , scope_(discovery.actions_) {
        discovery_.opening_ = true;
        discovery_.failure_.clear();
        discovery_.link_.setCommStatus(comm::kBusy);
    }
    ~Attempt() {
        discovery_.opening_ = false;
        if (discovery_.link_.CommStatus() == comm::kBusy) {
            discovery_.lost();
        }
    }
    Attempt(const Attempt&) = delete;
    Attempt& operator=(const Attempt&) = delete;

private:
    Discovery& discovery_;
    ActionQueue::Scope scope_;
};

Discovery::Discovery(Link& link, LinkSettings& settings, Transports& transports, EventPump& pump,
                     const Clock& clock, ActionQueue& actions, MessageBoxes& boxes, CErrHandler& errors)
    : link_(link)
    , settings_(settings)
    , transports_(transports)
    , pump_(pump)
    , clock_(clock)
    , actions_(actions)
    , boxes_(boxes)
    , errors_(errors) {}

bool Discovery::Comm_Open(Messages messages, const Abandon& abandon) {
    if (opening_ || link_.exchanging()) {
        return link_.CommOK(); // from an event handler: the attempt or exchange on the stack goes on
    }
    const Attempt attempt(*this);
    for (LinkListener* listener : listeners_) {
        listener->linkOpening();
    }
    transports_.closeAll();
    tried_ = settings_; // what is typed meanwhile is another link
    const bool open = openLink(abandon);
    // A command given while there was no open link is not kept for whoever answers now.
    link_.forget();
    if (abandon && abandon()) {
        transports_.closeAll();
        lost();
        failure_.clear();
        return false;
    }
    if (!open) {
        lost();
        if (!refusal_.empty()) {
            tell(messages, refusal_, MessageIcon::Information, false);
        }
        return false;
    }
    if (!instrumentAnswers()) {
        lost();
        if (!abandon || !abandon()) {
            tell(messages, linkText::kNotFound, MessageIcon::None, true);
        }
        return false;
    }
    boxes_.closeNonBlocking();
    lossTold_ = false;
    for (LinkListener* listener : listeners_) {
        listener->linkOpened();
    }
    return true;
}

bool Discovery::openLink(const Abandon& abandon) {
    refusal_.clear();
    switch (settings_.CommType) {
    case LinkType::Usb:
        return openUsb();
    case LinkType::Ethernet:
        return openSocket(abandon);
    default:
        return openSerial();
    }
}

bool Discovery::openSerial() {
    const int port = settings_.Port;
    const std::string reason = transports_.serial.open(port, settings_.Baud);
    if (reason.empty()) {
        return true;
    }
    failure_ = filled(linkText::kPortNotAvailable, {std::to_string(port)});
    const bool tried = SerialControl::isPort(port);
    refusal_ = tried ? failure_ : std::string(); // the port's reason is for the status bar
    failure_ += " " + reason;
    return false;
}

bool Discovery::openUsb() {
    bool found = Comm_FindUSBDRX9(settings_.USBSerNum);
    if (!found && USBCount() == 1) {
        settings_.USBSerNum = tried_.USBSerNum = serials_.front();
        found = Comm_FindUSBDRX9(settings_.USBSerNum);
    }
    if (found && transports_.usb.open(index_)) {
        return true;
    }
    if (found) {
        failure_ = filled(linkText::kUsbRefuses, {settings_.USBSerNum});
    } else {
        failure_ = serials_.empty()
                       ? linkText::kUsbNone
                       : filled(linkText::kUsbOthers, {settings_.USBSerNum, std::to_string(USBCount())});
    }
    const std::string reason = transports_.usb.bridge().reason();
    failure_ += reason.empty() ? "" : " " + reason;
    return false;
}

bool Discovery::openSocket(const Abandon& abandon) {
    if (transports_.socket.open(settings_.EAddress, settings_.EPort, pump_, clock_, abandon)) {
        return true;
    }
    const std::string reason = transports_.socket.reason();
    failure_ = filled(linkText::kNoConnection, {settings_.EAddress, settings_.EPort,
                                                reason.empty() ? linkText::kNoAnswerInTime : reason});
    transports_.socket.close(); // a connection that comes later is not wanted
    return false;
}

bool Discovery::instrumentAnswers() {
    link_.setCommStatus(comm::kOk);
    link_.watch().begin();
    const Exchange version = link_.Comm_Send("@");
    if (!version.ok()) {
        failure_ = filled(linkText::kNotFoundBecause, {commStatusText(version.status)});
        transports_.usb.close(); // after a failure no device stays open
        return false;
    }
    const std::string type = link_.Comm_Send("J").reply;
    if (answersStray()) {
        return false;
    }
    link_.setInstrumentType(type.empty() ? std::int16_t{0} : toInt16(Val(type.substr(type.size() - 1))));
    link_.setCommOK(true);
    link_.setCommStatus(comm::kOk);
    return true;
}

/// A serial port keeps what comes late for the link as it was: it must not pass for the version.
bool Discovery::answersStray() {
    link_.settle();
    link_.listen(kStrayWatch);
    if (!link_.watch().broken()) {
        return false;
    }
    failure_ = linkText::kOutOfStep;
    transports_.usb.close();
    return true;
}

void Discovery::lost() {
    link_.setCommStatus(comm::kLost);
    link_.setCommOK(false);
    link_.setInstrumentType(0);
}

void Discovery::tell(Messages messages, const std::string& text, MessageIcon icon, bool systemModal) {
    if (messages == Messages::Blocking) {
        boxes_.closeNonBlocking();
        boxes_.show(text, kProgramName, icon, systemModal);
    } else if (messages == Messages::NonBlocking && !lossTold_) {
        lossTold_ = true;
        boxes_.showNonBlocking(text, kProgramName, icon);
    }
}

bool Discovery::Comm_FindUSBDRX9(const std::string& serialNumber) {
    const Registered registered(errors_, "Comm_FindUSBDRX9");
    transports_.usb.close();
    serials_.clear();
    UsbBridge& bridge = transports_.usb.bridge();
    std::uint32_t devices = 0;
    if (bridge.SI_GetNumDevices(devices) != 0) {
        return false;
    }
    bool found = false;
    for (std::uint32_t i = 0; i < devices && USBCount() < kMaxUsbDevices; ++i) {
        if (!equalNoCase(productText(bridge, i, UsbTransport::kProductId), UsbTransport::kProduct) ||
            !canOpen(bridge, i)) {
            continue;
        }
        serials_.push_back(productText(bridge, i, kSerialNumber));
        if (equalNoCase(serials_.back(), serialNumber)) {
            index_ = static_cast<std::int32_t>(i);
            found = true;
        }
    }
    return found;
}

} // namespace drx9
