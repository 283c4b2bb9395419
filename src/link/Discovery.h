#pragma once

#include "errors/CErrHandler.h"
#include "link/Link.h"
#include "link/LinkSettings.h"
#include "platform/MessageBoxes.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace drx9 {

/// Is told whenever the link is opened, whoever opens it: what a loss means ends in one place.
class LinkListener {
public:
    virtual ~LinkListener() = default;
    /// Nothing of the new link has been touched yet.
    virtual void linkOpening() = 0;
    /// An instrument answers.
    virtual void linkOpened() = 0;
};

/// Finds the instrument and connects.
class Discovery {
public:
    static constexpr int kMaxUsbDevices = 8;

    using Abandon = std::function<bool()>;

    Discovery(Link& link, LinkSettings& settings, Transports& transports, EventPump& pump, const Clock& clock,
              ActionQueue& actions, MessageBoxes& boxes, CErrHandler& errors);

    /// Closes every open link, opens the one of `CommType`, asks for the version ("@") and the type ("J").
    /// Sets CommOK, CommStatus, CommVersion, InstrumentType. Pumps events; returns CommOK. Messages are
    /// Blocking at start-up and for the Find button; NonBlocking shows one box a loss, which success closes.
    /// `abandon` (may be empty) ends the attempt early, as failed, but never between an answered "@" and its
    /// "J".
    bool Comm_Open(Messages messages = Messages::Blocking, const Abandon& abandon = {});
    /// Nothing is opened any more once a listener has gone.
    void addListener(LinkListener& listener) { listeners_.push_back(&listener); }

    /// Searches the attached bridges for product "83F5" with this serial number; fills USBSerialList. Leaves
    /// every device closed. Does not pump.
    bool Comm_FindUSBDRX9(const std::string& serialNumber);

    [[nodiscard]] const std::vector<std::string>& USBSerialList() const { return serials_; }
    [[nodiscard]] std::int32_t USBCount() const { return static_cast<std::int32_t>(serials_.size()); }
    /// The link that was opened last, or tried; what is only set in the communications window is another.
    [[nodiscard]] const LinkSettings& tried() const { return tried_; }
    /// Why the last Comm_Open failed, for the status bar; empty after success, and where it was abandoned.
    [[nodiscard]] const std::string& failure() const { return failure_; }

private:
    class Attempt;

    bool openLink(const Abandon& abandon);
    bool openSerial();
    bool openUsb();
    bool openSocket(const Abandon& abandon);
    bool instrumentAnswers();
    bool answersStray();
    void lost();
    void tell(Messages messages, const std::string& text, MessageIcon icon, bool systemModal);

    Link& link_;
    LinkSettings& settings_;
    Transports& transports_;
    EventPump& pump_;
    const Clock& clock_;
    ActionQueue& actions_;
    MessageBoxes& boxes_;
    CErrHandler& errors_;
    std::vector<LinkListener*> listeners_;
    std::vector<std::string> serials_;
    LinkSettings tried_;
    std::int32_t index_ = 0; ///< USBIndex: of the bridge that the last successful search found
    std::string failure_;
    std::string refusal_; ///< what the serial port's box says; empty when nothing is to be shown
    bool opening_ = false;
    bool lossTold_ = false;
};

} // namespace drx9
