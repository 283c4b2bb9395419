#ifndef _WIN32

#include "platform/qt/QtSerialControl.h"

#include "platform/qt/QtClock.h"
#include "platform/qt/QtEventPump.h"
#include "platform_qt/Pty.h"
#include "platform_qt/Waiting.h"

#include <gtest/gtest.h>

#include <sys/ioctl.h>

#include <ctime>

using namespace drx9;
using drx9::testing_qt::Pty;
using drx9::testing_qt::waitFor;

namespace {

class QtSerialControlTest : public ::testing::Test {
protected:
    void open(const std::string& settings = "19200,N,8,1") {
        serial.setCommPort(1);
        serial.setSettings(settings);
        ASSERT_EQ(serial.open(), "");
        ASSERT_TRUE(serial.isOpen());
    }
    template<class Condition>
    bool wait(Condition condition) {
        return waitFor(pump, clock, condition);
    }
    std::string take(std::size_t count) {
        std::string bytes;
        EXPECT_TRUE(wait([&] {
            while (serial.inBufferCount() > 0 && bytes.size() < count)
                bytes += static_cast<char>(serial.input());
            return bytes.size() == count;
        })) << "got "
            << bytes.size();
        return bytes;
    }

    QtClock clock;
    QtEventPump pump{clock};
    Pty pty;
    QtSerialControl serial{pump, pty.folder()};
};

TEST_F(QtSerialControlTest, CarriesEveryByteBothWays) {
    open();
    EXPECT_EQ(serial.deviceName(1), pty.path());
    std::string all;
    for (int byte = 0; byte < 256; ++byte)
        all += static_cast<char>(byte);
    serial.output(all);
    EXPECT_EQ(pty.read(), all) << "goes out without a turn of the event loop";
    ASSERT_TRUE(pty.write(all));
    EXPECT_EQ(take(256), all) << "raw: no echo, no line ends, no flow control";
    EXPECT_EQ(serial.inBufferCount(), 0u);
    pump.processPending();
    EXPECT_EQ(pty.read(), "") << "echoed";
}

TEST_F(QtSerialControlTest, TakesSettingsAndRefusesNonsense) {
    const struct {
        const char* settings;
        speed_t baud;
        tcflag_t size;
        bool parity;
    } good[] = {{"19200,N,8,1", B19200, CS8, false},
                {"9600,n,8,1", B9600, CS8, false},
                {"115200,E,7,2", B115200, CS7, true}};
    for (const auto& c : good) {
        SCOPED_TRACE(c.settings);
        open(c.settings);
        const termios line = pty.settings();
        EXPECT_EQ(::cfgetospeed(&line), c.baud);
        EXPECT_EQ(::cfgetispeed(&line), c.baud);
        // The pseudo-terminal keeps eight bits and no parity whatever is asked; a real line is set by these
        // flags.
        EXPECT_EQ(line.c_cflag & (CRTSCTS), 0u);
        EXPECT_EQ(line.c_iflag & (IXON | IXOFF | ICRNL | ISTRIP), 0u);
        EXPECT_EQ(line.c_lflag & (ECHO | ICANON | ISIG), 0u);
    }
    for (const char* settings : {"", "19200", "19200,N,8", "0,N,8,1", "x,N,8,1", "19200,Q,8,1", "19200,N,9,1",
                                 "19200,N,8,3", "19200,NE,8,1", "-5,N,8,1"}) {
        SCOPED_TRACE(settings);
        serial.setSettings(settings);
        EXPECT_NE(serial.open(), "");
        EXPECT_FALSE(serial.isOpen());
    }
}

TEST_F(QtSerialControlTest, OpensExclusively) {
    open();
    const int other = ::open(pty.path().c_str(), O_RDWR | O_NOCTTY);
    int exclusive = 0;
    // The administrator gets in all the same: ask for the mark.
    if (other >= 0) {
        ASSERT_EQ(::ioctl(other, TIOCGEXCL, &exclusive), 0);
    }
    EXPECT_TRUE(other < 0 || exclusive != 0);
    ::close(other);
}

TEST_F(QtSerialControlTest, DiscardsWhatWaitsAndHearsWhatComesAfter) {
    open();
    for (const int stale : {1, 2048, 6000}) { // within, exactly, and over the input buffer
        SCOPED_TRACE(stale);
        for (int sent = 0; sent < stale; sent += 500) {
            pty.write(std::string(static_cast<std::size_t>(std::min(500, stale - sent)), 's'));
            pump.processPending();
        }
        wait([&] { return serial.inBufferCount() >= static_cast<std::size_t>(std::min(stale, 2048)); });
        EXPECT_LE(serial.inBufferCount(), 2048u);
        serial.discardInput();
        EXPECT_EQ(serial.inBufferCount(), 0u);
        // Nothing stale is left in the system's own queue either, so the answer stands alone.
        ASSERT_TRUE(pty.write("answer"));
        EXPECT_EQ(take(6), "answer");
    }
}

TEST_F(QtSerialControlTest, AVanishedDeviceClosesThePortAndCostsNothing) {
    for (const bool sending : {false, true}) {
        SCOPED_TRACE(sending ? "sending" : "waiting");
        Pty own;
        QtSerialControl control(pump, own.folder());
        ASSERT_EQ(control.open(), "");
        own.write("half a rep");
        EXPECT_TRUE(wait([&] { return control.inBufferCount() > 0; }));
        own.vanish();
        if (sending)
            control.output("P1");
        EXPECT_TRUE(wait([&] { return !control.isOpen(); })) << "the wait was not woken";
        // Every operation is harmless now, also before the port itself is gone.
        EXPECT_EQ(control.inBufferCount(), 0u);
        control.discardInput();
        control.output("P1");
        control.input();
        const std::clock_t cpu = std::clock();
        const double deadline = clock.monotonic() + 0.3;
        while (clock.monotonic() < deadline)
            pump.sleepUntil(deadline);
        EXPECT_LT(static_cast<double>(std::clock() - cpu) / CLOCKS_PER_SEC, 0.02);
        EXPECT_NE(control.open(), "") << "opened a device that is gone";
    }
}

TEST_F(QtSerialControlTest, OpensAgainWhileTheFaultIsStillInHand) {
    open();
    Pty second;
    QFile::remove(QString::fromStdString(pty.folder() + "/COM1"));
    QFile::link(QString::fromStdString(second.path()), QString::fromStdString(pty.folder() + "/COM1"));
    pty.vanish();
    ASSERT_TRUE(wait([&] { return !serial.isOpen(); }));
    open();
    for (int i = 0; i < 3; ++i)
        pump.sleepUntil(clock.monotonic() + 0.01);
    EXPECT_TRUE(serial.isOpen()) << "the old port's queued end took the new one along";
    second.write("here");
    EXPECT_EQ(take(4), "here");
    serial.close();
    EXPECT_FALSE(serial.isOpen());
}

TEST_F(QtSerialControlTest, SaysWhyItDoesNotOpen) {
    const QString folder = QString::fromStdString(pty.folder());
    QFile::link("/nowhere/ttyUSB7", folder + "/COM2");
    QFile::link(folder, folder + "/COM3"); // no serial device at all
    const struct {
        int port;
        const char* reason;
    } cases[] = {{2, "/nowhere/ttyUSB7 is not there"}, {3, "/"}, {9, "no serial device for COM9"}};
    for (const auto& c : cases) {
        serial.setCommPort(c.port);
        const std::string reason = serial.open();
        EXPECT_NE(reason.find(c.reason), std::string::npos) << c.port << ": " << reason;
        EXPECT_FALSE(serial.isOpen());
        serial.output("lost");
        EXPECT_EQ(serial.inBufferCount(), 0u);
    }
}

} // namespace

#endif
