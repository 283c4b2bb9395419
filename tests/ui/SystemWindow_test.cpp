// The system parameters window, worked with keys and clicks over the scripted instrument.
#include "fakes/FakePolling.h"
#include "link/LinkBench.h"
#include "system/Texts.h"
#include "system/frmSystem.h"
#include "ui/Controls.h"

#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>

namespace drx9 {
namespace {

constexpr const char* kB = "B .25  0  0  1  4  100  94  105  98  108  91 ";
constexpr const char* kC = "C 5  6  0  10  0  10  0 ";

struct FakeSystemRecord : SystemRecordAccess {
    bool known = true;
    [[nodiscard]] bool systemKnown() const override { return known; }
    void systemSent(bool accepted) override { known = accepted; }
    void systemClosed() override {}
};

class SystemWindow : public testing::Test, protected LinkBench, protected Controls {
public:
    SystemWindow()
        : LinkBench(2) {
        link.setCommOK(true);
        wire().setAnswerer(
            [this](const std::string& command) { return command[0] == silent ? std::string() : good(""); });
    }
    ~SystemWindow() override {
        delete window.data();
        EXPECT_EQ(polling.holds, 0);
    }

    void open() {
        window =
            new frmSystem({record, commands, link, access, polling, actions, boxes, clock, locale}, &owner);
        owner.show();
        window->open();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window));
        EXPECT_EQ(polling.holds, 1);
    }
    [[nodiscard]] QWidget& top() const override { return *window; }
    QSpinBox* spin(const char* name) { return find<QSpinBox>(name); }
    void key(QWidget* widget, Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        widget->setFocus();
        QTest::keyClick(widget, key, modifiers);
    }
    std::string text(const char* name) { return spin(name)->text().toStdString(); }
    std::string state() { return find("lblState")->accessibleName().toStdString(); }
    using Sent = std::vector<std::string>;

    SystemParameters record{0.25, 0, 0, 1, 4, {100, 94, 105, 98, 108, 91}, 5, 6, 0, 10, 0, 10, 0};
    FakePolling polling;
    FakeSystemRecord access;
    NumberLocale locale;
    char silent = 0; ///< the first letter of commands that get no answer
    QWidget owner;
    QPointer<frmSystem> window;
};

TEST_F(SystemWindow, KeysStepAndTypeOverBothScales) {
    locale.decimal = ',';
    open();
    const auto step = [this](const char* name, Qt::Key arrow, const char* shown) {
        key(spin(name), arrow);
        EXPECT_EQ(text(name), shown);
    };
    step("spnSysParam_0", Qt::Key_Up, ",26");
    step("spnSysParam_6", Qt::Key_Down, "9,999");
    step("spnSysParam_6", Qt::Key_PageUp, "10");
    step("spnSysParam_6", Qt::Key_Up, "10,01");
    using Typed = std::tuple<const char*, Qt::Key, const char*>;
    for (const auto& [typed, pressed, shown] : {Typed{"2.5", Qt::Key_Return, "2,5"},
                                                {"25,01", Qt::Key_Return, "25,01"},
                                                {"2,501", Qt::Key_Return, "2,501"},
                                                {"10,01", Qt::Key_Down, "10"},
                                                {"99,99", Qt::Key_Up, "99,99"},
                                                {",001", Qt::Key_PageDown, "0"}}) {
        type("spnSysParam_5", typed);
        step("spnSysParam_5", pressed, shown);
    }
    EXPECT_EQ(state(), systemText::kChanged);
    type("spnXTool_1", "2000");
    key(spin("spnXTool_1"), Qt::Key_Tab);
    EXPECT_EQ(state(), "Crystal 1 takes 1 to 999");
    EXPECT_EQ(text("spnXTool_1"), "100");
    EXPECT_TRUE(wire().commands().empty());
    click("cmdRead");
    EXPECT_TRUE(wire().commands().empty());
    EXPECT_EQ(text("spnSysParam_0"), ",25");
    EXPECT_EQ(text("spnSysParam_5"), "0");
    EXPECT_EQ(state(), "");
}

TEST_F(SystemWindow, APressedArrowGoesOn) {
    record.ThickMax = 9.999;
    open();
    QSpinBox* box = spin("spnSysParam_6");
    const QPoint down(box->width() - 12, box->height() - 8);
    QTest::mousePress(box, Qt::LeftButton, {}, down);
    EXPECT_TRUE(QTest::qWaitFor([box] { return box->value() < 9997; }));
    QTest::mouseRelease(box, Qt::LeftButton, {}, down);
}

TEST_F(SystemWindow, FrequenciesPushEachOtherAndTellOnce) {
    record.FreqMax = 5.1;
    open();
    const auto whileItStands = [this] {
        EXPECT_EQ(text("spnSysParam_2"), "5.1");
        spin("spnSysParam_2")->stepBy(-1); // as an arrow that is still held
    };
    boxes.expectShow(systemText::kFrequenciesTooClose, whileItStands);
    key(spin("spnSysParam_2"), Qt::Key_Down);
    QCoreApplication::processEvents();
    EXPECT_TRUE(boxes.allCame());
    EXPECT_EQ(text("spnSysParam_2"), "5.1");

    boxes.expectShow(systemText::kFrequenciesTooClose);
    type("spnSysParam_1", "5.1"); // as Alt+S leaves it
    click("cmdSave");
    EXPECT_TRUE(wire().commands().empty()) << "a pushed value is looked at before it is sent";
    QCoreApplication::processEvents();
    EXPECT_EQ(text("spnSysParam_1"), "5");
}

TEST_F(SystemWindow, SaveSendsBothRecords) {
    open();
    click("cmdSave");
    EXPECT_EQ(wire().commands(), (Sent{kB, kC}));
    EXPECT_EQ(state(), "Sent 10:30:00");
    wire().forget();
    type("spnSysParam_6", "12.5");
    key(find<QRadioButton>("optEtchMode_0"), Qt::Key_Left);
    key(spin("spnSysParam_0"), Qt::Key_S, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([this] { return wire().commands().size() == 2; }));
    EXPECT_EQ(wire().commands(), (Sent{kB, "C 5  6  0  10  0  12.5  1 "}));
    EXPECT_EQ(record.ThickMax, 12.5);
}

TEST_F(SystemWindow, AFailedSaveTellsWhichRecord) {
    open();
    key(spin("spnSysParam_0"), Qt::Key_Up);
    const std::string changed = "B .26" + std::string(kB).substr(5);
    const std::tuple<char, Sent, const char*> cases[] = {
        {'B', {changed}, "First record not accepted: Timeout"},
        {'C', {changed, kC}, "Second record not accepted: Timeout"},
        {0, {}, "Off line: first record not sent: Timeout"}};
    for (const auto& [unanswered, sent, told] : cases) {
        silent = unanswered;
        if (sent.empty()) {
            transports.closeAll();
            link.setCommOK(false);
        }
        wire().forget();
        pump.atPump(1, [this] { click("cmdOK"); }); // not closed, or nobody would see the reason
        click("cmdSave");
        EXPECT_TRUE(window->isVisible());
        EXPECT_EQ(wire().commands(), sent);
        EXPECT_EQ(state(), told);
        EXPECT_EQ(record.Timebase, 0.26) << "the program's record holds it all the same";
    }
    click("cmdRead");
    EXPECT_EQ(state(), systemText::kNotRead);
}

TEST_F(SystemWindow, WhatIsNotShownExactlyIsMarkedAndKept) {
    record.Timebase = 0.2537;
    record.ThickMax = 250;
    open();
    EXPECT_EQ(spin("spnSysParam_0")->accessibleDescription().toStdString(),
              "The DRX-9 holds .2537 s. Save sends this unless it is changed here. .01 to 99.99");
    click("cmdSave");
    EXPECT_EQ(wire().commands(), (Sent{"B .2537" + std::string(kB).substr(5), "C 5  6  0  10  0  250  0 "}));
    type("spnSysParam_0", ".25"); // what is shown already, but now it is meant
    click("cmdSave");
    EXPECT_EQ(wire().commands()[2], kB);
    EXPECT_EQ(spin("spnSysParam_0")->accessibleDescription().toStdString(), ".01 to 99.99");
}

TEST_F(SystemWindow, ARefusedNumberStopsTheSaveThatItCameWith) {
    open();
    type("spnSysParam_0", "200");
    owner.activateWindow(); // another window in front: still being typed
    QCoreApplication::processEvents();
    EXPECT_EQ(text("spnSysParam_0"), "200");
    click("cmdSave");
    EXPECT_TRUE(wire().commands().empty());
    EXPECT_EQ(state(), "Timebase takes .01 to 99.99 s");
    click("cmdSave");
    EXPECT_EQ(wire().commands().size(), 2U);
}

// At each turn of the events in a save: its buttons do nothing, a change of the fields counts as a later one,
// the message on the frequencies waits, and so does Close.
TEST_F(SystemWindow, NothingEntersASave) {
    wire().setAnswerer([](const std::string&) { return good(""); }, 0.3); // with turns in which nothing comes
    for (int turn = 1;; ++turn) {
        record.FreqMax = 5.1;
        open();
        bool reached = false;
        const int first = static_cast<int>(wire().commands().size());
        pump.atPump(turn, [&] {
            reached = true;
            click("cmdSave");
            click("cmdRead");
            key(spin("spnSysParam_2"), Qt::Key_Down);
            key(spin("spnSysParam_0"), Qt::Key_Up);
            QCoreApplication::processEvents();
            key(window, Qt::Key_Escape);
            EXPECT_TRUE(window->isVisible());
        });
        click("cmdSave");
        EXPECT_EQ(wire().commands().size() - first, 2U);
        EXPECT_EQ(record.Timebase, 0.25);
        if (!reached) {
            EXPECT_GT(turn, 4);
            break;
        }
        EXPECT_FALSE(window->isVisible());
        pump.runPosted();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_TRUE(window.isNull());
        EXPECT_EQ(polling.holds, 0);
    }
}

TEST_F(SystemWindow, MayGoInTheMidstOfASave) {
    open();
    pump.atPump(2, [this] { delete window.data(); });
    find<QPushButton>("cmdSave")->click();
    EXPECT_EQ(wire().commands().size(), 2U);
}

} // namespace
} // namespace drx9
