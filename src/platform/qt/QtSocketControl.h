#pragma once

#include "platform/EventPump.h"
#include "platform/LinkPorts.h"

#include <QObject>
#include <QTcpSocket>

#include <memory>
#include <string>

namespace drx9 {

/// The TCP socket control over a QTcpSocket. Each connect() makes a new socket, so that no late event of the
/// one before can be taken for its own.
class QtSocketControl : public QObject, public SocketControl {
public:
    explicit QtSocketControl(EventPump& pump);
    ~QtSocketControl() override;

    void setRemote(const std::string& host, int port) override;
    /// Looks the host up and connects without blocking; drops the connection before.
    void connect() override;
    /// 0 closed, 6 connecting, kConnected, 9 failed or ended by the peer.
    [[nodiscard]] int state() const override;
    void sendData(std::string_view bytes) override;
    [[nodiscard]] std::size_t bytesReceived() override;
    std::string getData() override;
    void close() override;
    [[nodiscard]] std::string reason() const override { return reason_; }

private:
    void connected();
    void receive();
    void failed(const std::string& reason);
    void drop();

    EventPump& pump_;
    QString host_;
    int port_ = 0;
    int state_ = 0;
    std::string reason_;
    std::string received_;  ///< arrived and not fetched
    bool justSent_ = false; ///< nobody has looked for bytes since the last packet went out
    /// Null when closed; lives until the pump runs next after a failure.
    std::unique_ptr<QTcpSocket> socket_;
};

} // namespace drx9
