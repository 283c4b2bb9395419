// The communications window on scripted links: what it shows, what its controls change, what goes over the
// wire.
#include "fakes/FakePolling.h"
#include "link/DiscoveryBench.h"
#include "link/frmComm.h"
#include "ui/UiFixture.h"

#include <QAccessible>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QScopeGuard>
#include <QWheelEvent>

namespace drx9 {
namespace {

/// What the window asks of the program, as words.
struct FakeProgram : LinkSetupAccess, FakePolling {
    EventList events;
    std::function<void()> onClosed;

    void linkSetupOpened() override { events.push_back("opened, holds " + std::to_string(holds)); }
    void linkFound() override { events.emplace_back("found"); }
    void linkSetupClosed(bool reopen, bool sameLink) override {
        events.push_back(std::string("closed") + (reopen ? ", reopen" : "") + (sameLink ? ", same" : "") +
                         ", holds " + std::to_string(holds));
        if (onClosed) {
            onClosed();
        }
    }
    void filmUnconfirmed() override { events.emplace_back("film unconfirmed"); }
};

class CommWindow : public testing::Test, protected Controls {
protected:
    CommWindow() {
        for (FakeWire* wire : {&bench.serial.wire, &bench.usb.wire, &bench.socket.wire}) {
            wire->setAnswerer([this](const std::string& command) { return answer(command); });
        }
        settings.Port = 3;
        owner.show();
    }
    void TearDown() override { delete window.data(); }

    std::string answer(const std::string& command) const {
        if (silent) {
            return {};
        }
        return command == "@"     ? good("DRX-9 Ver 4.12")
               : command == "bad" ? replyPacket('C', "")
                                  : good("2.5");
    }
    void open(std::int16_t type) {
        settings.CommType = LinkType{type};
        window = new frmComm({settings, bench.link, bench.discovery, bench.transports.serial,
                              bench.transports.usb, shell, bench.boxes, bench.actions, program, program},
                             &owner);
        window->open();
        window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window));
        program.events.clear();
    }
    [[nodiscard]] QWidget& top() const override { return *window; }
    void choose(const char* name, int entry) {
        auto* list = find<QComboBox>(name);
        list->setFocus();
        while (list->currentIndex() != entry) {
            QTest::keyClick(list, list->currentIndex() < entry ? Qt::Key_Down : Qt::Key_Up);
        }
    }
    /// Lets the window's own timer and deferred events run.
    static void settle() { QTest::qWait(0); }

    DiscoveryBench bench;
    LinkSettings& settings = bench.settings;
    FakeProgram program;
    FakeShell shell;
    QWidget owner;
    QPointer<frmComm> window;
    bool silent = false;
};

TEST_F(CommWindow, EachLinkShowsItsControlsAndNoOthers) {
    const std::pair<const char*, int> pages[] = {
        {"cboBaud", 0}, {"cboUSB", 1}, {"txtEport", 2}, {"cmdESetup", 2}};
    open(1);
    EXPECT_TRUE(window->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    EXPECT_EQ(window->windowModality(), Qt::WindowModal);
    EXPECT_EQ(find<QComboBox>("cboUSB")->count(), 0) << "no search yet";
    const QSize size = window->size();
    for (const int link : {0, 1, 2, 0}) {
        click(("optComm_" + std::to_string(link)).c_str());
        EXPECT_EQ(static_cast<int>(settings.CommType), link);
        EXPECT_EQ(window->size(), size);
        for (const auto& [name, page] : pages) {
            EXPECT_EQ(find(name)->isVisible(), page == link) << name;
        }
    }
}

TEST_F(CommWindow, LoadingReopensNothingAndTheListsDo) {
    const auto restore = qScopeGuard([before = QLocale()] { QLocale::setDefault(before); });
    QLocale::setDefault(QLocale(QStringLiteral("ar_EG"))); // digits of its own, none of them for the wire
    bench.use(0);
    bench.serial.calls = 0;
    open(0);
    EXPECT_EQ(bench.serial.calls, 0);
    EXPECT_EQ(find<QComboBox>("cboRS232")->currentText(), "COM3");
    choose("cboBaud", 2);
    EXPECT_EQ(settings.Baud, 9600);
    EXPECT_EQ(bench.serial.calls, 0) << "a rate opens no port";
    choose("cboRS232", 3);
    EXPECT_EQ(settings.Port, 4);
    EXPECT_EQ(bench.serial.number, 4);
    EXPECT_EQ(bench.serial.settings, "9600,N,8,1");
    bench.serial.refusal = "/dev/fake5 is in use by another program.";
    bench.boxes.expectShow("Comm Port 5 not available.");
    choose("cboRS232", 4);
    EXPECT_EQ(settings.Port, 5);
    EXPECT_EQ(textOf("lblState"),
              "Off line: Comm Port 5 not available. /dev/fake5 is in use by another program.");
    click("optComm_2");
    bench.boxes.expectShow("Comm Port 5 not available.");
    click("optComm_0");
    bench.serial.calls = 0;
    QWheelEvent wheel({5, 5}, window->mapToGlobal(QPointF(5, 5)), {}, {0, 120}, Qt::NoButton, {}, {}, false);
    QApplication::sendEvent(find<QComboBox>("cboRS232"), &wheel);
    EXPECT_EQ(bench.serial.calls, 0);
}

TEST_F(CommWindow, SettingsOutsideTheListsStay) {
    settings.Port = 12;
    settings.Baud = 14400;
    open(2);
    click("optComm_0");
    EXPECT_EQ(find<QComboBox>("cboRS232")->currentIndex(), -1);
    EXPECT_EQ(find<QComboBox>("cboBaud")->currentIndex(), -1);
    EXPECT_EQ(bench.serial.calls, 0) << "port 0 is refused untouched, without a box";
    const QString device =
        find<QLabel>("lblDevice")->toolTip(); // the whole text, where the font is too wide for it
    EXPECT_EQ((device.isEmpty() ? textOf("lblDevice") : device.toStdString()) + ", " + textOf("lblBaud"),
              "COM12 is set: choose another, 14400 baud is set");
}

TEST_F(CommWindow, DevicesAndBridgesAreFollowed) {
    bench.serial.devices[3] = "";
    bench.usb.devices = {{"83F5", "A"}, {"83F5", "B"}};
    settings.USBSerNum = "B";
    bench.discovery.Comm_FindUSBDRX9("B");
    open(0);
    EXPECT_EQ(textOf("lblDevice"), "no device");
    bench.serial.devices[3] = "/dev/ttyUSB7";
    EXPECT_TRUE(QTest::qWaitFor([this] { return textOf("lblDevice") == "/dev/ttyUSB7"; }));
    EXPECT_EQ(find<QComboBox>("cboRS232")->itemData(2, Qt::ToolTipRole), "/dev/ttyUSB7");
    click("optComm_1");
    EXPECT_EQ(find<QComboBox>("cboUSB")->currentText(), "B");
    bench.usb.devices.pop_back();
    EXPECT_TRUE(QTest::qWaitFor(
        [this] { return textOf("lblBridges") == "1 DRX-9 bridge attached, 2 listed: press Find"; }));
    EXPECT_EQ(find<QComboBox>("cboUSB")->count(), 2) << "the list itself waits for a search";
}

TEST_F(CommWindow, FindTellsTheVersionOrTheReason) {
    open(2);
    type("txtSend", "P1");
    type("txtEAddr", "10.0.0.1"); // still in the field when its button is pressed by a key
    bench.boxes.expectShow("Found DRX-9 Ver. 4.12", [this] {
        EXPECT_EQ(program.events, EventList{"found"});
        EXPECT_TRUE(bench.actions.busy()) << "nothing runs behind the box";
    });
    QTest::keyClick(find<QLineEdit>("txtEAddr"), Qt::Key_Return);
    EXPECT_EQ(bench.socket.host, "10.0.0.1");
    EXPECT_EQ(textOf("txtSend"), "");
    EXPECT_EQ(textOf("lblState"), "On line: Ver. 4.12");
    bench.socket.drop();
    EXPECT_TRUE(QTest::qWaitFor(
        [this] { return textOf("lblState") == "Off line: 10.0.0.1:2101 is no longer open"; }));
    type("txtEport", "9999"); // nor left when a screen reader presses it
    bench.socket.connectDelay = -1;
    QAccessible::queryAccessibleInterface(find("cmdFind"))
        ->actionInterface()
        ->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(QTest::qWaitFor([this] { return bench.socket.port == 9999; }));
    EXPECT_EQ(textOf("lblState"), "Off line: No connection to 10.0.0.1 port 9999: no answer within 1 s");
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(CommWindow, FindRefillsTheBridgesAndLeavesTheChoiceToTheOperator) {
    open(1);
    bench.usb.devices = {{"83F5", "A"}, {"83F5", "B"}};
    click("cmdFind");
    EXPECT_EQ(find<QComboBox>("cboUSB")->currentText(), "A");
    EXPECT_EQ(settings.USBSerNum, "0") << "shown, not chosen";
    EXPECT_EQ(textOf("lblSerialNumber"), "0 is set: choose one");
    bench.usb.why = "/dev/ttyUSB0 belongs to group dialout";
    click("cmdFind");
    EXPECT_EQ(textOf("lblState"), "Off line: No DRX-9 with serial number 0 among the 2 found on USB. "
                                  "/dev/ttyUSB0 belongs to group dialout");
    choose("cboUSB", 1);
    EXPECT_EQ(settings.USBSerNum, "B");
    bench.boxes.expectShow("Found DRX-9 Ver. 4.12");
    click("cmdFind");
    EXPECT_EQ(find<QComboBox>("cboUSB")->currentText(), "B");
}

TEST_F(CommWindow, SendShowsTheReplyOrTheStatusText) {
    bench.use(2);
    open(2);
    auto* line = find<QLineEdit>("txtSend");
    using Case = std::pair<const char*, const char*>;
    for (const auto& [command, response] : {Case{"P1", "2.5"}, {"bad", "Bad Command"}, {"D4", "Timeout"}}) {
        silent = command == std::string("D4");
        bench.socket.wire.forget();
        type("txtSend", command);
        bench.pump.atPump(1, [&] {
            EXPECT_FALSE(find("cmdSend")->isEnabled());
            EXPECT_EQ(textOf("txtRcv"), "");
            EXPECT_NE(QApplication::overrideCursor(), nullptr);
        });
        QTest::keyClick(line, Qt::Key_Return);
        EXPECT_EQ(textOf("txtRcv"), response);
        EXPECT_EQ(bench.socket.wire.packets(), std::vector<std::string>{commandPacket(command)});
        EXPECT_TRUE(find("cmdSend")->isEnabled());
    }
    EXPECT_EQ(program.events, EventList{"film unconfirmed"});
    EXPECT_EQ(textOf("lblState"), "No answer on 192.168.1.200:2101 to this command");
    bench.socket.wire.forget();
    type("txtSend", "Z");
    line->insert(QString::fromUtf8("\xCE\xA9")); // as a paste does
    QTest::keyClick(line, Qt::Key_Return);
    EXPECT_TRUE(bench.socket.wire.packets().empty());
    EXPECT_EQ(textOf("lblState").rfind("Not sent: ", 0), 0U);
    EXPECT_EQ(program.events.size(), 1U);
    QTest::keyClick(line, Qt::Key_Up);
    QTest::keyClick(line, Qt::Key_Up);
    EXPECT_EQ(textOf("txtSend"), "bad");
}

TEST_F(CommWindow, NothingEntersAnExchangeAndCloseWaitsForItsEnd) {
    bench.use(2);
    open(2);
    type("txtSend", "P1");
    int changes = 0;
    bench.pump.atPump(2, [&] {
        click("cmdFind");
        click("cmdSend");
        click("cmdESetup");
        click("optComm_0");
        changes = bench.serial.calls;
        click("cmdOK");
        window->close();
        settle();
        EXPECT_TRUE(window->isVisible());
    });
    bench.serial.calls = 0;
    silent = true;
    click("cmdSend");
    EXPECT_EQ(bench.socket.wire.commands(), std::vector<std::string>{"P1"});
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(settings.CommType, LinkType::Ethernet);
    EXPECT_TRUE(find<QRadioButton>("optComm_2")->isChecked());
    EXPECT_EQ(textOf("txtRcv"), "Timeout");
    settle();
    EXPECT_EQ(program.events, (EventList{"closed, same, holds 1"}));
    settle();
    EXPECT_EQ(window, nullptr);
}

TEST_F(CommWindow, ClosingTellsWhatBecameOfTheLink) {
    const auto press = [this] { click("cmdOK"); };
    const auto escape = [this] { QTest::keyClick(window, Qt::Key_Escape); };
    const auto box = [this] { window->close(); };
    const auto usb = [this] { click("optComm_1"); };
    const auto typed = [this] { type("txtEAddr", "10.0.0.2"); };
    const struct {
        const char* name;
        bool good;
        std::function<void()> change;
        std::function<void()> close;
        const char* told;
    } cases[] = {
        {"lost, nothing changed", false, [] {}, press, "closed, same, holds 1"},
        {"good, by Esc", true, [] {}, escape, "closed, reopen, same, holds 1"},
        {"address still being typed, by the close box", false, typed, box, "closed, reopen, holds 1"},
        {"another type", false, usb, press, "closed, reopen, holds 1"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        bench.link.setCommOK(c.good);
        open(2);
        EXPECT_EQ(program.holds, 1);
        program.onClosed = [&] { EXPECT_FALSE(window->isVisible()) << "the main window has work to show"; };
        c.change();
        c.close();
        settle();
        settle();
        EXPECT_EQ(program.events, EventList{c.told});
        EXPECT_EQ(program.holds, 0);
        EXPECT_EQ(window, nullptr);
    }
    EXPECT_EQ(settings.EAddress, "10.0.0.2");
}

TEST_F(CommWindow, MayGoWithAFieldStillBeingTyped) {
    open(2);
    shell.reason = "dgdiscvr.exe was not found.";
    bench.boxes.expectShow(shell.reason);
    click("cmdESetup");
    type("txtEAddr", "10.0.0.3");
    delete window; // with its owner, say: nothing may reach for it from its field
    EXPECT_EQ(program.holds, 0);
}

} // namespace
} // namespace drx9
