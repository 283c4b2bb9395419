#pragma once

#include "fakes/FakeLinks.h"
#include "fakes/FakeMessageBoxes.h"
#include "link/Commands.h"
#include "link/Crc.h"
#include "link/Link.h"

#include <string>

namespace drx9 {

/// A link on the three fake ports, with one of them open.
struct LinkBench {
    FakeClock clock;
    FakeEventPump pump{clock};
    FakeSerial serial{pump};
    FakeSocket socket{pump};
    FakeUsb usb{pump};
    FakeMessageBoxes boxes;
    LinkSettings settings;
    Transports transports{SerialTransport(serial), UsbTransport(usb), SocketTransport(socket)};
    ActionQueue actions{pump};
    Link link{settings, transports, pump, clock, actions};
    Commands commands{link, boxes, clock};

    LinkBench() { usb.devices = {{"83F5", "1234"}}; }
    explicit LinkBench(std::int16_t type)
        : LinkBench() {
        use(type);
    }

    void use(std::int16_t type) {
        settings.CommType = LinkType{type};
        transports.serial.open(1, settings.Baud);
        transports.usb.open(0);
        transports.socket.open(settings.EAddress, settings.EPort, pump, clock);
    }
    FakeWire& wire() {
        return settings.CommType == LinkType::Serial ? serial.wire
               : settings.CommType == LinkType::Usb  ? usb.wire
                                                     : socket.wire;
    }
};

inline std::string good(std::string_view data) {
    return replyPacket('A', data);
}

} // namespace drx9
