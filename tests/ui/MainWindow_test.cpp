// The main window on a scripted instrument: what it shows in each state, and what its controls do.
#include "ui/UiFixture.h"

#include "controls/NoticePlate.h"
#include "controls/Readout.h"
#include "films/frmFilm.h"
#include "graphs/frmGraphSet.h"
#include "link/frmComm.h"
#include "monitor/frmDataLog.h"
#include "system/frmSystem.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QMenuBar>
#include <QPushButton>
#include <QSet>
#include <QWheelEvent>

namespace drx9 {
namespace {

class MainWindow : public UiFixture {};

TEST_F(MainWindow, NoTwoShortcutsAndNoTwoMnemonicsOfAMenuAreTheSame) {
    QSet<QString> seen{{}};
    for (const QMenu* menu : window->menuBar()->findChildren<QMenu*>()) {
        for (const QAction* item : menu->actions()) {
            const QString mnemonic = QKeySequence::mnemonic(item->text()).toString();
            for (const QString& key :
                 {item->shortcut().toString(), mnemonic.isEmpty() ? "" : menu->title() + mnemonic}) {
                EXPECT_FALSE(seen.contains(key) && !key.isEmpty()) << key.toStdString();
                seen.insert(key);
            }
        }
    }
    EXPECT_GT(seen.size(), 20);
}

TEST_F(MainWindow, HidesTheRunControlsOffLine) {
    silent = true;
    boxes.allow("Instrument not found");
    core.lifecycle.Form_Load();
    EXPECT_EQ(window->windowTitle().toStdString(), "DRX9 Comm - [Off Line]");
    for (const char* name : {"cmdStartStop", "cmdZero", "cmdShutter", "cboFilms", "lblFilm"}) {
        EXPECT_FALSE(find(name)->isVisible()) << name;
    }
    EXPECT_TRUE(find("lblNotFound")->isVisible());
    EXPECT_EQ(textOf("TxtData_1"), "");
    EXPECT_TRUE(find<QAction>("mnuSetupComm")->isEnabled());
    QTest::keyClick(window.get(), Qt::Key_F9, Qt::ShiftModifier); // dead while hidden
    EXPECT_FALSE(core.desk.waiting().startStop);
}

TEST_F(MainWindow, ButtonsRaiseRequestsAndStayDownUntilTheyAreCarriedOut) {
    bringUp();
    const std::tuple<const char*, Qt::Key, bool Requests::*> presses[] = {
        {"cmdZero", Qt::Key_F7, &Requests::zero},
        {"cmdShutter", Qt::Key_F8, &Requests::shutter},
        {"cmdStartStop", Qt::Key_F9, &Requests::startStop}};
    for (const auto& [name, key, flag] : presses) {
        for (const bool byKey : {false, true}) {
            SCOPED_TRACE(testing::Message() << name << byKey);
            byKey ? QTest::keyClick(window.get(), key, Qt::ShiftModifier) : click(name);
            EXPECT_TRUE(core.desk.waiting().*flag);
            EXPECT_TRUE(find<QPushButton>(name)->isDown());
            tick();
            EXPECT_FALSE(find<QPushButton>(name)->isDown());
        }
    }
}

TEST_F(MainWindow, OnlyTheOperatorsChoiceOfAFilmIsARequest) {
    bringUp();
    auto* list = find<QComboBox>("cboFilms");
    list->setFocus();
    for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Up, Qt::Key_PageDown, Qt::Key_End, Qt::Key_Home}) {
        QTest::keyClick(list, key);
        EXPECT_EQ(list->currentIndex(), 0) << key;
    }
    QWheelEvent wheel(QPointF(5, 5), list->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(list, &wheel);
    EXPECT_EQ(list->currentIndex(), 0);
    EXPECT_FALSE(core.desk.waiting().film);
    const std::pair<Qt::Key, const char*> ways[] = {{Qt::Key_F4, "D2"}, {Qt::Key_Space, "D3"}};
    for (const auto& [open, command] : ways) {
        QTest::keyClick(list, open);
        ASSERT_TRUE(list->view()->isVisible());
        QTest::keyClick(list->view(), Qt::Key_Down);
        EXPECT_FALSE(core.desk.waiting().film) << "only looked at";
        QTest::keyClick(list->view(), Qt::Key_Return);
        EXPECT_TRUE(core.desk.waiting().film);
        EXPECT_EQ(requestsOfTick().front(), command);
    }
    QTest::keyClicks(list, "F"); // typed: the opened list looks for it
    ASSERT_TRUE(list->view()->isVisible());
    QTest::keyClicks(list->view(), "ILM_9");
    QTest::keyClick(list->view(), Qt::Key_Return);
    EXPECT_EQ(requestsOfTick().front(), "D9");
}

TEST_F(MainWindow, ARunLocksSetupAndTurnsTheButtonRed) {
    bringUp();
    click("cmdStartStop");
    tick();
    tick();
    EXPECT_EQ(textOf("cmdStartStop"), "STOP");
    for (const char* name :
         {"mnuFileLog", "mnuSetupFilms", "mnuSetupSystem", "mnuSetupComm", "mnuHelpAbout"}) {
        EXPECT_FALSE(find<QAction>(name)->isEnabled()) << name;
    }
    EXPECT_FALSE(find<QComboBox>("cboFilms")->isEnabled());
    const QImage face = find("cmdStartStop")->grab().toImage();
    const double scale = face.devicePixelRatio();
    const QPoint corner(static_cast<int>(20 * scale), static_cast<int>(15 * scale));
    EXPECT_EQ(face.pixelColor(corner), QColor(255, 0, 0));
    click("cmdStartStop");
    tick();
    EXPECT_EQ(textOf("cmdStartStop"), "START");
    EXPECT_EQ(find("cmdStartStop")->grab().toImage().pixelColor(corner), QColor(0, 255, 0));
}

TEST_F(MainWindow, FailedReadingsTurnSlantedAndOldOnesThenDated) {
    special["L2"] = replyPacket('D', "");
    bringUp();
    tick();
    const auto slanted = [this](const char* name) { return find(name)->font().italic(); };
    EXPECT_FALSE(slanted("TxtData_1") || slanted("TxtData_3"));
    EXPECT_TRUE(slanted("TxtData_4"));
    silent = true;
    clock.advance(0.8);
    window->changed();
    EXPECT_TRUE(slanted("TxtData_1"));
    EXPECT_FALSE(slanted("TxtData_9"));
    EXPECT_EQ(find<NoticePlate>("lblNotice")->text(), QString());
    clock.advance(13);
    window->changed();
    EXPECT_EQ(find<NoticePlate>("lblNotice")->text().toStdString(), "No reply for 13 s. Trying again.");
    EXPECT_NE(charts.chart(1).note().toStdString().find("No readings since"), std::string::npos);
    silent = false;
    tick(); // reconnects where the link had been given up
    tick();
    EXPECT_FALSE(slanted("TxtData_1"));
    EXPECT_EQ(find<NoticePlate>("lblNotice")->text(), QString());
}

TEST_F(MainWindow, ViewItemsFollowWhatIsShownNotTheClick) {
    bringUp();
    choose("mnuGraphChanThk");
    choose("mnuSensorFreq");
    EXPECT_TRUE(find("oc2ChanThick")->isVisible());
    EXPECT_FALSE(find("oc2AvgRate")->isVisible());
    EXPECT_EQ(textOf("LblData_3"), "Freq 1 (Hz)");
    choose("mnuSensorFreq"); // already checked: stays so
    EXPECT_TRUE(find<QAction>("mnuSensorFreq")->isChecked());
    EXPECT_FALSE(find<QAction>("mnuSensorRate")->isChecked());
    {
        const ActionQueue::Scope exchange(actions);
        choose("mnuGraphAvgRate");
        EXPECT_TRUE(find<QAction>("mnuGraphAvgRate")->isChecked());
        choose("mnuSensorThick");
        EXPECT_EQ(textOf("LblData_3"), "Thick 1 (kA)");
    }
}

TEST_F(MainWindow, InMidExchangeWindowsOpenAtOnceAndWhatTalksWaits) {
    bringUp();
    {
        const ActionQueue::Scope exchange(actions);
        choose("mnuFileLog");
        EXPECT_NE(window->findChild<frmDataLog*>(), nullptr);
        choose("mnuSetupGraphs");
        EXPECT_NE(window->findChild<frmGraphSet*>(), nullptr);
        choose("mnuSetupFilms");
        choose("mnuSetupSystem");
        choose("mnuSetupComm");
        EXPECT_EQ(window->findChild<frmSystem*>(), nullptr);
        find<QAction>("mnuSetupFilms")->setEnabled(false); // as when a run has begun meanwhile
    }
    pump.runPosted();
    EXPECT_NE(window->findChild<frmSystem*>(), nullptr);
    EXPECT_EQ(window->findChild<frmFilm*>(), nullptr) << "locked at its turn";
    EXPECT_EQ(window->findChild<frmComm*>(), nullptr) << "a modal window stands";
    EXPECT_TRUE(timer.held());
    window->findChild<frmSystem*>()->close();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(timer.held());
    EXPECT_TRUE(ticker.on);
}

TEST_F(MainWindow, AModalWindowRefusesThePlainCloseAndDropsWhatWaits) {
    bringUp();
    QDialog modal(window.get());
    {
        const ActionQueue::Scope exchange(actions);
        choose("mnuSetupSystem");
        modal.setModal(true);
        modal.show();
    }
    pump.runPosted();
    EXPECT_TRUE(boxes.shown().empty());
    window->close();
    pump.runPosted();
    EXPECT_TRUE(window->isVisible());
    modal.close();
    window->close();
    EXPECT_FALSE(window->isVisible());
}

TEST_F(MainWindow, AWindowThatHoldsTheTimerLocksTheRunBar) {
    bringUp();
    find("cmdShutter")->setFocus();
    {
        const PollTimer::Hold hold(timer, "System Parameters is open");
        window->changed();
        for (const char* name : {"cboFilms", "cmdZero", "cmdShutter", "cmdStartStop"}) {
            EXPECT_FALSE(find(name)->isEnabled()) << name;
        }
        for (const Qt::Key key : {Qt::Key_F7, Qt::Key_F8, Qt::Key_F9}) {
            QTest::keyClick(window.get(), key, Qt::ShiftModifier);
        }
        EXPECT_EQ(window->focusWidget(), nullptr);
        const Requests& requests = core.desk.waiting();
        EXPECT_FALSE(requests.zero || requests.shutter || requests.startStop);
    }
    window->changed();
    EXPECT_TRUE(find("cmdZero")->isEnabled());
    EXPECT_EQ(window->focusWidget(), find("cmdShutter")) << "the focus comes back";
}

TEST(RunBarPanel, ShowsAFilmThatTheListDoesNotHoldAndMarksIt) {
    RunBar bar(nullptr);
    bar.setStep(measuresOf(SizeStep::S));
    EXPECT_LE(bar.minimumSizeHint().width(), 940);
    bar.show();
    const std::vector<std::string> films{"ALUM_5K", "CHROME"};
    auto* list = bar.findChild<QComboBox*>("cboFilms");
    auto* mark = bar.findChild<QWidget*>("mrkFilm");
    const int left = list->x();
    const struct {
        int index;
        const char* name;
        const char* mark;
    } cases[] = {{0, "ALUM_5K", ""}, {-1, "GOLD", "Not confirmed"}, {-1, "", ""}, {1, "CHROME", "No reply"}};
    for (const auto& c : cases) {
        bar.showFacts({.started = true,
                       .onLine = true,
                       .films = films,
                       .filmIndex = c.index,
                       .filmName = QString::fromLatin1(c.name),
                       .filmMark = QString::fromLatin1(c.mark)});
        EXPECT_EQ(list->currentIndex(), c.index) << c.name;
        EXPECT_EQ(list->placeholderText().toStdString(), c.name);
        EXPECT_EQ(mark->isVisible(), c.mark[0] != 0) << c.name;
        EXPECT_EQ(mark->toolTip().toStdString(), c.mark);
        EXPECT_EQ(list->x(), left) << "nothing moves by itself";
    }
}

TEST_F(MainWindow, ADigitIsNeverCut) {
    const char* texts[] = {"9.99", "999.99", "-9.999", "6000000.0", "123456789.12"};
    for (const QSize size : {QSize(940, 540), QSize(1280, 800), QSize(1720, 900)}) {
        window->resize(size);
        for (const char* text : texts) {
            for (const char* name : {"TxtData_1", "TxtData_2", "TxtData_3", "TxtData_9"}) {
                auto* readout = find<Readout>(name);
                readout->showText(QString::fromLatin1(text));
                EXPECT_LE(QFontMetrics(readout->font()).horizontalAdvance(readout->text()), readout->width())
                    << name << " " << text;
            }
        }
    }
}

TEST_F(MainWindow, ArrowsAndF6ReachEverything) {
    window->showWindow();
    bringUp();
    tick();
    window->activateWindow();
    EXPECT_EQ(window->focusWidget(), find("cboFilms")) << "as the program starts";
    find("TxtData_1")->setFocus();
    const std::pair<Qt::Key, std::vector<const char*>> ways[] = {
        {Qt::Key_Right, {"TxtData_2", "TxtData_9", "TxtData_10", "TxtData_11", "TxtData_3"}},
        {Qt::Key_F6, {"oc2AvgRate", "cboFilms", "TxtData_1"}}};
    for (const auto& [pressed, names] : ways) {
        for (const char* next : names) {
            key(pressed);
            ASSERT_NE(QApplication::focusWidget(), nullptr);
            EXPECT_EQ(QApplication::focusWidget()->objectName().toStdString(), next);
        }
    }
    click("cmdStartStop");
    tick();
    EXPECT_EQ(window->focusWidget(), find("cmdStartStop")) << "in a run";
}

} // namespace
} // namespace drx9
