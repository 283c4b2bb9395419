#include "platform/qt/QtSocketControl.h"

#include "platform/Texts.h"
#include "util/Text.h"

#include <QNetworkProxy>

#include <utility>

namespace drx9 {

namespace {

constexpr int kClosed = 0;
constexpr int kConnecting = 6;
constexpr int kFailed = 9;
constexpr std::size_t kMostWaiting = 65536; ///< bytes taken from the system and not fetched

} // namespace

QtSocketControl::QtSocketControl(EventPump& pump)
    : pump_(pump) {}

QtSocketControl::~QtSocketControl() {
    if (socket_) {
        socket_->disconnect(this);
    }
}

void QtSocketControl::setRemote(const std::string& host, int port) {
    host_ = QString::fromStdString(host).trimmed();
    port_ = port;
}

void QtSocketControl::connect() {
    close();
    if (port_ < 1 || port_ > 65535 || host_.isEmpty()) {
        state_ = kFailed;
        reason_ = filled(platformText::kNoAddress, {host_.toStdString(), std::to_string(port_)});
        return;
    }
    state_ = kConnecting;
    socket_ = std::make_unique<QTcpSocket>();
    // The instrument is in the local network: a proxy for the web is no way to it.
    socket_->setProxy(QNetworkProxy::NoProxy);
    QObject::connect(socket_.get(), &QTcpSocket::connected, this, &QtSocketControl::connected);
    QObject::connect(socket_.get(), &QTcpSocket::readyRead, this, [this] {
        receive();
        pump_.wake();
    });
    QObject::connect(socket_.get(), &QTcpSocket::errorOccurred, this,
                     [this] { failed(socket_->errorString().toStdString()); });
    QObject::connect(socket_.get(), &QTcpSocket::disconnected, this,
                     [this] { failed(platformText::kConnectionClosed); });
    // Unbuffered, a packet goes out and a reply comes in by one system call each.
    socket_->connectToHost(host_, static_cast<quint16>(port_), QIODevice::ReadWrite | QIODevice::Unbuffered);
}

void QtSocketControl::connected() {
    state_ = kConnected;
    // A packet must leave at once, whatever is still unacknowledged.
    socket_->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    socket_->setSocketOption(QAbstractSocket::KeepAliveOption, 1);
    pump_.wake();
}

/// Runs inside a signal of the socket, which must outlive it: the socket itself is dropped from the event
/// loop.
void QtSocketControl::failed(const std::string& reason) {
    if (state_ == kFailed) {
        return;
    }
    state_ = kFailed;
    reason_ = reason;
    const auto dropIt = [this, socket = socket_.get()] {
        if (socket == socket_.get()) { // no new connect() meanwhile
            drop();
        }
    };
    QMetaObject::invokeMethod(socket_.get(), dropIt, Qt::QueuedConnection);
    pump_.wake();
}

void QtSocketControl::drop() {
    if (!socket_) {
        return;
    }
    socket_->disconnect(this);
    socket_->abort();
    socket_.release()->deleteLater();
}

int QtSocketControl::state() const {
    return state_;
}

/// Takes over what has arrived, so that what came before a failure can still be fetched after it. Past the
/// limit the rest is left to the peer's flow control: the socket tells nothing new until it is read again.
void QtSocketControl::receive() {
    char chunk[512];
    qint64 count = sizeof chunk;
    while (count == sizeof chunk && received_.size() < kMostWaiting) {
        count = socket_->read(chunk, sizeof chunk);
        if (count > 0) {
            received_.append(chunk, static_cast<std::size_t>(count));
        }
    }
    if (count < 0) {
        failed(socket_->errorString().toStdString());
    }
}

void QtSocketControl::sendData(std::string_view bytes) {
    if (state_ != kConnected) {
        return;
    }
    justSent_ = true;
    if (socket_->write(bytes.data(), static_cast<qint64>(bytes.size())) < 0) {
        failed(socket_->errorString().toStdString());
    }
}

/// Asks the system for what the event loop has not told yet: a late reply that is to be dropped may be there.
/// Not right after a packet, when nothing can have come.
std::size_t QtSocketControl::bytesReceived() {
    if (!std::exchange(justSent_, false) && received_.empty() && state_ == kConnected) {
        receive();
    }
    return received_.size();
}

std::string QtSocketControl::getData() {
    std::string bytes = std::exchange(received_, {});
    if (bytes.size() >= kMostWaiting && state_ == kConnected) {
        receive();
        pump_.wake(); // no event of the socket will tell of these
    }
    return bytes;
}

void QtSocketControl::close() {
    drop();
    state_ = kClosed;
    received_.clear();
    justSent_ = false;
    reason_.clear();
}

} // namespace drx9
