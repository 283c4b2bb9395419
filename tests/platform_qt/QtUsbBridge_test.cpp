#ifndef _WIN32

#include "platform/qt/QtUsbBridge.h"

#include "platform/qt/LibraryUsbBridge.h"
#include "platform/qt/SerialUsbBridge.h"
#include "platform_qt/Pty.h"
#include "platform_qt/Waiting.h"

#include <QFileInfo>
#include <QTcpServer>
#include <QTcpSocket>

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

using namespace drx9;
using namespace drx9::testing_qt;

namespace {

class QtUsbBridgeTest : public WaitingTest {
protected:
    /// Until the condition holds, looking again every 2 ms as a polling link does.
    bool poll(const std::function<bool()>& condition) {
        const double deadline = now() + 20;
        while (!condition() && now() < deadline) {
            pump.sleepUntil(now() + 0.002);
        }
        return condition();
    }
    void expectRead(UsbBridge& bridge, std::int32_t handle, const std::string& expected) {
        std::string bytes;
        EXPECT_TRUE(poll([&] {
            std::uint8_t buffer[252];
            std::uint32_t read = 0;
            EXPECT_EQ(bridge.SI_Read(handle, buffer, sizeof buffer, read), 0);
            bytes.append(reinterpret_cast<char*>(buffer), read);
            return bytes.size() >= expected.size();
        }));
        EXPECT_EQ(bytes, expected);
    }

    /// A bridge with one device, serial number SN42, through its whole life. The instrument at its far end
    /// says what `send` is told, and `receive` is what it got.
    void check(UsbBridge& bridge, const std::function<void(const std::string&)>& send,
               const std::function<std::string()>& receive) {
        std::uint32_t count = 0;
        std::string product;
        std::string serial;
        std::int32_t handle = 7;
        ASSERT_EQ(bridge.SI_GetNumDevices(count), 0);
        ASSERT_EQ(count, 1u);
        EXPECT_EQ(bridge.SI_GetProductString(0, product, 4), 0);
        EXPECT_EQ(bridge.SI_GetProductString(0, serial, 0), 0);
        EXPECT_EQ(product + serial, "83F5SN42");
        EXPECT_NE(bridge.SI_Open(1, handle), 0);
        EXPECT_EQ(handle, 0);
        ASSERT_EQ(bridge.SI_Open(0, handle), 0);
        ASSERT_GT(handle, 0);
        EXPECT_EQ(bridge.SI_SetBaudRate(handle, 115200), 0);

        const std::string packet("!\x25P1\0\xFF", 6);
        EXPECT_EQ(bridge.SI_Write(handle, packet, count), 0);
        EXPECT_EQ(count, packet.size());
        std::string got;
        EXPECT_TRUE(poll([&] { return (got += receive()).size() >= packet.size(); }));
        EXPECT_EQ(got, packet);
        for (const char* reply : {"!*A012.34", "stale"}) {
            send(reply);
            expectRead(bridge, handle, reply);
        }
        EXPECT_EQ(bridge.SI_FlushBuffers(handle, 1, 1), 0);
        expectRead(bridge, handle, ""); // returns at once

        EXPECT_EQ(bridge.SI_Close(handle), 0);
        std::uint8_t byte = 0;
        EXPECT_NE(bridge.SI_Close(handle), 0);
        EXPECT_NE(bridge.SI_SetBaudRate(handle, 115200), 0);
        EXPECT_NE(bridge.SI_FlushBuffers(handle, 1, 1), 0);
        EXPECT_NE(bridge.SI_Write(handle, "P1", count), 0);
        EXPECT_NE(bridge.SI_Read(handle, &byte, 1, count), 0);
    }
};

TEST_F(QtUsbBridgeTest, BridgeThatShowsAsASerialPort) {
    Pty pty;
    SerialUsbBridge bridge([&] { return std::vector<BridgePort>{{pty.path, "SN42"}}; });
    check(
        bridge, [&](const std::string& bytes) { pty.write(bytes); }, [&] { return pty.read(); });

    std::int32_t handle = 0;
    std::uint32_t written = 0;
    ASSERT_EQ(bridge.SI_Open(0, handle), 0);
    EXPECT_FALSE(bridge.isGone(handle));
    pty.vanish();
    EXPECT_TRUE(poll([&] { return bridge.SI_Write(handle, "P1", written) != 0; }));
    EXPECT_TRUE(bridge.isGone(handle));
    EXPECT_LT(cpuOfSleeping(0.1), 0.05) << "something is left that fires";
    EXPECT_EQ(bridge.SI_Close(handle), 0);
    EXPECT_NE(bridge.SI_Open(0, handle), 0);
    EXPECT_EQ(handle, 0);
    EXPECT_EQ(bridge.reason(), pty.path + " is not there: is the adapter plugged in?");
}

TEST_F(QtUsbBridgeTest, LibraryInTheProgramsFolder) {
    ASSERT_TRUE(QFileInfo::exists(DRX9_BIN_DIR "/libSiUSBXp.so")) << "the stand-in is built along";
    QTcpServer server;
    ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    qputenv("DRX9SIM_USB", QByteArray("127.0.0.1:") + QByteArray::number(server.serverPort()) + ",SN42");
    QtUsbBridge bridge(DRX9_BIN_DIR);
    EXPECT_NE(bridge.library(), "");
    QTcpSocket* end = nullptr;
    const auto instrument = [&]() -> QTcpSocket& {
        if (end == nullptr && (server.hasPendingConnections() || server.waitForNewConnection(1000))) {
            end = server.nextPendingConnection();
        }
        if (end == nullptr) {
            throw std::runtime_error("the library has not connected");
        }
        return *end;
    };
    check(
        bridge, [&](const std::string& bytes) { instrument().write(bytes.c_str()); },
        [&] { return instrument().readAll().toStdString(); });
    qunsetenv("DRX9SIM_USB");
    for (const char* path : {DRX9_SOURCE_DIR "/CMakeLists.txt", "/nowhere/libSiUSBXp.so", "libm.so.6"}) {
        EXPECT_EQ(LibraryUsbBridge::load(path), nullptr) << path;
    }
}

} // namespace

#endif
