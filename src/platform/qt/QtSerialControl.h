#pragma once

#include "platform/EventPump.h"
#include "platform/LinkPorts.h"
#include "platform/qt/SerialPortList.h"

#include <QElapsedTimer>
#include <QObject>
#include <QSerialPort>

#include "util/Paths.h"

#include <memory>
#include <string>

namespace drx9 {

/// The serial communications control over a QSerialPort. "COMn" is the port of that name on Windows;
/// elsewhere what the symbolic link COMn points to (in the data folder, then in the program's), else the n-th
/// device of a SerialPortList, whose order is fixed by the first look, half a second after this object is
/// made at the latest.
class QtSerialControl : public QObject, public SerialControl {
public:
    QtSerialControl(EventPump& pump, Paths paths);
    ~QtSerialControl() override;

    void setCommPort(int port) override { number_ = port; }
    void setSettings(const std::string& settings) override { settings_ = settings; }
    std::string open() override;
    void close() override;
    [[nodiscard]] bool isOpen() const override { return port_ != nullptr && !faulted_; }
    [[nodiscard]] std::size_t inBufferCount() override;
    void discardInput() override;
    std::uint8_t input() override;
    void output(std::string_view bytes) override;
    [[nodiscard]] std::string deviceName(int port) const override;

private:
    [[nodiscard]] std::string pathOf(int port) const;
    [[nodiscard]] std::string withHint(const std::string& reason) const;
    void lookForDevices() const;
    void receive();
    void errorOccurred(QSerialPort::SerialPortError error);
    void drop();

    EventPump& pump_;
    Paths paths_;
    mutable SerialPortList list_;    ///< brought up to date when it is asked, at most once a second
    mutable QElapsedTimer lookedAt_; ///< when that was
    int number_ = 1;
    std::string settings_ = "19200,N,8,1";
    std::unique_ptr<QSerialPort> port_; ///< null when closed; lives until the pump runs next after a fault
    bool faulted_ = false;
    std::string received_;  ///< arrived and not taken; at most the input buffer's size
    std::size_t taken_ = 0; ///< of received_
};

/// Sets baud rate, parity, data and stop bits of "19200,N,8,1"; false when the text is no such settings.
bool applySettings(QSerialPort& port, const std::string& settings);

/// True for what ends a port's life, as against a line option that the device does not have.
bool isFault(QSerialPort::SerialPortError error);

/// Why opening the port failed, for people.
std::string whyNotOpen(const QSerialPort& port, const std::string& device);

} // namespace drx9
