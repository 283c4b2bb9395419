#include "platform/qt/QtSocketControl.h"

#include "platform/qt/QtClock.h"
#include "platform/qt/QtEventPump.h"
#include "platform_qt/Waiting.h"

#include <QTcpServer>

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>

using namespace drx9;
using drx9::testing_qt::waitFor;

namespace {

class QtSocketControlTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(server.listen(QHostAddress::LocalHost)); }

    template<class Condition>
    bool wait(Condition condition) {
        return waitFor(pump, clock, condition);
    }
    /// Connects to the server; the peer's end.
    QTcpSocket* connectPeer() {
        socket.setRemote("127.0.0.1", server.serverPort());
        socket.connect();
        EXPECT_TRUE(wait([&] { return socket.state() == SocketControl::kConnected; })) << socket.reason();
        EXPECT_TRUE(wait([&] { return server.hasPendingConnections(); }));
        return server.nextPendingConnection();
    }
    int freePort() {
        QTcpServer other;
        other.listen(QHostAddress::LocalHost);
        return other.serverPort();
    }

    QtClock clock;
    QtEventPump pump{clock};
    QTcpServer server;
    QtSocketControl socket{pump};
};

TEST_F(QtSocketControlTest, CarriesEveryByteBothWays) {
    QTcpSocket* peer = connectPeer();
    std::string all;
    for (int byte = 0; byte < 256; ++byte)
        all += static_cast<char>(byte);
    socket.sendData(all);
    ASSERT_TRUE(wait([&] { return peer->bytesAvailable() == 256; }));
    EXPECT_EQ(peer->readAll().toStdString(), all);

    peer->write(all.data(), 256);
    ASSERT_TRUE(wait([&] { return socket.bytesReceived() == 256; }));
    EXPECT_EQ(socket.getData(), all);
    EXPECT_EQ(socket.bytesReceived(), 0u);
    EXPECT_EQ(socket.getData(), "");
    // A chunk that arrives after a read is told again.
    peer->write("more");
    ASSERT_TRUE(wait([&] { return socket.bytesReceived() == 4; }));
    EXPECT_EQ(socket.getData(), "more");
}

TEST_F(QtSocketControlTest, SaysWhyItDoesNotConnect) {
    const struct {
        std::string host;
        int port;
        const char* reason;
    } cases[] = {
        {"127.0.0.1", freePort(), "refused"}, {"", 2101, "address"},         {"127.0.0.1", 0, "address"},
        {"127.0.0.1", 65536, "address"},      {"no such host", 2101, "not"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.host + ":" + std::to_string(c.port));
        const double start = clock.monotonic();
        socket.setRemote(c.host, c.port);
        socket.connect();
        EXPECT_LT(clock.monotonic() - start, 0.2) << "blocks";
        EXPECT_NE(socket.state(), SocketControl::kConnected);
        EXPECT_TRUE(wait([&] { return !socket.reason().empty(); }));
        EXPECT_NE(socket.reason().find(c.reason), std::string::npos) << socket.reason();
        EXPECT_NE(socket.state(), SocketControl::kConnected);
        socket.sendData("lost");
        EXPECT_EQ(socket.bytesReceived(), 0u);
        pump.processPending();
    }
}

TEST_F(QtSocketControlTest, APeerThatGoesEndsTheConnectionAndWakesTheWait) {
    for (const bool reset : {false, true}) {
        SCOPED_TRACE(reset ? "reset" : "closed");
        QTcpSocket* peer = connectPeer();
        peer->write("last words");
        peer->flush();
        if (reset)
            peer->abort();
        else
            peer->close();
        EXPECT_TRUE(wait([&] { return socket.state() != SocketControl::kConnected; }));
        EXPECT_FALSE(socket.reason().empty());
        if (!reset) {
            EXPECT_EQ(socket.getData(), "last words") << "a reply that came before the end counts";
        }
        // Nothing is left that fires.
        const std::clock_t cpu = std::clock();
        const double deadline = clock.monotonic() + 0.3;
        while (clock.monotonic() < deadline)
            pump.sleepUntil(deadline);
        EXPECT_LT(static_cast<double>(std::clock() - cpu) / CLOCKS_PER_SEC, 0.02);
    }
}

/// What has arrived while the event loop did not run can be dropped before the next packet.
TEST_F(QtSocketControlTest, SeesALateReplyThatNoEventHasToldYet) {
    QTcpSocket* peer = connectPeer();
    socket.sendData("P1");
    EXPECT_EQ(socket.bytesReceived(), 0u);
    peer->write("late");
    peer->flush();
    EXPECT_EQ(socket.bytesReceived(), 4u);
    EXPECT_EQ(socket.getData(), "late");
    peer->write("next");
    ASSERT_TRUE(wait([&] { return socket.bytesReceived() == 4; }));
    EXPECT_EQ(socket.getData(), "next");
}

TEST_F(QtSocketControlTest, AFloodIsBoundedAndGoesOnWhenFetched) {
    QTcpSocket* peer = connectPeer();
    const QByteArray flood(3'000'000, 'x');
    peer->write(flood);
    std::size_t fetched = 0;
    std::size_t most = 0;
    EXPECT_TRUE(wait([&] {
        most = std::max(most, socket.bytesReceived());
        if (socket.bytesReceived() > 60000 || fetched + socket.bytesReceived() >= 3'000'000)
            fetched += socket.getData().size();
        return fetched >= 3'000'000;
    })) << fetched;
    EXPECT_EQ(fetched, 3'000'000u);
    EXPECT_LT(most, 70000u);
}

TEST_F(QtSocketControlTest, ANewConnectDropsTheOldOne) {
    QTcpSocket* first = connectPeer();
    first->write("of the old one");
    ASSERT_TRUE(wait([&] { return socket.bytesReceived() > 0; }));
    QTcpSocket* second = connectPeer();
    EXPECT_EQ(socket.bytesReceived(), 0u);
    EXPECT_TRUE(wait([&] { return first->state() == QAbstractSocket::UnconnectedState; }));
    EXPECT_EQ(socket.state(), SocketControl::kConnected) << "took the old one's end for its own";
    second->write("new");
    ASSERT_TRUE(wait([&] { return socket.bytesReceived() == 3; }));
    EXPECT_EQ(socket.getData(), "new");
}

TEST_F(QtSocketControlTest, ReconnectsAtOnceAfterAFailureStillInHand) {
    socket.setRemote("127.0.0.1", freePort());
    socket.connect();
    ASSERT_TRUE(wait([&] { return !socket.reason().empty(); }));
    QTcpSocket* peer = connectPeer(); // before the queued drop of the failed one has run
    EXPECT_EQ(socket.reason(), "");
    for (int i = 0; i < 3; ++i)
        pump.processPending();
    EXPECT_EQ(socket.state(), SocketControl::kConnected);
    socket.close();
    EXPECT_NE(socket.state(), SocketControl::kConnected);
    EXPECT_TRUE(wait([&] { return peer->state() == QAbstractSocket::UnconnectedState; }));
}

} // namespace
