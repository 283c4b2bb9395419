#ifndef _WIN32

#include "platform/qt/QtSerialControl.h"

#include "platform_qt/Pty.h"
#include "platform_qt/Waiting.h"

#include <gtest/gtest.h>

#include <algorithm>

#include <sys/ioctl.h>
#include <termios.h>

using namespace drx9;
using namespace drx9::testing_qt;

namespace {

class QtSerialControlTest : public WaitingTest {
protected:
    void expectArrives(const std::string& expected) {
        std::string bytes;
        EXPECT_TRUE(wait([&] {
            while (serial.inBufferCount() > 0 && bytes.size() < expected.size()) {
                bytes += static_cast<char>(serial.input());
            }
            return bytes.size() == expected.size();
        }));
        EXPECT_EQ(bytes, expected);
        EXPECT_EQ(serial.inBufferCount(), 0u);
    }

    Pty pty;
    QtSerialControl serial{pump, {pty.folder(), pty.folder()}};
};

TEST_F(QtSerialControlTest, CarriesEveryByteBothWays) {
    EXPECT_EQ(serial.deviceName(1), pty.path);
    ASSERT_EQ(serial.open(), "");
    const std::string all = allBytes();
    serial.output(all);
    EXPECT_EQ(pty.read(), all) << "goes out without a turn of the event loop";
    ASSERT_TRUE(pty.write(all));
    expectArrives(all); // raw: no line ends, no flow control
    EXPECT_EQ(pty.read(), "") << "echoed";
}

TEST_F(QtSerialControlTest, TakesSettingsOpensExclusivelyAndRefusesNonsense) {
    for (const char* refused : {"", "19200,N,8", "0,N,8,1", "19200,Q,8,1", "19200,N,9,1", "19200,N,8,3"}) {
        serial.setSettings(refused);
        EXPECT_NE(serial.open(), "") << refused;
        EXPECT_FALSE(serial.isOpen());
    }
    const std::pair<const char*, speed_t> taken[] = {
        {"19200,N,8,1", B19200}, {"9600,n,8,1", B9600}, {"115200,E,7,2", B115200}};
    for (const auto& [settings, baud] : taken) {
        SCOPED_TRACE(settings);
        serial.setSettings(settings);
        EXPECT_EQ(serial.open(), "");
        EXPECT_TRUE(serial.isOpen());
        termios line{};
        ::tcgetattr(pty.master, &line);
        EXPECT_EQ(::cfgetospeed(&line), baud);
        // The administrator may open it all the same: ask for the mark.
        const int other = ::open(pty.path.c_str(), O_RDWR | O_NOCTTY);
        int exclusive = 0;
        EXPECT_TRUE(other < 0 || (::ioctl(other, TIOCGEXCL, &exclusive) == 0 && exclusive != 0));
        ::close(other);
    }
}

TEST_F(QtSerialControlTest, DiscardsWhatWaitsAndHearsWhatComesAfter) {
    ASSERT_EQ(serial.open(), "");
    for (const std::size_t stale : {1u, 2048u, 6000u}) { // within, exactly, and over the input buffer
        SCOPED_TRACE(stale);
        for (std::size_t sent = 0; sent < stale; sent += 500) {
            pty.write(std::string(std::min<std::size_t>(500, stale - sent), 's'));
            pump.sleepUntil(now() + 0.01);
        }
        EXPECT_TRUE(wait([&] { return serial.inBufferCount() == std::min<std::size_t>(stale, 2048); }));
        serial.discardInput();
        EXPECT_EQ(serial.inBufferCount(), 0u);
        ASSERT_TRUE(pty.write("answer"));
        expectArrives("answer");
    }
}

TEST_F(QtSerialControlTest, AVanishedDeviceClosesThePortAndCostsNothing) {
    for (const bool sending : {false, true}) {
        SCOPED_TRACE(sending ? "sending" : "waiting");
        Pty gone;
        pty.leadTo(gone.path);
        ASSERT_EQ(serial.open(), "");
        gone.write("half a rep");
        EXPECT_TRUE(wait([&] { return serial.inBufferCount() > 0; }));
        gone.vanish();
        if (sending) {
            serial.output("P1");
        }
        EXPECT_TRUE(wait([&] { return !serial.isOpen(); })) << "the wait was not woken";
        // Every operation is harmless now, also before the port itself is gone.
        EXPECT_EQ(serial.inBufferCount(), 0u);
        serial.discardInput();
        serial.output("P1");
        serial.input();
        EXPECT_TRUE(!sending || cpuOfSleeping(0.1) < 0.05) << "something is left that fires";
        EXPECT_NE(serial.open(), "") << "opened a device that is gone";
        pty.leadTo(pty.path);
        ASSERT_EQ(serial.open(), "");
        wait([] { return false; }, 0.05);
        EXPECT_TRUE(serial.isOpen()) << "the old port's end took the new one along";
        pty.write("here");
        expectArrives("here");
    }
}

TEST_F(QtSerialControlTest, SaysWhyItDoesNotOpen) {
    const QString folder = QString::fromStdString(pty.folder());
    QFile::link("/nowhere/ttyUSB7", folder + "/COM2");
    QFile::link(folder, folder + "/COM3"); // no serial device at all
    const std::pair<int, const char*> cases[] = {{2, "/nowhere/ttyUSB7 is not there"}, {3, "/"}, {9, "COM9"}};
    for (const auto& [port, reason] : cases) {
        serial.setCommPort(port);
        EXPECT_NE(serial.open().find(reason), std::string::npos) << port;
        EXPECT_FALSE(serial.isOpen());
    }
    EXPECT_EQ(serial.deviceName(2), "") << "nothing is there";
}

} // namespace

#endif
