// The whole program against the simulated instrument, over every link.
#include "app/Program.h"
#include "platform/os/OsFilePort.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QProcess>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <random>
#include <stdexcept>

namespace drx9 {
namespace {

constexpr int kPatience = 60000; ///< ms, for conditions that come at once on a fast machine

/// A whole line of the log with a reading of six sensors.
bool isReading(const QString& line) {
    static const QRegularExpression whole("^\\d+\\.\\d\\d(\t-?\\d+\\.\\d+){20}$");
    return whole.match(line).hasMatch();
}

enum LinkType { kSerial, kUsb, kTcp };

/// The whole program in a folder of its own, with drx9sim on the given link. Controls are found by their
/// names and worked by events; what they lead to is waited for. The program stands still while drx9sim is
/// talked to.
class ProgramFixture : public testing::Test {
protected:
    ~ProgramFixture() override {
        program->window().close();
        EXPECT_TRUE(ended());
        kill();
    }
    void build(LinkType link, const QString& faults = "none") {
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
        QObject::connect(&boxWatch_, &QTimer::timeout, &boxWatch_, [this] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (box != nullptr && box->objectName() == "MsgBox") {
                boxes += box->text();
                QTest::mouseClick(box->buttons().constFirst(), Qt::LeftButton);
            }
        });
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
        return films().count() == 99 && monitor().RunMode() == RunState::Idle &&
               monitor().answers().hasReading();
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
    QString boxes; ///< texts of the blocking boxes, each of which is answered at once

private:
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

class OnEveryLink : public ProgramFixture, public testing::WithParamInterface<LinkType> {};

TEST_P(OnEveryLink, ADayAtTheInstrument) {
    build(GetParam());
    ASSERT_TRUE(waitFor([&] { return onLine(); }));
    EXPECT_EQ(program->window().windowTitle(), "DRX9 Comm - [Ver. 4.12]");

    QTest::keyClick(&films(), Qt::Key_F4);
    for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Down, Qt::Key_Return}) {
        QTest::keyClick(films().view(), key);
    }
    EXPECT_TRUE(waitFor([&] { return ask("count D3") == "1"; }));
    find<QAction>("mnuSensorFreq").trigger();
    for (const char* sensor :
         {"TxtData_3", "TxtData_4", "TxtData_5", "TxtData_6", "TxtData_7", "TxtData_8"}) {
        EXPECT_TRUE(waitFor([&] { return number(sensor) > 4e6; }));
    }
    const QString frequency = text("TxtData_3");
    click("cmdZero");
    EXPECT_TRUE(waitFor([&] { return ask("count S") == "1"; }));

    startRun();
    EXPECT_EQ(ask("shutter?"), "1");
    EXPECT_EQ(text("cmdShutter"), "Close Shutter");
    EXPECT_FALSE(films().isEnabled());
    EXPECT_TRUE(waitFor([&] {
        return number("TxtData_1") > 0.1 && number("TxtData_2") > 0.1 && text("TxtData_3") != frequency &&
               number("TxtData_9") > 0 && text("TxtData_10") > "0:00:00" && text("TxtData_11") > "0:00:00";
    }));

    click("cmdShutter");
    EXPECT_TRUE(waitFor([&] { return ask("shutter?") == "0" && text("TxtData_1") == "0.00"; }));
    // What has settled at the instrument is what the window shows, to the last digit.
    EXPECT_TRUE(waitFor([&] { return std::abs(number("TxtData_2") - ask("state?").toDouble()) < 0.0006; }));
    click("cmdStartStop");
    EXPECT_TRUE(waitFor([&] { return onLine(); }));
    EXPECT_EQ(text("cmdStartStop"), "START");
    EXPECT_GE(logLines(1), 2);
    EXPECT_EQ(films().currentIndex(), 2);

    program->reportError(std::runtime_error("a fault in a handler"));
    EXPECT_TRUE(contentOf("ERRORS.TXT").contains("Error String   : a fault in a handler\r\n"));

    find<QAction>("mnuFileExit").trigger();
    EXPECT_TRUE(ended());
    for (const char* line : {"View=3\r\n", "EAddresst=127.0.0.1\r\n", "Interval=0\r\n"}) {
        EXPECT_TRUE(contentOf("Monitor.ini").contains(line)) << line;
    }
    EXPECT_EQ(boxes, "");
}

/// Edited in one window, sent, and read back from the instrument by the other.
TEST_P(OnEveryLink, ParametersGoToTheInstrumentAndComeBack) {
    build(GetParam());
    ASSERT_TRUE(waitFor([&] { return onLine(); }));
    const auto open = [&](const char* item, const char* window) {
        find<QAction>(item).trigger();
        return waitFor([&] { return program->window().findChild<QWidget*>(window) != nullptr; });
    };
    const auto closed = [&](const char* window) {
        click("cmdOK");
        return waitFor([&] { return program->window().findChild<QWidget*>(window) == nullptr; });
    };
    ASSERT_TRUE(open("mnuSetupSystem", "frmSystem"));
    QTest::keyClick(&find("spnSysParam_0"), Qt::Key_Up);
    QTest::keyClick(&find("spnXTool_6"), Qt::Key_Down);
    QTest::keyClick(&find("spnSysParam_2"), Qt::Key_Up);
    QTest::mouseClick(&find("optEtchMode_1"), Qt::LeftButton);
    click("cmdSave");
    const QString b = "B .26  0  0  1  4  100  100  100  100  100  99 ";
    const QString c = "C 5  6.1  0  20  0  5  1 ";
    EXPECT_TRUE(waitFor([&] { return contentOf("trace.txt").contains("\t" + c + "\tA\t"); }));
    EXPECT_TRUE(contentOf("trace.txt").contains("\t" + b + "\tA\t"));
    EXPECT_TRUE(closed("frmSystem"));

    ASSERT_TRUE(open("mnuSetupComm", "frmComm"));
    for (const auto& [query, sent] : {std::pair("B?", b), std::pair("C?", c)}) {
        auto& line = find<QLineEdit>("txtSend");
        line.clear();
        QTest::keyClicks(&line, query);
        QTest::keyClick(&line, Qt::Key_Return);
        EXPECT_TRUE(waitFor([&, answer = sent.mid(1).simplified()] {
            return text("txtRcv").simplified() == answer;
        })) << text("txtRcv").toStdString();
    }
    EXPECT_TRUE(closed("frmComm"));
    EXPECT_TRUE(waitFor([&] { return onLine(); }));
    EXPECT_EQ(boxes, "");
}

constexpr const char* kCuts[][2] = { // what begins them and what ends them
    {"drop", "state?"},
    {"faults silent", "faults none"},
    {"kill", "state?"},
    {"unplug", "plug"}};

TEST_P(OnEveryLink, ARunOutlivesEveryCut) {
    build(GetParam());
    startRun();
    ASSERT_FALSE(HasFatalFailure());
    const double limit = 2 + 2 * monitor().answers().usualInterval(); // 2.5 s unless this machine is slow
    // Other cuts: --gtest_shuffle --gtest_random_seed=N; more of them: DRX9_CUTS=100
    const int cuts = std::max<int>(std::size(kCuts), qEnvironmentVariableIntValue("DRX9_CUTS"));
    std::mt19937 random(
        static_cast<unsigned>(GetParam() + 3 * testing::UnitTest::GetInstance()->random_seed()));
    double longest = 0;
    for (int i = 0; i < cuts; ++i) {
        const auto& [cut, end] = kCuts[static_cast<std::size_t>(i) % std::size(kCuts)];
        const int lines = logLines(0);
        const int begin = static_cast<int>(random() % 400); // anywhere in a tick, most often in an exchange
        const int length = 50 + static_cast<int>(random() % 1500);
        double returned = -1;
        QTimer::singleShot(begin, &program->window(),
                           [&, what = QString(cut)] { what == "kill" ? kill() : void(ask(what)); });
        QTimer::singleShot(begin + length, &program->window(), [&, what = QString(end)] {
            startSimulator();
            ask(what);
            ask("shutter open"); // a new instrument starts with it closed
            returned = now();
        });
        const auto polled = [&] {
            return returned > 0 && monitor().answers().lastGoodReading() > returned &&
                   monitor().readings().failed.none();
        };
        ASSERT_TRUE(waitFor(polled)) << cut;
        longest = std::max(longest, monitor().answers().lastGoodReading() - returned);
        EXPECT_LE(monitor().answers().lastGoodReading() - returned, limit)
            << cut << " after " << length << " ms";
        EXPECT_EQ(text("cmdStartStop"), "STOP");
        ASSERT_TRUE(waitFor([&] { return logLines(0) > lines; }));
        for (const QWidget* widget : QApplication::topLevelWidgets()) {
            EXPECT_FALSE(widget->isVisible() && widget->inherits("QMessageBox")) << "it went with the cut";
        }
    }
    RecordProperty("longest_ms", static_cast<int>(longest * 1000));
    EXPECT_EQ(boxes, "");
    program->window().close();
    EXPECT_TRUE(ended());
    logLines(1);
}

INSTANTIATE_TEST_SUITE_P(Links, OnEveryLink, testing::Values(kSerial, kUsb, kTcp), [](const auto& link) {
    return std::string(link.param == kSerial ? "Serial" : link.param == kUsb ? "Usb" : "Tcp");
});

/// When the operator closes the window: always while an exchange is under way.
struct Moment {
    const char* name;
    const char* faults;   ///< of the instrument from the start on
    const char* cutInRun; ///< what it is told once a run is on; null: no run is started
    bool (*come)(const Core& core);
    const char* boxes = ""; ///< texts of those that are in the way
};

void PrintTo(const Moment& moment, std::ostream* out) {
    *out << moment.name;
}

class Closing : public ProgramFixture, public testing::WithParamInterface<Moment> {};

TEST_P(Closing, EndsTheProgramFromWithinAnExchange) {
    const Moment& moment = GetParam();
    QSignalSpy lastClosed(qApp, &QApplication::lastWindowClosed);
    build(kTcp, moment.faults);
    if (moment.cutInRun != nullptr) {
        startRun();
        ASSERT_FALSE(HasFatalFailure());
        ask(moment.cutInRun);
    }
    double asked = -1;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &watch, [&] {
        if (asked < 0 && core().link.exchanging() && moment.come(core())) {
            asked = now();
            program->window().close();
            EXPECT_TRUE(program->window().isVisible()) << "not before the exchange has ended";
        }
    });
    watch.start(0);
    ASSERT_TRUE(waitFor([&] { return asked >= 0; }));
    EXPECT_TRUE(ended());
    EXPECT_LE(now() - asked, 5) << "s";
    EXPECT_TRUE(waitFor([&] { return lastClosed.count() == 1; })) << "the program would not end";
    EXPECT_TRUE(contentOf("Monitor.ini").contains("EAddresst=127.0.0.1\r\n"));
    logLines(moment.cutInRun != nullptr ? 1 : 0);
    EXPECT_EQ(boxes, moment.boxes);
    if (moment.cutInRun == nullptr) {
        EXPECT_LT(ask("count A*").toInt(), 99) << "the films were read to the end";
    }
}

INSTANTIATE_TEST_SUITE_P(
    Moments, Closing,
    testing::Values(
        Moment{"Connecting", "silent", nullptr, [](const Core& c) { return !c.monitor.shown().started; }},
        Moment{"ReadingFilms", "none", nullptr,
               [](const Core& c) { return c.link.CommLastPacket()[2] == 'A' && c.link.accepted() > 7; }},
        Moment{"InARun", "none", "state?",
               [](const Core& c) { return c.monitor.RunMode() == RunState::Running; }},
        Moment{"LostInARun", "none", "faults silent",
               [](const Core& c) { return c.monitor.reconnecting(); }}),
    [](const auto& c) { return c.param.name; });

} // namespace
} // namespace drx9
