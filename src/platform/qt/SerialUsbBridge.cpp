#include "platform/qt/SerialUsbBridge.h"

#include "platform/qt/QtSerialControl.h"

#include <QSerialPortInfo>

namespace drx9 {

namespace {

constexpr quint16 kProduct = 0x83F5;
constexpr char kProductText[] = "83F5";

} // namespace

std::vector<BridgePort> presentBridgePorts() {
    std::vector<BridgePort> bridges;
    for (const QSerialPortInfo& info : QSerialPortInfo::availablePorts()) {
        if (info.productIdentifier() == kProduct && !info.portName().startsWith("tty.")) {
            bridges.push_back({info.systemLocation().toStdString(), info.serialNumber().toStdString()});
        }
    }
    return bridges;
}

SerialUsbBridge::SerialUsbBridge(Lister lister)
    : lister_(std::move(lister)) {}

SerialUsbBridge::~SerialUsbBridge() = default;

QSerialPort* SerialUsbBridge::portOf(std::int32_t handle) const {
    const auto found = open_.find(handle);
    return found == open_.end() || found->second->gone ? nullptr : found->second->port.get();
}

int SerialUsbBridge::SI_GetNumDevices(std::uint32_t& count) {
    devices_ = lister_();
    reason_.clear();
    count = static_cast<std::uint32_t>(devices_.size());
    return devices_.empty() ? kNotFound : kSuccess;
}

int SerialUsbBridge::SI_GetProductString(std::uint32_t index, std::string& text, int option) {
    text.clear();
    if (index >= devices_.size()) {
        return kNotFound;
    }
    if (option != 0 && option != 4) {
        return kInvalidParameter;
    }
    text = option == 4 ? std::string(kProductText) : devices_[index].serialNumber.substr(0, 255);
    return kSuccess;
}

int SerialUsbBridge::SI_Open(std::uint32_t index, std::int32_t& handle) {
    handle = 0;
    if (index >= devices_.size()) {
        return kNotFound;
    }
    auto open = std::make_unique<Open>();
    open->port = std::make_unique<QSerialPort>(QString::fromStdString(devices_[index].device));
    QSerialPort* port = open->port.get();
    if (!applySettings(*port, "115200,N,8,1") || !port->open(QIODevice::ReadWrite)) {
        reason_ = whyNotOpen(*port, devices_[index].device);
        return kIoFailed;
    }
    // A device that goes is closed from the event loop, outside its own signal, or its notifier would fire
    // forever.
    QObject::connect(port, &QSerialPort::errorOccurred, port, [state = open.get(), port](auto error) {
        if (!isFault(error)) {
            return;
        }
        state->gone = true;
        QMetaObject::invokeMethod(
            port, [port] { port->close(); }, Qt::QueuedConnection);
    });
    handle = ++lastHandle_;
    open_[handle] = std::move(open);
    return kSuccess;
}

int SerialUsbBridge::SI_SetBaudRate(std::int32_t handle, std::uint32_t baud) {
    QSerialPort* port = portOf(handle);
    if (port == nullptr) {
        return kInvalidHandle;
    }
    return baud > 0 && baud <= 3000000 && port->setBaudRate(static_cast<qint32>(baud)) ? kSuccess
                                                                                       : kInvalidBaud;
}

int SerialUsbBridge::SI_Close(std::int32_t handle) {
    return open_.erase(handle) == 0 ? kInvalidHandle : kSuccess;
}

/// What waits in the port's own buffer is read away: only reading makes a port go on that stopped at a full
/// one.
int SerialUsbBridge::SI_FlushBuffers(std::int32_t handle, std::uint8_t transmit, std::uint8_t receive) {
    QSerialPort* port = portOf(handle);
    if (port == nullptr) {
        return kInvalidHandle;
    }
    if (receive != 0) {
        port->readAll();
    }
    QSerialPort::Directions directions;
    directions.setFlag(QSerialPort::Output, transmit != 0);
    directions.setFlag(QSerialPort::Input, receive != 0);
    return !directions || port->clear(directions) ? kSuccess : kIoFailed;
}

int SerialUsbBridge::SI_Write(std::int32_t handle, std::string_view bytes, std::uint32_t& written) {
    written = 0;
    QSerialPort* port = portOf(handle);
    if (port == nullptr) {
        return kInvalidHandle;
    }
    const qint64 count = port->write(bytes.data(), static_cast<qint64>(bytes.size()));
    port->flush();
    port->flush();
    if (count != static_cast<qint64>(bytes.size()) || portOf(handle) == nullptr) {
        return kWriteError;
    }
    written = static_cast<std::uint32_t>(count);
    return kSuccess;
}

int SerialUsbBridge::SI_Read(std::int32_t handle, std::uint8_t* buffer, std::uint32_t count,
                             std::uint32_t& read) {
    read = 0;
    QSerialPort* port = portOf(handle);
    if (port == nullptr) {
        return kInvalidHandle;
    }
    const qint64 got = port->read(reinterpret_cast<char*>(buffer), static_cast<qint64>(count));
    if (got < 0) {
        return kReadError;
    }
    read = static_cast<std::uint32_t>(got);
    return kSuccess;
}

} // namespace drx9
