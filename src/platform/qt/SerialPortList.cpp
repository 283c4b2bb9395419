#include "platform/qt/SerialPortList.h"

#include "platform/Texts.h"
#include "util/Paths.h"
#include "util/Text.h"

#include <QFile>
#include <QFileInfo>
#include <QSerialPortInfo>

#include <algorithm>
#include <tuple>

namespace drx9 {

namespace {

std::string nameOf(const std::string& path) {
    return path.substr(path.find_last_of('/') + 1);
}

/// Sorting key: kind, length of the name (so that 10 comes after 9), name.
std::tuple<int, std::size_t, std::string> orderOf(const SerialDevice& device) {
    const std::string name = nameOf(device.path);
    int kind = 3;
    if (name.starts_with("ttyUSB")) {
        kind = 1;
    } else if (name.starts_with("ttyACM")) {
        kind = 2;
    } else if (name.starts_with("ttyS")) {
        kind = 0;
    }
    return {kind, name.size(), name};
}

/// A node of Linux that stands for a UART which the machine does not have.
bool isEmptySlot(const QString& name) {
    QFile type("/sys/class/tty/" + name + "/type");
    return name.startsWith("ttyS") && type.open(QIODevice::ReadOnly) && type.readAll().trimmed() == "0";
}

std::string claimOf(const SerialDevice& device) {
    return device.model + "/" + device.serial;
}

} // namespace

void SerialPortList::update(std::vector<SerialDevice> present) {
    std::sort(present.begin(), present.end(),
              [](const SerialDevice& a, const SerialDevice& b) { return orderOf(a) < orderOf(b); });
    markTwins(present);
    for (Slot& slot : slots_) {
        slot.present = false;
    }
    for (const SerialDevice& device : present) {
        Slot& slot = slotOf(device);
        slot.device = device;
        slot.present = true;
    }
}

void SerialPortList::markTwins(const std::vector<SerialDevice>& present) {
    for (const SerialDevice& device : present) {
        const auto same = [&](const SerialDevice& other) { return claimOf(other) == claimOf(device); };
        if (std::count_if(present.begin(), present.end(), same) > 1) {
            twins_.push_back(claimOf(device));
        }
    }
    std::sort(twins_.begin(), twins_.end());
    twins_.erase(std::unique(twins_.begin(), twins_.end()), twins_.end());
    for (Slot& slot : slots_) {
        slot.twin = std::binary_search(twins_.begin(), twins_.end(), claimOf(slot.device));
    }
}

SerialPortList::Slot& SerialPortList::slotOf(const SerialDevice& device) {
    const auto known = std::find_if(slots_.begin(), slots_.end(), [&](const Slot& slot) {
        if (slot.present || claimOf(slot.device) != claimOf(device)) {
            return false;
        }
        return (!device.serial.empty() && !slot.twin) || slot.device.place == device.place;
    });
    if (known != slots_.end()) {
        return *known;
    }
    const bool twin = std::binary_search(twins_.begin(), twins_.end(), claimOf(device));
    return slots_.emplace_back(Slot{device, true, twin});
}

std::string SerialPortList::device(int port) const {
    if (port < 1 || port > static_cast<int>(slots_.size())) {
        return {};
    }
    const Slot& slot = slots_[static_cast<std::size_t>(port) - 1];
    return slot.present ? slot.device.path : std::string();
}

std::vector<SerialDevice> presentSerialDevices() {
    std::vector<SerialDevice> devices;
    for (const QSerialPortInfo& info : QSerialPortInfo::availablePorts()) {
        if (isEmptySlot(info.portName())) {
            continue;
        }
        // On macOS each device has two names; "tty." waits for a carrier that nobody raises.
        if (info.portName().startsWith("tty.")) {
            continue;
        }
        SerialDevice device;
#ifdef Q_OS_WIN
        device.path = info.portName().toStdString(); // "COM12", as people know it
#else
        device.path = info.systemLocation().toStdString();
#endif
        if (info.hasVendorIdentifier()) {
            device.model = QString::asprintf("%04x:%04x", info.vendorIdentifier(), info.productIdentifier())
                               .toStdString();
        }
        device.serial = info.serialNumber().toStdString();
        // The link into the device tree ends in the port's own name, which changes; its folder is the plug.
        const QString node = QFileInfo("/sys/class/tty/" + info.portName() + "/device").canonicalFilePath();
        device.place =
            (node.isEmpty() || device.model.empty()) ? device.path : QFileInfo(node).path().toStdString();
        devices.push_back(device);
    }
    return devices;
}

std::string mappingText(const std::vector<std::string>& outside, const std::string& folder, int port) {
    if (outside.empty()) {
        return {};
    }
    const std::string& device = outside.front();
    if (folder.empty()) {
        return filled(platformText::kMapInManager, {device});
    }
    return filled(platformText::kMapByLink, {device, device, joinPath(folder, "COM" + std::to_string(port))});
}

std::string refusalText(const SerialRefusal& refusal) {
    if (!refusal.exists) {
        return filled(platformText::kDeviceGone, {refusal.device});
    }
    if (refusal.permitted) {
        return filled(platformText::kDeviceInUse, {refusal.device});
    }
    if (refusal.group.empty() || refusal.user.empty()) {
        return refusal.device + ": " + refusal.error;
    }
    return filled(platformText::kNoPermission, {refusal.device, refusal.group, refusal.group, refusal.user});
}

} // namespace drx9
