// The whole program against the simulated instrument, over every link.
#include "e2e/ProgramFixture.h"

#include <QAbstractItemView>
#include <QAction>
#include <QSignalSpy>

#include <random>
#include <stdexcept>

namespace drx9 {
namespace {

class OnEveryLink : public ProgramFixture, public testing::WithParamInterface<TestedLink> {};

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

    // Edited in one window, sent, and read back from the instrument by the other.
    const auto open = [&](const char* item, const char* name) {
        find<QAction>(item).trigger();
        return waitFor([&] { return program->window().findChild<QWidget*>(name) != nullptr; });
    };
    const auto closed = [&](const char* name) {
        click("cmdOK");
        return waitFor([&] { return program->window().findChild<QWidget*>(name) == nullptr; });
    };
    ASSERT_TRUE(open("mnuSetupSystem", "frmSystem"));
    QTest::keyClick(&find("spnSysParam_2"), Qt::Key_Up);
    click("cmdSave");
    EXPECT_TRUE(waitFor([&] { return contentOf("trace.txt").contains("\tC 5  6.1  0  20  0  5  0 \tA\t"); }));
    EXPECT_TRUE(closed("frmSystem"));
    ASSERT_TRUE(open("mnuSetupComm", "frmComm"));
    QTest::keyClicks(&find("txtSend"), "C?");
    click("cmdSend");
    EXPECT_TRUE(waitFor([&] { return text("txtRcv").simplified() == "5 6.1 0 20 0 5 0"; }));
    EXPECT_TRUE(closed("frmComm"));
    EXPECT_TRUE(waitFor([&] { return onLine(); }));

    program->reportError(std::runtime_error("a fault in a handler"));
    EXPECT_TRUE(contentOf("ERRORS.TXT").contains("Error String   : a fault in a handler\r\n"));

    find<QAction>("mnuFileExit").trigger();
    EXPECT_TRUE(ended());
    for (const char* line : {"View=3\r\n", "EAddresst=127.0.0.1\r\n", "Interval=0\r\n"}) {
        EXPECT_TRUE(contentOf("Monitor.ini").contains(line)) << line;
    }
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
    const double limit = 2 + 2 * core().answers.usualInterval(); // 2.5 s unless this machine is slow
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
            return returned > 0 && core().answers.lastGoodReading() > returned &&
                   core().readings.failed.none();
        };
        ASSERT_TRUE(waitFor(polled)) << cut;
        longest = std::max(longest, core().answers.lastGoodReading() - returned);
        EXPECT_LE(core().answers.lastGoodReading() - returned, limit) << cut << " after " << length << " ms";
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
};

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
    EXPECT_EQ(boxes, "");
    if (moment.cutInRun == nullptr) {
        EXPECT_LT(ask("count A*").toInt(), 99) << "the films were read to the end";
    }
}

INSTANTIATE_TEST_SUITE_P(
    Moments, Closing,
    testing::Values(
        Moment{"Connecting", "silent", nullptr, [](const Core& c) { return !c.instrument.started(); }},
        Moment{"ReadingFilms", "none", nullptr,
               [](const Core& c) { return c.link.CommLastPacket()[2] == 'A' && c.link.accepted() > 7; }},
        Moment{"InARun", "none", "state?",
               [](const Core& c) { return c.monitor.RunMode() == RunState::Running; }},
        Moment{"LostInARun", "none", "faults silent", [](const Core& c) { return c.keeper.lost(); }}),
    [](const auto& c) { return c.param.name; });

} // namespace
} // namespace drx9
