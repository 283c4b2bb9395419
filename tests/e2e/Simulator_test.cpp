// drx9sim by itself, where the tests of the whole program do not come.
#include "link/Crc.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTcpSocket>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace drx9 {
namespace {

constexpr int kPatience = 20000; ///< ms

class Drx9Sim : public QProcess {
public:
    explicit Drx9Sim(const QStringList& arguments) {
        setStandardErrorFile(QProcess::nullDevice());
        start(DRX9_BIN_DIR "/drx9sim", arguments + QStringList{"--quiet"});
    }
    ~Drx9Sim() override {
        kill();
        waitForFinished();
    }
    QString line() {
        while (!canReadLine() && waitForReadyRead(kPatience)) {
        }
        return QString(readLine()).trimmed();
    }
    int status() {
        return (state() == NotRunning || waitForFinished(kPatience)) && QProcess::exitStatus() == NormalExit
                   ? exitCode()
                   : -1;
    }
};

class Client : public QTcpSocket {
public:
    explicit Client(quint16 port) {
        connectToHost("127.0.0.1", port);
        waitForConnected(kPatience);
    }
    /// What comes within patience; empty when the connection ends before.
    std::string ask(const char* command, qsizetype size) {
        write(QByteArray::fromStdString(commandPacket(command)));
        while (bytesAvailable() < size && waitForReadyRead(kPatience)) {
        }
        return readAll().toStdString();
    }
};

TEST(Drx9Sim, TheNewestClientWinsAndALineKeepsItsPace) {
    Drx9Sim simulator({"--tcp", "0", "--baud", "1200"});
    const auto port = simulator.line().section(':', 1).toUShort();
    Client first(port);
    const std::string version = replyPacket('A', "DRX-9 Ver 4.12");
    QElapsedTimer taken;
    taken.start();
    EXPECT_EQ(first.ask("@", static_cast<qsizetype>(version.size())), version);
    EXPECT_GE(taken.elapsed(), (5 + 19) * 10 * 1000 / 1200) << "ten bits a byte, both ways";
    Client newest(port);
    EXPECT_EQ(newest.ask("U?", 6), replyPacket('A', "0"));
    EXPECT_TRUE(first.state() == QTcpSocket::UnconnectedState || first.waitForDisconnected(kPatience));
    simulator.write("quit\n");
    EXPECT_EQ(simulator.line(), "ok quit");
    EXPECT_EQ(simulator.status(), 0);
}

TEST(Drx9Sim, RefusesWhatItCannotDo) {
    const QTemporaryDir folder; // where a link should be; what is no link is not replaced
    Drx9Sim other({"--tcp", "0"});
    const QString taken = other.line().section(' ', 1);
    const std::pair<QStringList, int> cases[] = {
        {{"--sensors", "9"}, 2},
        {{"--tcp", "203.0.113.1:0"}, 1}, // no address of this machine
        {{"--tcp", taken}, 1},
        {{"--pty", folder.path()}, 1}};
    for (const auto& [arguments, status] : cases) {
        EXPECT_EQ(Drx9Sim(arguments).status(), status) << arguments.join(' ').toStdString();
    }
    EXPECT_TRUE(QDir(folder.path()).exists());
}

} // namespace
} // namespace drx9
