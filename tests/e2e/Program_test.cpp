// The whole program against the simulated instrument, over every link.
#include "e2e/ProgramFixture.h"

#include <QAction>
#include <QComboBox>
#include <QSignalSpy>

#include <random>

namespace drx9 {
namespace {

class OnEveryLink : public testing::TestWithParam<LinkCase> {};
constexpr LinkCase kTcp = {"Tcp", 2};

TEST_P(OnEveryLink, ADayAtTheInstrument) {
    ProgramFixture f(GetParam());
    f.startUp();
    ASSERT_FALSE(HasFatalFailure());
    EXPECT_EQ(f.program->window().windowTitle().toStdString(), "DRX9 Comm - [Ver. 4.12]");
    EXPECT_EQ(f.find<QComboBox>("cboFilms")->currentIndex(), 0);

    for (int film = 2; film <= 3; ++film) {
        QTest::keyClick(f.find<QComboBox>("cboFilms"), Qt::Key_Down);
    }
    EXPECT_TRUE(f.waitFor([&] { return f.simulator.count("D3") == 1; }));
    EXPECT_EQ(f.simulator.ask("state?").rfind("film 3 shutter 0", 0), 0U);
    f.choose("mnuSensorFreq");
    EXPECT_EQ(f.textOf("LblData_3"), "Freq 1 (Hz)");
    for (const char* sensor :
         {"TxtData_3", "TxtData_4", "TxtData_5", "TxtData_6", "TxtData_7", "TxtData_8"}) {
        EXPECT_TRUE(f.waitFor([&] { return f.numberOf(sensor) > 4e6; })) << f.textOf(sensor);
    }
    f.click("cmdZero");
    EXPECT_TRUE(f.waitFor([&] { return f.simulator.count("S") == 1; }));

    f.startRun();
    EXPECT_EQ(f.simulator.ask("shutter?"), "shutter 1");
    EXPECT_EQ(f.textOf("cmdShutter"), "Close Shutter");
    EXPECT_FALSE(f.find<QComboBox>("cboFilms")->isEnabled());
    const std::string frequency = f.textOf("TxtData_3");
    EXPECT_TRUE(f.waitFor([&] {
        return f.numberOf("TxtData_1") > 0.1 && f.numberOf("TxtData_2") > 0.002 &&
               f.textOf("TxtData_3") != frequency && f.textOf("TxtData_10") > "0:00:00";
    })) << f.textOf("TxtData_1")
        << " " << f.textOf("TxtData_2") << " " << f.textOf("TxtData_10");

    f.click("cmdShutter");
    EXPECT_TRUE(f.waitFor([&] { return f.simulator.ask("shutter?") == "shutter 0"; }));
    const auto thickness = [&] { // what has settled at the instrument
        const std::string state = f.simulator.ask("state?");
        return std::stod(state.substr(state.rfind(' ') + 1));
    };
    EXPECT_TRUE(f.waitFor([&] { return std::abs(f.numberOf("TxtData_2") - thickness()) < 0.0006; }))
        << f.textOf("TxtData_2") << " for " << thickness();
    f.click("cmdStartStop");
    EXPECT_TRUE(
        f.waitFor([&] { return f.textOf("cmdStartStop") == "START" && f.monitor().RunMode() == kIdle; }));
    EXPECT_GE(f.checkedLogLines(1), 2);
    EXPECT_EQ(f.find<QComboBox>("cboFilms")->currentIndex(), 2);

    f.choose("mnuFileExit");
    EXPECT_TRUE(f.waitForEnd());
    const QByteArray settings = f.contentOf("Monitor.ini");
    for (const char* line : {"View=3\r\n", "EAddresst=127.0.0.1\r\n", "Interval=0\r\n"}) {
        EXPECT_TRUE(settings.contains(line)) << line << " in " << settings.toStdString();
    }
    EXPECT_TRUE(f.boxes.isEmpty()) << f.boxes.join("\n").toStdString();
}

enum class Cut { Restart, Drop, Silence, Unplug };

void cut(ProgramFixture& f, Cut kind, int milliseconds) {
    switch (kind) {
    case Cut::Restart:
        f.simulator.kill();
        break;
    case Cut::Drop:
        f.simulator.ask("drop");
        break;
    case Cut::Silence:
        f.simulator.ask("faults silent=0s:" + std::to_string(milliseconds) + "ms");
        break;
    case Cut::Unplug:
        f.simulator.ask("unplug");
        break;
    }
}

void mend(ProgramFixture& f, Cut kind) {
    if (kind == Cut::Restart) {
        f.startSimulator();
    } else if (kind == Cut::Unplug) {
        f.simulator.ask("plug");
    } else if (kind == Cut::Silence) {
        f.simulator.ask("faults none");
    }
    f.simulator.ask("shutter open"); // a new instrument starts with it closed
}

TEST_P(OnEveryLink, ARunOutlivesEveryCut) {
    ProgramFixture f(GetParam());
    f.startUp();
    ASSERT_FALSE(HasFatalFailure());
    f.startRun();
    ASSERT_FALSE(HasFatalFailure());
    const double limit = 2 + 2 * f.monitor().usualInterval(); // 2.5 s unless this machine is slow
    std::mt19937 random(static_cast<unsigned>(GetParam().commType));
    int lines = f.checkedLogLines(0);
    for (const Cut kind : {Cut::Drop, Cut::Silence, Cut::Restart, Cut::Unplug}) {
        SCOPED_TRACE("cut " + std::to_string(static_cast<int>(kind)));
        const int after = static_cast<int>(random() % 400); // anywhere in a tick, most often in an exchange
        const int length = 50 + static_cast<int>(random() % 1500);
        double returned = -1;
        QTimer::singleShot(after, &f.program->window(), [&] { cut(f, kind, length); });
        QTimer::singleShot(after + length, &f.program->window(), [&] {
            mend(f, kind);
            returned = f.now();
        });
        ASSERT_TRUE(f.waitFor([&] { return returned > 0; }));
        ASSERT_TRUE(f.waitFor([&] {
            return f.monitor().lastGoodReading() > returned && f.monitor().readings().failed.none();
        }));
        EXPECT_LE(f.monitor().lastGoodReading() - returned, limit) << "after " << length << " ms";
        EXPECT_EQ(f.textOf("cmdStartStop"), "STOP");
        EXPECT_FALSE(f.noticeBoxShown());
        ASSERT_TRUE(f.waitFor([&] { return f.checkedLogLines(0) > lines; }));
        lines = f.checkedLogLines(0);
    }
    EXPECT_TRUE(f.boxes.isEmpty()) << f.boxes.join("\n").toStdString();
    f.program->window().close();
    EXPECT_TRUE(f.waitForEnd());
    EXPECT_GE(f.checkedLogLines(1), lines);
}

INSTANTIATE_TEST_SUITE_P(Links, OnEveryLink, testing::Values(kTcp, LinkCase{"Serial", 0}, LinkCase{"Usb", 1}),
                         [](const auto& c) { return c.param.name; });

/// When the operator closes the window: always while an exchange is under way.
struct ClosingCase {
    const char* name;
    const char* faults;   ///< of the instrument from the start on
    const char* cutInRun; ///< faults set once a run is on; null: no run is started
    bool (*moment)(const Monitor& monitor);
    int boxes = 0; ///< that may stand in the way
};

void PrintTo(const ClosingCase& closing, std::ostream* out) {
    *out << closing.name;
}

class Closing : public testing::TestWithParam<ClosingCase> {};

TEST_P(Closing, EndsTheProgramFromWithinAnExchange) {
    ProgramFixture f(kTcp, {"--faults", GetParam().faults});
    QSignalSpy lastClosed(qApp, &QApplication::lastWindowClosed);
    const bool run = GetParam().cutInRun != nullptr;
    if (run) {
        f.startUp();
        ASSERT_FALSE(HasFatalFailure());
        f.startRun();
        ASSERT_FALSE(HasFatalFailure());
        f.simulator.ask(std::string("faults ") + GetParam().cutInRun);
    } else {
        f.program->start();
    }
    bool inExchange = false;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &watch, [&] {
        if (!inExchange && f.monitor().parts().link.exchanging() && GetParam().moment(f.monitor())) {
            inExchange = true;
            f.program->window().close();
            EXPECT_TRUE(f.program->window().isVisible()) << "not before the exchange has ended";
        }
    });
    watch.start(0);
    ASSERT_TRUE(f.waitFor([&] { return inExchange; }));
    watch.stop();
    const double asked = f.now();
    EXPECT_TRUE(f.waitForEnd());
    EXPECT_LE(f.now() - asked, 5) << "s";
    EXPECT_TRUE(f.waitFor([&] { return lastClosed.count() == 1; })) << "the program would not end";
    EXPECT_TRUE(f.contentOf("Monitor.ini").contains("EAddresst=127.0.0.1\r\n"));
    f.checkedLogLines(run ? 1 : 0);
    EXPECT_LT(f.simulator.count("A*"), run ? 200 : 99) << "the films were read to the end";
    EXPECT_LE(f.boxes.size(), GetParam().boxes) << f.boxes.join("\n").toStdString();
}

constexpr const char* kSilence = "silent=0s:600s";

INSTANTIATE_TEST_SUITE_P(
    Moments, Closing,
    testing::Values(
        ClosingCase{"Connecting", kSilence, nullptr,
                    [](const Monitor& m) { return m.RunMode() == kStarting; }, 1},
        ClosingCase{"ReadingFilms", "none", nullptr,
                    [](const Monitor& m) { return m.filmNames().size() > 5; }},
        ClosingCase{"InARun", "none", "none", [](const Monitor& m) { return m.RunMode() == kRunning; }},
        ClosingCase{"LostInARun", "none", kSilence, [](const Monitor& m) { return m.reconnecting(); }}),
    [](const auto& c) { return c.param.name; });

} // namespace
} // namespace drx9
