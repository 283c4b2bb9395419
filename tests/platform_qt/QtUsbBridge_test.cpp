#ifndef _WIN32

#include "platform/qt/QtUsbBridge.h"

#include "platform/qt/LibraryUsbBridge.h"
#include "platform/qt/QtClock.h"
#include "platform/qt/QtEventPump.h"
#include "platform/qt/SerialUsbBridge.h"
#include "platform_qt/Pty.h"
#include "platform_qt/Waiting.h"

#include <QFileInfo>
#include <QTcpServer>
#include <QTcpSocket>

#include <gtest/gtest.h>

#include <functional>

using namespace drx9;
using drx9::testing_qt::Pty;
using drx9::testing_qt::waitFor;

namespace {

/// One bridge seen from both sides, whichever way it is driven.
struct Bench {
    UsbBridge& bridge;
    std::function<void(const std::string&)> instrumentSends;
    std::function<std::string()> instrumentGets;
};

class QtUsbBridgeTest : public ::testing::Test {
protected:
    /// Reads until `count` bytes are there or 2 s have passed, as a polling link does.
    std::string readBytes(UsbBridge& bridge, std::int32_t handle, std::size_t count) {
        std::string bytes;
        const double deadline = clock.monotonic() + 2;
        while (bytes.size() < count && clock.monotonic() < deadline) {
            std::uint8_t buffer[252];
            std::uint32_t got = 0;
            if (bridge.SI_Read(handle, buffer, sizeof buffer, got) == 0)
                bytes.append(reinterpret_cast<char*>(buffer), got);
            pump.sleepUntil(clock.monotonic() + 0.002);
        }
        return bytes;
    }

    /// Until the condition holds, looking again every 2 ms.
    bool poll(const std::function<bool()>& condition) {
        const double deadline = clock.monotonic() + 2;
        while (!condition() && clock.monotonic() < deadline)
            pump.sleepUntil(clock.monotonic() + 0.002);
        return condition();
    }

    void checkBridge(const Bench& bench) {
        UsbBridge& bridge = bench.bridge;
        std::uint32_t count = 0;
        ASSERT_EQ(bridge.SI_GetNumDevices(count), 0);
        ASSERT_EQ(count, 1u);
        std::string text;
        EXPECT_EQ(bridge.SI_GetProductString(0, text, 4), 0);
        EXPECT_EQ(text, "83F5");
        EXPECT_EQ(bridge.SI_GetProductString(0, text, 0), 0);
        EXPECT_EQ(text, "SN42");
        EXPECT_NE(bridge.SI_GetProductString(1, text, 0), 0);

        std::int32_t handle = 7;
        EXPECT_NE(bridge.SI_Open(1, handle), 0);
        EXPECT_EQ(handle, 0);
        ASSERT_EQ(bridge.SI_Open(0, handle), 0);
        ASSERT_GT(handle, 0);
        EXPECT_EQ(bridge.SI_SetBaudRate(handle, 115200), 0);
        checkTraffic(bench, handle);
        checkClosed(bridge, handle);
    }

    void checkTraffic(const Bench& bench, std::int32_t handle) {
        std::uint32_t written = 0;
        const std::string packet("!\x25P1\0\xFF", 6);
        EXPECT_EQ(bench.bridge.SI_Write(handle, packet, written), 0);
        EXPECT_EQ(written, packet.size());
        std::string got;
        EXPECT_TRUE(poll([&] { return (got += bench.instrumentGets()).size() >= packet.size(); }));
        EXPECT_EQ(got, packet);
        bench.instrumentSends("!*A012.34");
        EXPECT_EQ(readBytes(bench.bridge, handle, 9), "!*A012.34");

        bench.instrumentSends("stale");
        std::uint8_t first = 0;
        std::uint32_t read = 0;
        EXPECT_TRUE(poll([&] { return bench.bridge.SI_Read(handle, &first, 1, read) == 0 && read == 1; }));
        EXPECT_EQ(bench.bridge.SI_FlushBuffers(handle, 1, 1), 0);
        bench.instrumentSends("fresh");
        EXPECT_EQ(readBytes(bench.bridge, handle, 5), "fresh");
        const double start = clock.monotonic();
        EXPECT_EQ(bench.bridge.SI_Read(handle, &first, 1, read), 0);
        EXPECT_EQ(read, 0u);
        EXPECT_LT(clock.monotonic() - start, 0.05) << "waits for bytes";
    }

    /// Every operation on a handle that is closed fails, and a new one never is an old one.
    void checkClosed(UsbBridge& bridge, std::int32_t old) {
        EXPECT_EQ(bridge.SI_Close(old), 0);
        std::uint32_t count = 0;
        std::uint8_t byte = 0;
        EXPECT_NE(bridge.SI_Close(old), 0);
        EXPECT_NE(bridge.SI_SetBaudRate(old, 115200), 0);
        EXPECT_NE(bridge.SI_FlushBuffers(old, 1, 1), 0);
        EXPECT_NE(bridge.SI_Write(old, "P1", count), 0);
        EXPECT_NE(bridge.SI_Read(old, &byte, 1, count), 0);
        std::int32_t handle = 0;
        ASSERT_EQ(bridge.SI_Open(0, handle), 0);
        EXPECT_NE(handle, old);
        EXPECT_EQ(bridge.SI_Close(handle), 0);
    }

    QtClock clock;
    QtEventPump pump{clock};
};

TEST_F(QtUsbBridgeTest, BridgeThatShowsAsASerialPort) {
    Pty pty;
    SerialUsbBridge bridge([&] { return std::vector<BridgePort>{{pty.path(), "SN42"}}; });
    checkBridge({bridge, [&](const std::string& bytes) { pty.write(bytes); }, [&] { return pty.read(); }});

    std::int32_t handle = 0;
    ASSERT_EQ(bridge.SI_Open(0, handle), 0);
    pty.vanish();
    std::uint32_t written = 0;
    EXPECT_TRUE(poll([&] { return bridge.SI_Write(handle, "P1", written) != 0; }));
    EXPECT_EQ(bridge.SI_Close(handle), 0);
    EXPECT_NE(bridge.SI_Open(0, handle), 0);
    EXPECT_EQ(handle, 0);
}

TEST_F(QtUsbBridgeTest, NoBridgeAtAll) {
    SerialUsbBridge bridge([] { return std::vector<BridgePort>(); });
    std::uint32_t count = 3;
    EXPECT_NE(bridge.SI_GetNumDevices(count), 0);
    EXPECT_EQ(count, 0u);
}

TEST_F(QtUsbBridgeTest, LibraryInTheProgramsFolder) {
    if (!QFileInfo::exists(DRX9_BIN_DIR "/libSiUSBXp.so"))
        GTEST_SKIP() << "the stand-in library is not built";
    QTcpServer server;
    ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    qputenv("DRX9SIM_USB", QByteArray("127.0.0.1:") + QByteArray::number(server.serverPort()) + ",SN42");
    QtUsbBridge bridge(DRX9_BIN_DIR);
    EXPECT_EQ(QFileInfo(QString::fromStdString(bridge.library())).fileName(), "libSiUSBXp.so");
    QTcpSocket* instrument = nullptr;
    const auto end = [&]() -> QTcpSocket* {
        if (instrument == nullptr && (server.hasPendingConnections() || server.waitForNewConnection(1000)))
            instrument = server.nextPendingConnection();
        return instrument;
    };
    const auto send = [&](const std::string& bytes) {
        end()->write(bytes.data(), static_cast<qint64>(bytes.size()));
        end()->waitForBytesWritten(1000);
    };
    checkBridge({bridge, send, [&] { return end()->readAll().toStdString(); }});
    qunsetenv("DRX9SIM_USB");
}

TEST_F(QtUsbBridgeTest, AFileThatIsNoSuchLibraryIsPassedOver) {
    EXPECT_EQ(LibraryUsbBridge::load(DRX9_SOURCE_DIR "/CMakeLists.txt"), nullptr);
    EXPECT_EQ(LibraryUsbBridge::load("/nowhere/libSiUSBXp.so"), nullptr);
    EXPECT_EQ(LibraryUsbBridge::load("libm.so.6"), nullptr) << "a library without the functions";
}

} // namespace

#endif
