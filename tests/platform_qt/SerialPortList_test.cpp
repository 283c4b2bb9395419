#include "platform/qt/SerialPortList.h"

#include <gtest/gtest.h>

using namespace drx9;

namespace {

using Devices = std::vector<SerialDevice>;

SerialDevice uart(int number) {
    const std::string path = "/dev/ttyS" + std::to_string(number);
    return {path, "", "", path};
}

SerialDevice adapter(const std::string& name, const std::string& serial, const std::string& place) {
    return {"/dev/" + name, "0403:6001", serial, place};
}

std::string ports(const SerialPortList& list) {
    std::string text;
    for (int port = 0; port <= 10; ++port)
        if (const std::string device = list.device(port); !device.empty())
            text += std::to_string(port) + "=" + device.substr(5) + " ";
    return text;
}

TEST(SerialPortListTest, KeepsEachDevicesNumberThroughUpdates) {
    const struct {
        const char* name;
        std::vector<Devices> updates;
        const char* ports; ///< after the last update
    } cases[] = {
        {"nothing", {{}}, ""},
        {"UARTs, then USB, then modems, by number",
         {{adapter("ttyACM0", "m", "p1"),
           adapter("ttyUSB10", "b", "p2"),
           adapter("ttyUSB2", "a", "p3"),
           uart(4),
           {"/dev/rfcomm0", "", "", "/dev/rfcomm0"}}},
         "1=ttyS4 2=ttyUSB2 3=ttyUSB10 4=ttyACM0 5=rfcomm0 "},
        {"an absent device leaves its number empty",
         {{uart(0), adapter("ttyUSB0", "a", "p1"), adapter("ttyUSB1", "b", "p2")},
          {uart(0), adapter("ttyUSB1", "b", "p2")}},
         "1=ttyS0 3=ttyUSB1 "},
        {"plugged in again elsewhere under another path",
         {{adapter("ttyUSB0", "a", "p1"), adapter("ttyUSB1", "b", "p2")},
          {adapter("ttyUSB1", "b", "p2")},
          {adapter("ttyUSB1", "b", "p2"), adapter("ttyUSB2", "a", "p9")}},
         "1=ttyUSB2 2=ttyUSB1 "},
        {"two that swap their paths",
         {{adapter("ttyUSB0", "a", "p1"), adapter("ttyUSB1", "b", "p2")},
          {},
          {adapter("ttyUSB0", "b", "p2"), adapter("ttyUSB1", "a", "p1")}},
         "1=ttyUSB1 2=ttyUSB0 "},
        {"a stranger on the same path gets a number of its own",
         {{adapter("ttyUSB0", "a", "p1")}, {adapter("ttyUSB0", "z", "p1")}},
         "2=ttyUSB0 "},
        {"a late one goes to the end, whatever its kind",
         {{adapter("ttyUSB0", "a", "p1")}, {uart(0), adapter("ttyUSB0", "a", "p1")}},
         "1=ttyUSB0 2=ttyS0 "},
        {"without serial number the plug tells",
         {{adapter("ttyUSB0", "", "p1"), adapter("ttyUSB1", "", "p2")}, {adapter("ttyUSB0", "", "p2")}},
         "2=ttyUSB0 "},
        {"twins are told by their plugs, also while one is away",
         {{adapter("ttyUSB0", "x", "p1"), adapter("ttyUSB1", "x", "p2")},
          {adapter("ttyUSB0", "x", "p2")},
          {adapter("ttyUSB0", "x", "p2"), adapter("ttyUSB1", "x", "p1")}},
         "1=ttyUSB1 2=ttyUSB0 "},
        {"a twin that comes later does not take over",
         {{adapter("ttyUSB0", "x", "p1")},
          {adapter("ttyUSB0", "x", "p1"), adapter("ttyUSB1", "x", "p2")},
          {adapter("ttyUSB0", "x", "p2")}},
         "2=ttyUSB0 "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        SerialPortList list;
        for (const Devices& present : c.updates)
            list.update(present);
        EXPECT_EQ(ports(list), c.ports);
    }
}

TEST(SerialPortListTest, RefusalsSayWhatToDo) {
    const SerialRefusal refusal{"/dev/ttyUSB0", true, true, "dialout", "kim", "Permission denied"};
    SerialRefusal absent = refusal;
    absent.exists = false;
    SerialRefusal denied = refusal;
    denied.permitted = false;
    SerialRefusal unknownOwner = denied;
    unknownOwner.group.clear();
    const struct {
        SerialRefusal refusal;
        const char* text;
    } cases[] = {
        {refusal, "/dev/ttyUSB0 is in use by another program."},
        {absent, "/dev/ttyUSB0 is not there: is the adapter plugged in?"},
        {denied, "/dev/ttyUSB0 belongs to group dialout: sudo usermod -a -G dialout kim, then log in again."},
        {unknownOwner, "/dev/ttyUSB0: Permission denied"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(refusalText(c.refusal), c.text);
}

} // namespace
