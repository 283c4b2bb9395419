#pragma once

#include <string>
#include <vector>

namespace drx9 {

/// A serial device that is present.
struct SerialDevice {
    std::string path;   ///< "/dev/ttyUSB0"
    std::string model;  ///< USB vendor and product, "0403:6001"; empty for what is not plugged in over USB
    std::string serial; ///< its serial number, empty where it has none
    std::string place;  ///< where it is plugged in, whatever its present path; the path where that is unknown
};

/// Which device is COM1, COM2, ... where the system has no such names: serial ports of the machine first,
/// then USB adapters, then USB modems, in the order of their numbers at the first update. A device keeps its
/// number for the life of the list, also unplugged and plugged in again under another path; a device not seen
/// before gets the next number. An adapter is known by its model and serial number; one without serial
/// number, or one of two that claim the same, by the place it is plugged in.
class SerialPortList {
public:
    void update(std::vector<SerialDevice> present);
    /// Path of the device of a port from 1 on; empty when there is none or it is not plugged in now.
    [[nodiscard]] std::string device(int port) const;

private:
    struct Slot {
        SerialDevice device;
        bool present = false;
        bool twin = false; ///< another one with the same model and serial number has been seen
    };

    void markTwins(const std::vector<SerialDevice>& present);
    Slot& slotOf(const SerialDevice& device);

    std::vector<Slot> slots_;
    std::vector<std::string> twins_; ///< model and serial number of devices that are not alone
};

/// The system's serial devices now.
std::vector<SerialDevice> presentSerialDevices();

/// What is known of a device that would not open.
struct SerialRefusal {
    std::string device;
    bool exists = true;
    bool permitted = true; ///< this user may read and write it
    std::string group;     ///< that the device belongs to
    std::string user;
    std::string error; ///< the system's own words
};

/// What to do where none of COM1 to COM9 leads to the devices `outside`: a symbolic link COM`port` in
/// `folder`, or, where that is empty (Windows), another number. Empty when there are none.
std::string mappingText(const std::vector<std::string>& outside, const std::string& folder, int port);

/// Why it would not open and what to do about it, for people.
std::string refusalText(const SerialRefusal& refusal);

} // namespace drx9
