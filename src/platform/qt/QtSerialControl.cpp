#include "platform/qt/QtSerialControl.h"

#include "platform/Texts.h"
#include "util/Text.h"

#include <QDir>
#include <QFileInfo>
#include <QSerialPortInfo>
#include <QStringList>
#include <QTimer>

#include <algorithm>

namespace drx9 {

namespace {

constexpr std::size_t kInputBuffer = 2048;
constexpr int kFirstLook = 500;  // ms after the start, if nobody asks before
constexpr int kLookAgain = 1000; // ms

} // namespace

bool applySettings(QSerialPort& port, const std::string& settings) {
    const QStringList fields = QString::fromStdString(settings).toUpper().remove(' ').split(',');
    if (fields.size() != 4) {
        return false;
    }
    const QString parities = "NEOSM";
    const QSerialPort::Parity parity[] = {QSerialPort::NoParity, QSerialPort::EvenParity,
                                          QSerialPort::OddParity, QSerialPort::SpaceParity,
                                          QSerialPort::MarkParity};
    const qsizetype kind = fields[1].size() == 1 ? parities.indexOf(fields[1]) : -1;
    const int stop = fields[3] == "1" ? QSerialPort::OneStop : fields[3] == "2" ? QSerialPort::TwoStop : 0;
    const int data = fields[2].toInt();
    return kind >= 0 && stop != 0 && data >= 5 && data <= 8 && port.setBaudRate(fields[0].toInt()) &&
           port.setParity(parity[kind]) && port.setDataBits(static_cast<QSerialPort::DataBits>(data)) &&
           port.setStopBits(static_cast<QSerialPort::StopBits>(stop)) &&
           port.setFlowControl(QSerialPort::NoFlowControl);
}

/// Two names of one device give one text.
static std::string deviceBehind(const std::string& path) {
    const QString node = QFileInfo(QString::fromStdString(path)).canonicalFilePath();
    return node.isEmpty() ? path : node.toStdString();
}

bool isFault(QSerialPort::SerialPortError error) {
    switch (error) {
    case QSerialPort::NoError:
    case QSerialPort::NotOpenError:
    case QSerialPort::TimeoutError:
    case QSerialPort::UnknownError:
    case QSerialPort::UnsupportedOperationError:
        return false;
    default:
        return true;
    }
}

std::string whyNotOpen(const QSerialPort& port, const std::string& device) {
    const QFileInfo node(QString::fromStdString(device));
    if (port.error() != QSerialPort::PermissionError && port.error() != QSerialPort::DeviceNotFoundError) {
        return device + ": " + port.errorString().toStdString();
    }
    const bool windows = !node.isAbsolute(); // "COM3" is no path, and denied there means in use
    return refusalText({.device = device,
                        .exists = port.error() != QSerialPort::DeviceNotFoundError,
                        .permitted = windows || (node.isReadable() && node.isWritable()),
                        .group = node.group().toStdString(),
                        .user = QFileInfo(QDir::homePath()).owner().toStdString(),
                        .error = port.errorString().toStdString()});
}

QtSerialControl::QtSerialControl(EventPump& pump, Paths paths)
    : pump_(pump)
    , paths_(std::move(paths)) {
#ifndef Q_OS_WIN
    // Looking takes some ten milliseconds: not before the first window is painted.
    QTimer::singleShot(kFirstLook, this, [this] {
        if (!lookedAt_.isValid()) {
            lookForDevices();
        }
    });
#endif
}

QtSerialControl::~QtSerialControl() {
    if (port_) {
        port_->disconnect(this);
    }
}

std::string QtSerialControl::deviceName(int port) const {
    const std::string path = pathOf(port);
#ifdef Q_OS_WIN
    const QString name = QString::fromStdString(path);
    const QSerialPortInfo info(name);
    return info.isNull() ? std::string() : (name + QLatin1String(", ") + info.description()).toStdString();
#else
    return QFileInfo::exists(QString::fromStdString(path)) ? path : std::string();
#endif
}

/// The device to open, whether it is there or not; empty where none is known.
std::string QtSerialControl::pathOf(int port) const {
    const std::string name = "COM" + std::to_string(port);
#ifdef Q_OS_WIN
    return name;
#else
    for (const std::string& folder : {paths_.dataFolder, paths_.programFolder}) {
        const QFileInfo link(QString::fromStdString(joinPath(folder, name)));
        if (link.isSymLink()) {
            return link.symLinkTarget().toStdString();
        }
    }
    lookForDevices();
    return list_.device(port);
#endif
}

/// The reason, and what to do where a device is present that none of COM1 to COM9 leads to.
std::string QtSerialControl::withHint(const std::string& reason) const {
    std::vector<std::string> reached;
    for (int port = 1; port <= kPorts; ++port) {
        reached.push_back(deviceBehind(pathOf(port)));
    }
    std::vector<std::string> outside;
    for (const SerialDevice& device : presentSerialDevices()) {
        if (std::find(reached.begin(), reached.end(), deviceBehind(device.path)) == reached.end()) {
            outside.push_back(device.path);
        }
    }
#ifdef Q_OS_WIN
    const std::string hint = mappingText(outside, {}, number_);
#else
    const std::string hint = mappingText(outside, paths_.dataFolder, number_);
#endif
    return hint.empty() ? reason : reason + ' ' + hint;
}

void QtSerialControl::lookForDevices() const {
    if (lookedAt_.isValid() && lookedAt_.elapsed() < kLookAgain) {
        return;
    }
    list_.update(presentSerialDevices());
    lookedAt_.start();
}

std::string QtSerialControl::open() {
    close();
    const std::string device = pathOf(number_);
    if (device.empty()) {
        return withHint(filled(platformText::kNoSerialDevice, {std::to_string(number_)}));
    }
    auto port = std::make_unique<QSerialPort>(QString::fromStdString(device));
    if (!applySettings(*port, settings_)) {
        return filled(platformText::kNoSettings, {settings_});
    }
    port->setReadBufferSize(kInputBuffer);
    if (!port->open(QIODevice::ReadWrite)) {
        return withHint(whyNotOpen(*port, device));
    }
    // A pseudo-terminal has no such lines; what it answers is of no account.
    port->setDataTerminalReady(false);
    port->setRequestToSend(false);
    port->clearError();
    QObject::connect(port.get(), &QSerialPort::readyRead, this, &QtSerialControl::receive);
    QObject::connect(port.get(), &QSerialPort::errorOccurred, this, &QtSerialControl::errorOccurred);
    port_ = std::move(port);
    return {};
}

void QtSerialControl::close() {
    drop();
    faulted_ = false;
    received_.clear();
    taken_ = 0;
}

/// Leaves in the port what the input buffer does not hold.
void QtSerialControl::receive() {
    char chunk[kInputBuffer];
    const std::size_t room = kInputBuffer - std::min(kInputBuffer, received_.size() - taken_);
    const qint64 count = room == 0 ? 0 : port_->read(chunk, static_cast<qint64>(room));
    if (count > 0) {
        received_.erase(0, taken_);
        taken_ = 0;
        received_.append(chunk, static_cast<std::size_t>(count));
    }
    pump_.wake();
}

/// Runs inside a signal of the port, which must outlive it: it is closed from the event loop.
void QtSerialControl::errorOccurred(QSerialPort::SerialPortError error) {
    if (faulted_ || !isFault(error)) {
        return;
    }
    faulted_ = true;
    received_.clear();
    taken_ = 0;
    const auto dropIt = [this, port = port_.get()] {
        if (port == port_.get()) { // not opened again meanwhile
            drop();
        }
    };
    QMetaObject::invokeMethod(port_.get(), dropIt, Qt::QueuedConnection);
    pump_.wake();
}

void QtSerialControl::drop() {
    if (!port_) {
        return;
    }
    port_->disconnect(this);
    port_->close();
    port_.release()->deleteLater();
}

std::size_t QtSerialControl::inBufferCount() {
    if (isOpen() && received_.size() == taken_ && port_->bytesAvailable() > 0) {
        receive();
    }
    return isOpen() ? received_.size() - taken_ : 0;
}

/// Reading is what makes a port go on that stopped because its buffer was full; clear() alone would not.
void QtSerialControl::discardInput() {
    if (!isOpen()) {
        return;
    }
    received_.clear();
    taken_ = 0;
    if (port_->bytesAvailable() > 0) {
        port_->readAll();
    }
    port_->clear(QSerialPort::Input);
}

std::uint8_t QtSerialControl::input() {
    return inBufferCount() == 0 ? std::uint8_t{0} : static_cast<std::uint8_t>(received_[taken_++]);
}

/// The first flush() sends; the second one sees that all is gone and so spares a turn of the event loop.
void QtSerialControl::output(std::string_view bytes) {
    if (!isOpen()) {
        return;
    }
    port_->write(bytes.data(), static_cast<qint64>(bytes.size()));
    port_->flush();
    port_->flush();
}

} // namespace drx9
