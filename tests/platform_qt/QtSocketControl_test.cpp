#include "platform/qt/QtSocketControl.h"

#include "platform_qt/Waiting.h"

#include <QTcpServer>

#include <gtest/gtest.h>

using namespace drx9;
using namespace drx9::testing_qt;

namespace {

class QtSocketControlTest : public WaitingTest {
protected:
    void SetUp() override { ASSERT_TRUE(server.listen(QHostAddress::LocalHost)); }

    bool connected() const { return socket.state() == SocketControl::kConnected; }
    /// Connects to the server; the peer's end.
    QTcpSocket* connectPeer() {
        socket.setRemote("127.0.0.1", server.serverPort());
        socket.connect();
        EXPECT_TRUE(wait([&] { return connected() && server.hasPendingConnections(); })) << socket.reason();
        return server.nextPendingConnection();
    }
    void expectArrives(const std::string& bytes) {
        EXPECT_TRUE(wait([&] { return socket.bytesReceived() >= bytes.size(); }));
        EXPECT_EQ(socket.getData(), bytes);
        EXPECT_EQ(socket.bytesReceived(), 0u);
    }

    QTcpServer server;
    QtSocketControl socket{pump};
    const int closedPort = [] {
        QTcpServer other;
        other.listen(QHostAddress::LocalHost);
        return other.serverPort();
    }();
};

TEST_F(QtSocketControlTest, CarriesEveryByteBothWays) {
    QTcpSocket* peer = connectPeer();
    const std::string all = allBytes();
    socket.sendData(all);
    EXPECT_EQ(socket.bytesReceived(), 0u);
    ASSERT_TRUE(wait([&] { return peer->bytesAvailable() == 256; }));
    EXPECT_EQ(peer->readAll().toStdString(), all);
    peer->write(all.data(), 256);
    expectArrives(all);
    peer->write("late");
    peer->flush();
    EXPECT_EQ(socket.bytesReceived(), 4u) << "no event has told of it yet, and yet it must be dropped";
    expectArrives("late");
    peer->write("next");
    expectArrives("next");
}

TEST_F(QtSocketControlTest, SaysWhyItDoesNotConnect) {
    const std::tuple<std::string, int, const char*> cases[] = {
        {"127.0.0.1", closedPort, "refused"}, {"", 2101, "address"},         {"127.0.0.1", 0, "address"},
        {"127.0.0.1", 65536, "address"},      {"no such host", 2101, "not"},
    };
    for (const auto& [host, port, reason] : cases) {
        SCOPED_TRACE(host + ":" + std::to_string(port));
        socket.setRemote(host, port);
        socket.connect();
        EXPECT_TRUE(wait([&] { return !socket.reason().empty(); }));
        EXPECT_NE(socket.reason().find(reason), std::string::npos) << socket.reason();
        EXPECT_FALSE(connected());
        socket.sendData("lost");
        EXPECT_EQ(socket.bytesReceived(), 0u);
    }
    connectPeer(); // while the failed one has not been dropped yet
    wait([] { return false; }, 0.05);
    EXPECT_TRUE(connected()) << "the old one's end took the new one along";
    EXPECT_EQ(socket.reason(), "");
}

TEST_F(QtSocketControlTest, APeerThatGoesEndsTheConnectionAndWakesTheWait) {
    for (const bool reset : {false, true}) {
        SCOPED_TRACE(reset ? "reset" : "closed");
        QTcpSocket* peer = connectPeer();
        peer->write("last words");
        peer->flush();
        reset ? peer->abort() : peer->close();
        EXPECT_TRUE(wait([&] { return !connected(); }));
        EXPECT_FALSE(socket.reason().empty());
        EXPECT_TRUE(reset || socket.getData() == "last words") << "a reply that came before the end counts";
        EXPECT_LT(cpuOfSleeping(0.1), 0.05) << "something is left that fires";
    }
}

TEST_F(QtSocketControlTest, AFloodIsBoundedAndGoesOnWhenFetched) {
    connectPeer()->write(QByteArray(1'000'000, 'x'));
    std::size_t fetched = 0;
    const double start = now();
    EXPECT_TRUE(wait([&] {
        EXPECT_LT(socket.bytesReceived(), 70000u);
        if (socket.bytesReceived() > 60000 || fetched + socket.bytesReceived() == 1'000'000) {
            fetched += socket.getData().size();
        }
        return fetched == 1'000'000;
    })) << fetched;
    EXPECT_LT(now() - start, 20) << "slept with bytes waiting";
}

TEST_F(QtSocketControlTest, ANewConnectDropsTheOldOne) {
    QTcpSocket* first = connectPeer();
    first->write("of the old one");
    ASSERT_TRUE(wait([&] { return socket.bytesReceived() > 0; }));
    QTcpSocket* second = connectPeer();
    EXPECT_EQ(socket.bytesReceived(), 0u);
    EXPECT_TRUE(wait([&] { return first->state() == QAbstractSocket::UnconnectedState; }));
    EXPECT_TRUE(connected()) << "took the old one's end for its own";
    second->write("new");
    expectArrives("new");
    socket.close();
    EXPECT_FALSE(connected());
    EXPECT_TRUE(wait([&] { return second->state() == QAbstractSocket::UnconnectedState; }));
}

} // namespace
