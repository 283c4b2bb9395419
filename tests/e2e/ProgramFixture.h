#pragma once

#include "app/Program.h"
#include "platform/os/OsFilePort.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

namespace drx9 {

inline constexpr int kPatience = 60000; ///< ms, for conditions that come at once on a fast machine

/// A whole line of the log with a reading of six sensors.
inline bool isReading(const QString& line) {
    static const QRegularExpression whole("^\\d+\\.\\d\\d(\t-?\\d+\\.\\d+){20}$");
    return whole.match(line).hasMatch();
}

enum TestedLink { kSerial, kUsb, kTcp };

/// The whole program in a folder of its own, with drx9sim on the given link. Controls are found by their
/// names and worked by events; what they lead to is waited for. The program stands still while drx9sim is
/// talked to.
class ProgramFixture : public testing::Test {
protected:
    ~ProgramFixture() override {
        if (program) {
            program->window().close();
            EXPECT_TRUE(ended());
            kill();
        }
    }
    void build(TestedLink link, const QString& faults = "none") {
        const QString path = folderPath();
        arguments_ =
            QStringList{"--quiet", "--speed", "10", "--faults", faults, "--trace", path + "/trace.txt"};
        arguments_ +=
            link == kSerial ? QStringList{"--pty", path + "/COM1"} : QStringList{"--tcp", "127.0.0.1:PORT"};
        startSimulator();
        qputenv("DRX9SIM_USB", ("127.0.0.1:" + port_).toUtf8());
        for (const QFileInfo& library : QDir(DRX9_BIN_DIR).entryInfoList({"libSiUSBXp.*"})) {
            QFile::link(library.filePath(), path + "/" + library.fileName());
        }
        std::ofstream(path.toStdString() + "/Monitor.ini", std::ios::binary)
            << "[CommSettings]\r\nCommType=" << link
            << "\r\nPort=1\r\nEAddress=127.0.0.1\r\nEPort=" << port_.toStdString()
            << "\r\n[DataLog]\r\nType=1\r\nInterval=0\r\n";
        program = std::make_unique<Program>(*files_, Paths{path.toStdString(), path.toStdString()}, locale_);
        QObject::connect(&boxWatch_, &QTimer::timeout, &boxWatch_, [this] { answerDialog(); });
        boxWatch_.start(20);
        program->start();
    }
    /// Does nothing while it runs; after kill() it comes back under the same names.
    void startSimulator() {
        if (simulator_.state() == QProcess::NotRunning) {
            simulator_.start(DRX9_BIN_DIR "/drx9sim",
                             QStringList(arguments_).replaceInStrings("PORT", port_));
            port_ = await(arguments_.contains("--pty") ? "pty " : "tcp ").section(':', 1);
        }
    }
    void kill() {
        simulator_.kill();
        simulator_.waitForFinished(kPatience);
    }
    /// Gives a control command; the last word of its answer.
    QString ask(const QString& command) {
        simulator_.write((command + "\n").toUtf8());
        return await("ok ").section(' ', -1);
    }
    bool onLine() {
        return films().count() == 99 && monitor().RunMode() == RunState::Idle && core().answers.hasReading();
    }
    void startRun() {
        ASSERT_TRUE(waitFor([this] { return onLine(); }));
        click("cmdShutter");
        ASSERT_TRUE(waitFor([this] { return text("cmdStartStop") == "STOP" && logLines(0) >= 2; }));
    }
    bool ended() {
        return waitFor(
            [this] { return !program->window().isVisible() && monitor().RunMode() == RunState::Exiting; });
    }
    template<class Condition>
    bool waitFor(Condition condition) {
        return QTest::qWaitFor(condition, kPatience);
    }
    template<class Control = QWidget>
    Control& find(const char* name) {
        return *program->window().findChild<Control*>(name);
    }
    QString folderPath() const { return folder_.path(); }
    QComboBox& films() { return find<QComboBox>("cboFilms"); }
    void click(const char* name) { QTest::mouseClick(&find(name), Qt::LeftButton); }
    QString text(const char* name) { return find(name).property("text").toString(); }
    double number(const char* name) { return text(name).toDouble(); }
    Core& core() { return program->core(); }
    Monitor& monitor() { return core().monitor; }
    double now() { return program->clock().monotonic(); }
    QString contentOf(const char* file) {
        QFile in(folderPath() + "/" + file);
        return in.open(QIODevice::ReadOnly) ? in.readAll() : QString();
    }
    /// Readings in the log, which must consist of whole lines: the start block, readings, `ends` end blocks.
    int logLines(int ends) {
        const QStringList lines = contentOf("drx9.txt").split("\r\n");
        QStringList readings;
        std::copy_if(lines.begin(), lines.end(), std::back_inserter(readings), isReading);
        const bool started = lines.size() > 1;
        EXPECT_EQ(lines.size(), 1 + readings.size() + (started ? 4 : 0) + 3 * ends);
        EXPECT_EQ(lines.filter("Start:   Date: ").size(), started ? 1 : 0);
        EXPECT_EQ(lines.filter("End:     Date: ").size(), ends);
        EXPECT_TRUE(std::is_sorted(readings.begin(), readings.end(), [](const QString& a, const QString& b) {
            return a.section('\t', 0, 0).toDouble() < b.section('\t', 0, 0).toDouble();
        })) << "the run's time went back";
        return static_cast<int>(readings.size());
    }

    std::unique_ptr<Program> program;
    QString boxes;           ///< texts of the blocking boxes, each of which is answered at once
    QStringList chosenFiles; ///< what will be chosen in the next file dialogs

private:
    void answerDialog() {
        QWidget* modal = QApplication::activeModalWidget();
        if (auto* box = qobject_cast<QMessageBox*>(modal); box != nullptr && box->objectName() == "MsgBox") {
            boxes += box->text();
            QTest::mouseClick(box->buttons().constFirst(), Qt::LeftButton);
        } else if (auto* dialog = qobject_cast<QFileDialog*>(modal); dialog && !chosenFiles.isEmpty()) {
            auto* name = dialog->findChild<QLineEdit*>();
            name->setText(chosenFiles.takeFirst());
            QTest::keyClick(name, Qt::Key_Return);
        }
    }
    QString await(const QString& start) {
        QString line;
        while (!line.startsWith(start)) {
            while (!simulator_.canReadLine()) {
                if (!simulator_.waitForReadyRead(kPatience)) {
                    ADD_FAILURE() << "the simulator says " << line.toStdString();
                    return line;
                }
            }
            line = simulator_.readLine().trimmed();
        }
        return line;
    }

    QTemporaryDir folder_;
    const std::unique_ptr<FilePort> files_ = makeOsFilePort();
    const NumberLocale locale_{};
    QProcess simulator_;
    QString port_ = "0"; ///< of TCP, once it is known
    QStringList arguments_;
    QTimer boxWatch_;
};

} // namespace drx9
