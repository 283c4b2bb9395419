#include "platform/qt/SerialPortList.h"

#include <gtest/gtest.h>

using namespace drx9;

namespace {

using Devices = std::vector<SerialDevice>;

SerialDevice usb(const std::string& name, const std::string& serial, const std::string& place) {
    return {"/dev/" + name, "0403:6001", serial, place};
}

std::string ports(const SerialPortList& list) {
    std::string text;
    for (int port = 0; port <= 10; ++port) {
        if (const std::string device = list.device(port); !device.empty()) {
            text += std::to_string(port) + "=" + device.substr(5) + " ";
        }
    }
    return text;
}

TEST(SerialPortListTest, KeepsEachDevicesNumberThroughUpdates) {
    const SerialDevice uart{"/dev/ttyS4", "", "", "/dev/ttyS4"};
    const SerialDevice a0 = usb("ttyUSB0", "a", "p1");
    const SerialDevice b1 = usb("ttyUSB1", "b", "p2");
    const SerialDevice x0 = usb("ttyUSB0", "x", "p1"); // two that claim the same serial number
    const SerialDevice x1 = usb("ttyUSB1", "x", "p2");
    // Updates of the devices that are present, and the ports after the last one.
    const std::tuple<const char*, std::vector<Devices>, const char*> cases[] = {
        {"UARTs, then USB, then modems, by number",
         {{usb("ttyACM0", "m", "p1"), usb("ttyUSB10", "b", "p2"), usb("ttyUSB2", "a", "p3"), uart}},
         "1=ttyS4 2=ttyUSB2 3=ttyUSB10 4=ttyACM0 "},
        {"an absent device leaves its number empty", {{uart, a0, b1}, {uart, b1}}, "1=ttyS4 3=ttyUSB1 "},
        {"plugged in elsewhere", {{a0, b1}, {b1}, {b1, usb("ttyUSB2", "a", "p9")}}, "1=ttyUSB2 2=ttyUSB1 "},
        {"swapped",
         {{a0, b1}, {}, {usb("ttyUSB0", "b", "p2"), usb("ttyUSB1", "a", "p1")}},
         "1=ttyUSB1 2=ttyUSB0 "},
        {"a stranger on the same path", {{a0}, {usb("ttyUSB0", "z", "p1")}}, "2=ttyUSB0 "},
        {"a late one goes to the end, whatever its kind", {{a0}, {uart, a0}}, "1=ttyUSB0 2=ttyS4 "},
        {"the plug tells",
         {{usb("ttyUSB0", "", "p1"), usb("ttyUSB1", "", "p2")}, {usb("ttyUSB0", "", "p2")}},
         "2=ttyUSB0 "},
        {"twins are told by their plugs, also while one is away",
         {{x0, x1}, {usb("ttyUSB0", "x", "p2")}, {usb("ttyUSB0", "x", "p2"), usb("ttyUSB1", "x", "p1")}},
         "1=ttyUSB1 2=ttyUSB0 "},
        {"a twin that comes later does not take over", {{x0}, {x0, x1}, {x1}}, "2=ttyUSB1 "},
    };
    for (const auto& [name, updates, expected] : cases) {
        SCOPED_TRACE(name);
        SerialPortList list;
        for (const Devices& present : updates) {
            list.update(present);
        }
        EXPECT_EQ(ports(list), expected);
    }
}

TEST(SerialPortListTest, RefusalsSayWhatToDo) {
    const auto text = [](bool exists, bool permitted, const char* group) {
        return refusalText({"/dev/ttyUSB0", exists, permitted, group, "kim", "Permission denied"});
    };
    EXPECT_EQ(text(true, true, "dialout"), "/dev/ttyUSB0 is in use by another program.");
    EXPECT_EQ(text(true, false, "dialout"),
              "/dev/ttyUSB0 belongs to group dialout: sudo usermod -a -G dialout kim, then log in again.");
    EXPECT_EQ(text(true, false, ""), "/dev/ttyUSB0: Permission denied");
    EXPECT_EQ(mappingText({"/dev/ttyXR0"}, "/home/kim/DRX9", 4),
              "/dev/ttyXR0 is none of COM1 to COM9. Make a link to it: ln -sfn /dev/ttyXR0 "
              "\"/home/kim/DRX9/COM4\"");
    EXPECT_EQ(mappingText({}, "/home/kim/DRX9", 4), "");
}

} // namespace
