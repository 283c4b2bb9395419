// The charts and their windows as the acquisition cycle and the operator work them.
#include "controls/Theme.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeEventPump.h"
#include "fakes/FakeFileDialogs.h"
#include "fakes/FaultyFilePort.h"
#include "fakes/MemoryFilePort.h"
#include "graphs/controls/ChartControl.h"
#include "graphs/frmGraphSet.h"
#include "link/ActionQueue.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QCheckBox>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPaintEvent>
#include <QPointer>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTableWidget>
#include <QTest>
#include <QWheelEvent>

#include <gtest/gtest.h>

namespace drx9 {
namespace {

struct LastPage : PrintDialog {
    std::string png;
    Result answer{true, ""};
    Result printPicture(const std::string&, std::string_view picture) override {
        png = picture;
        return answer;
    }
};

class Chart : public testing::Test {
protected:
    Chart() {
        memory.put("/app/keep", "");
        charts.chart(1).hide();
        chart.resize(900, 500);
        chart.show();
        chart.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&chart));
        settle();
    }
    static void settle() { QTest::qWait(20); }
    void run(double from, double to) {
        for (double t = from; t <= to; t += 0.25) {
            for (int s = 1; s <= 6; ++s) {
                graph.append(s, t, level(s));
            }
            graph.redraw();
        }
    }
    static double level(int s) { return 2.5 * s; }
    /// Where a reading is in the window.
    [[nodiscard]] QPoint place(double t, double value) const {
        const QRect plot = chart.plotRect();
        const double top = graph.shownYMax();
        const double bottom = graph.shownYMin();
        return {static_cast<int>(plot.left() + t / 300 * plot.width()),
                static_cast<int>(plot.top() + (top - value) / (top - bottom) * plot.height())};
    }
    [[nodiscard]] QImage picture() { return chart.grab().toImage(); }
    /// Ink of a sensor's colour at a place, or next above or below it.
    static bool inked(const QImage& seen, const QPoint& at, int sensor) {
        const QColor ink = Theme::light().sensor(sensor);
        for (const int row : {-1, 0, 1}) {
            const QColor found = seen.pixelColor(at.x(), at.y() + row);
            if (std::abs(found.red() - ink.red()) + std::abs(found.green() - ink.green()) +
                    std::abs(found.blue() - ink.blue()) <
                200) {
                return true;
            }
        }
        return false;
    }
    void hover(const QPoint& at) {
        QTest::mouseMove(&chart, at);
        settle();
    }
    [[nodiscard]] std::string said() { // at most a second old
        QTest::qWait(1300);
        return chart.accessibleDescription().toStdString();
    }
    QMenu* menu() {
        QTest::keyClick(&chart, Qt::Key_F10, Qt::ShiftModifier);
        return qobject_cast<QMenu*>(QApplication::activePopupWidget());
    }
    bool choose(const char* caption) {
        QMenu* shown = menu();
        for (QAction* item : shown != nullptr ? shown->actions() : QList<QAction*>()) {
            if (item->text().startsWith(QLatin1String(caption))) {
                QTest::mouseClick(shown, Qt::LeftButton, {}, shown->actionGeometry(item).center());
                return true;
            }
        }
        return false;
    }

    MemoryFilePort memory;
    FaultyFilePort files{memory};
    FakeFileDialogs dialogs;
    LastPage printer;
    int placed = 0;
    FakeClock clock;
    FakeEventPump pump{clock};
    ActionQueue actions{pump};
    ChartSet charts{{&files, &dialogs, &printer,
                     [this](std::function<void()> action) { actions.runWhenIdle(std::move(action)); }, &pump,
                     "/app", [this](QWidget&) { ++placed; }}};
    ChartControl& chart = charts.chart(2);
    ChartGraph& graph = charts.graph(2);
};

TEST_F(Chart, CurvesStandWhereTheReadingsAre) {
    run(0, 200);
    for (const int width : {900, 640}) {
        chart.resize(width, 500);
        settle();
        const QImage seen = picture();
        for (int s = 1; s <= 6; ++s) {
            const QPoint at = place(150, level(s));
            EXPECT_TRUE(inked(seen, at, s)) << s << " at " << width;
            EXPECT_FALSE(inked(seen, place(250, level(s)), s)) << s;
        }
    }
    charts.chart(2).setSensorCount(4);
    QTest::keyClick(&chart, Qt::Key_2);
    QTest::keyClick(&chart, Qt::Key_5); // there is no such sensor
    settle();
    const QImage seen = picture();
    for (const auto& [s, drawn] : {std::pair{1, true}, {2, false}, {4, true}, {5, false}}) {
        EXPECT_EQ(inked(seen, place(150, level(s)), s), drawn) << s;
    }
}

TEST_F(Chart, ATickPaintsOnlyWhereReadingsCame) {
    struct Painted : QObject {
        QRect last;
        bool eventFilter(QObject*, QEvent* event) override {
            last = event->type() == QEvent::Paint ? static_cast<QPaintEvent*>(event)->rect() : last;
            return false;
        }
    } painted;
    run(0, 100);
    settle();
    chart.installEventFilter(&painted);
    run(100.25, 101);
    settle();
    EXPECT_LT(painted.last.width(), 100);
    EXPECT_TRUE(painted.last.contains(place(101, level(3))));
    QTest::keyClick(&chart, Qt::Key_3);
    settle();
    EXPECT_EQ(painted.last, chart.rect());
    EXPECT_TRUE(inked(picture(), place(100.5, level(4)), 4));
    EXPECT_FALSE(inked(picture(), place(50, level(3)), 3));
}

TEST_F(Chart, TheOperatorsViewIsNotPulledAway) {
    QTest::keyClick(&chart, Qt::Key_Right);
    EXPECT_FALSE(chart.following());
    EXPECT_EQ(chart.note().toStdString(), "Following paused. Home returns");
    const QRect plot = chart.plotRect();
    graph.setXMin(75);
    graph.setXwide(300);
    EXPECT_EQ(graph.XMin(), 75);
    EXPECT_FALSE(chart.following());
    chart.setSilence(QStringLiteral("No readings since 14:09:04"));
    EXPECT_EQ(chart.note().toStdString(), "No readings since 14:09:04. Following paused. Home returns");
    EXPECT_EQ(chart.plotRect(), plot) << "a note moves nothing";
    chart.setSilence({});
    QTest::keyClick(&chart, Qt::Key_Home);
    EXPECT_TRUE(chart.following());
    EXPECT_EQ(chart.note(), QString());
}

TEST_F(Chart, MouseAndWheelOverPlotAndAxes) {
    const QRect plot = chart.plotRect();
    const auto wheel = [this](const QPoint& at) {
        return [this, at] {
            QWheelEvent event(at, chart.mapToGlobal(at), {}, {0, 120}, Qt::NoButton, Qt::NoModifier,
                              Qt::NoScrollPhase, false);
            QApplication::sendEvent(&chart, &event);
        };
    };
    const auto drag = [this](const QPoint& from, const QPoint& by) {
        return [this, from, by] {
            QTest::mousePress(&chart, Qt::LeftButton, {}, from);
            QTest::mouseMove(&chart, from + by / 2);
            QTest::mouseMove(&chart, from + by);
            QTest::mouseRelease(&chart, Qt::LeftButton, {}, from + by);
        };
    };
    const auto press = [this](Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        return [=, this] { QTest::keyClick(&chart, key, modifiers); };
    };
    const QPoint middle = plot.center();
    QTest::mousePress(&chart, Qt::LeftButton, {}, middle); // and a menu takes the release
    QMouseEvent hovers(QEvent::MouseMove, middle + QPoint(50, 50), chart.mapToGlobal(middle), Qt::NoButton,
                       Qt::NoButton, {});
    QApplication::sendEvent(&chart, &hovers);
    EXPECT_TRUE(chart.following());
    QTest::mouseRelease(&chart, Qt::LeftButton, {}, middle);
    const QPoint onX(middle.x(), plot.bottom() + 20);
    const QPoint onY(plot.left() - 20, middle.y());
    struct Case {
        const char* what;
        std::function<void()> act;
        bool x, y;
    };
    const Case cases[] = {
        {"wheel", wheel(middle), true, true},
        {"wheel on X", wheel(onX), true, false},
        {"wheel on Y", wheel(onY), false, true},
        {"drag", drag(middle, {40, 40}), true, true},
        {"drag on X", drag(onX, {40, 5}), true, false},
        {"drag on Y", drag(onY, {5, 40}), false, true},
        {"a click", drag(middle, {1, 1}), false, false},
        {"zoom key", press(Qt::Key_Plus), true, true},
        {"Y key", press(Qt::Key_Minus, Qt::ShiftModifier), false, true},
        {"X key", press(Qt::Key_Minus, Qt::ControlModifier), true, false},
    };
    for (const Case& c : cases) {
        c.act();
        EXPECT_EQ(chart.following(), !c.x) << c.what;
        EXPECT_EQ(graph.shownYMax() != 20 || graph.shownYMin() != 0, c.y) << c.what;
        EXPECT_EQ(graph.Xwide(), 300) << c.what;
        graph.setYMax(graph.shownYMax()); // as the cycle does at each point
        graph.setYMin(graph.shownYMin());
        QTest::mouseDClick(&chart, Qt::LeftButton, {}, middle);
        EXPECT_TRUE(chart.following()) << c.what;
        EXPECT_EQ(graph.shownYMax(), 20) << c.what;
    }
}

TEST_F(Chart, TracerReadsAndPins) {
    run(0, 200);
    hover(place(100, level(3)));
    EXPECT_EQ(said().substr(0, 28), "00:01:40.000   Sensor 3: 7.5");
    QTest::mouseClick(&chart, Qt::LeftButton, {}, place(100, level(3)));
    hover(place(120, level(5)));
    EXPECT_NE(said().find("+20."), std::string::npos) << said();
    EXPECT_NE(said().find("+5.00, +0.25"), std::string::npos) << said();
    EXPECT_TRUE(chart.following()) << "looking at a point is no change of view";
    QTest::mouseDClick(&chart, Qt::LeftButton, {}, place(120, level(5)));
    EXPECT_EQ(said().find("per s"), std::string::npos) << "a double click drops the pin and sets none";
    QTest::keyClick(&chart, Qt::Key_Right, Qt::ControlModifier);
    QTest::keyClick(&chart, Qt::Key_Space);
    QTest::keyClick(&chart, Qt::Key_Left, Qt::ControlModifier);
    EXPECT_NE(said().find("-0.250 s"), std::string::npos) << said();
    QTest::keyClick(&chart, Qt::Key_Escape);
    EXPECT_EQ(said().find("per s"), std::string::npos);
    struct Step {
        Qt::Key key;
        Qt::KeyboardModifier modifier;
        const char* read;
    };
    for (const Step& step : {Step{Qt::Key_Up, Qt::ControlModifier, "Sensor 4: 10.0"},
                             {Qt::Key_Down, Qt::ControlModifier, "Sensor 5: 12.5"},
                             {Qt::Key_5, Qt::NoModifier, "Sensor 6: 15.0"}}) { // hides what is read
        QTest::keyClick(&chart, step.key, step.modifier);
        EXPECT_EQ(said().find(step.read), 15U) << said();
    }
    EXPECT_NE(said().find("Newest: Sensor 1 2.50"), std::string::npos) << said();
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&chart);
    EXPECT_EQ(accessible->role(), QAccessible::Chart);
    EXPECT_TRUE(accessible->text(QAccessible::Help).contains(QLatin1String("Control with Up or Down")));
}

TEST_F(Chart, TheClickThatGivesTheFocusPinsNothing) {
    run(0, 200);
    QLineEdit other(&chart);
    other.show();
    other.setFocus();
    const QPoint at = place(100, level(3));
    QTest::mousePress(&chart, Qt::LeftButton, {}, at);
    QTest::qWait(400); // a slow hand
    QTest::mouseRelease(&chart, Qt::LeftButton, {}, at);
    ASSERT_TRUE(chart.hasFocus());
    hover(place(120, level(3)));
    EXPECT_EQ(said().find("per s"), std::string::npos);
    QTest::mouseClick(&chart, Qt::LeftButton, {}, at);
    hover(place(130, level(3)));
    EXPECT_NE(said().find("per s"), std::string::npos);
}

TEST_F(Chart, MenuAndLegendHideSeriesAndFit) {
    run(0, 100);
    const QImage before = picture();
    ASSERT_TRUE(choose("Sensor 4"));
    settle();
    EXPECT_FALSE(inked(picture(), place(50, level(4)), 4));
    const QPoint entry(before.width() - 60, 16); // the last one
    QTest::mouseClick(&chart, Qt::LeftButton, {}, entry);
    settle();
    EXPECT_FALSE(inked(picture(), place(50, level(6)), 6));
    QTest::keyClick(&chart, Qt::Key_F);
    EXPECT_NEAR(graph.shownYMax(), 12.5 + 0.5, 0.01);
    EXPECT_NEAR(graph.shownYMin(), 2.5 - 0.5, 0.01);
    EXPECT_TRUE(chart.following());
    QTest::keyClick(&chart, Qt::Key_W);
    EXPECT_FALSE(chart.following());
    EXPECT_NE(said().find("time 00:00:00 to 00:01:40"), std::string::npos) << said();
}

TEST_F(Chart, PicturesAndExportGoThroughTheFilePort) {
    run(0, 100);
    QTest::keyClick(&chart, Qt::Key_2);
    const std::pair<const char*, const char*> formats[] = {
        {"/app/a.png", "\x89PNG"}, {"/app/a.svg", "<?xml"}, {"/app/a.PDF", "%PDF"}};
    for (const auto& [path, begins] : formats) {
        dialogs.answer = path;
        ASSERT_TRUE(choose("Save picture"));
        EXPECT_EQ(memory.text(path).rfind(begins, 0), 0U) << path;
        EXPECT_GT(memory.text(path).size(), 2000U) << path;
    }
    EXPECT_NE(memory.text("/app/a.svg").find(">Sensor Rates (A/s)<"), std::string::npos);
    const std::string strike = "stroke=\"" + Theme::light().disabled.name().toStdString();
    EXPECT_NE(memory.text("/app/a.svg").find(strike), std::string::npos) << "the hidden sensor's entry";
    {
        const ActionQueue::Scope exchange(actions);
        const int asked = dialogs.asked;
        ASSERT_TRUE(choose("Export data"));
        EXPECT_EQ(dialogs.asked, asked) << "not in an exchange";
    }
    pump.runPosted();
    dialogs.answer = "/app/run.txt";
    ASSERT_TRUE(choose("Export data"));
    EXPECT_EQ(memory.text("/app/run.txt").rfind("Elapsed Time (s)\tSensor 1\tSensor 3\t", 0), 0U);
    files.fillAfter(100);
    chart.setSilence(QStringLiteral("No readings since 14:09:04")); // stays, and must not hide the rest
    dialogs.answer = "/app/full.txt";
    ASSERT_TRUE(choose("Export data"));
    EXPECT_NE(chart.note().toStdString().find("Data not saved: No space left"), std::string::npos);
    EXPECT_FALSE(memory.exists("/app/full.txt"));
    ASSERT_TRUE(choose("Print"));
    EXPECT_EQ(printer.png.substr(0, 4), "\x89PNG");
    EXPECT_EQ(chart.note(), "Picture printed");
}

// The configuration window.

class GraphSet : public Chart {
protected:
    GraphSet() {
        for (int number = 1; number <= 4; ++number) {
            charts.graph(number).Init();
        }
    }
    ~GraphSet() override { delete window.data(); }
    void open() {
        delete window.data();
        window = new frmGraphSet(charts, 2, nullptr);
        window->show();
    }
    [[nodiscard]] QSpinBox& spin(int index) {
        return *window->findChild<QSpinBox*>(QStringLiteral("spnSetup_%1").arg(index));
    }
    void click(const char* name) { window->findChild<QAbstractButton*>(QLatin1String(name))->click(); }
    QPointer<frmGraphSet> window; ///< deletes itself when it is closed
};

TEST_F(GraphSet, OkAppliesToTheCurrentGraphAndTheWidthToAll) {
    graph.setXwide(150);
    open();
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Configure Graph"));
    EXPECT_EQ(spin(0).value(), 2);
    EXPECT_EQ(spin(1).value(), 30);
    spin(0).setValue(0);
    spin(1).setFocus();
    spin(1).selectAll();
    QTest::keyClicks(&spin(1), QStringLiteral("45")); // and is still being typed
    spin(2).setValue(0);
    spin(3).setValue(10);
    spin(4).setValue(30);
    EXPECT_EQ(window->findChild<QLineEdit*>(QStringLiteral("lblReading_4"))->text(), QStringLiteral("30"));
    window->findChild<QCheckBox*>(QStringLiteral("chkXDiv"))->setChecked(false);
    click("cmdOK");
    EXPECT_TRUE(window == nullptr || !window->isVisible());
    EXPECT_EQ(graph.XDiv(), 1);
    EXPECT_EQ(graph.shownYMin(), 10);
    EXPECT_EQ(graph.YMax(), 30);
    EXPECT_FALSE(graph.XGrid_Enable());
    EXPECT_TRUE(graph.YGrid_Enable());
    for (int number = 1; number <= 4; ++number) {
        EXPECT_EQ(charts.graph(number).Xwide(), 45) << number;
        EXPECT_TRUE(memory.exists(charts.graph(number).Cfg_Filename())) << number;
    }
    EXPECT_EQ(charts.graph(4).YMax(), 5);
    EXPECT_TRUE(charts.graph(4).XGrid_Enable());
}

TEST_F(GraphSet, OkIsHomeAlsoForAZoomedAxis) {
    graph.setYMax(12);
    graph.setYMin(4); // as the cycle follows the operator's zoom
    open();
    click("cmdOK");
    QTest::keyClick(&chart, Qt::Key_Plus);
    EXPECT_GT(graph.shownYMin(), 4);
    QTest::keyClick(&chart, Qt::Key_Home);
    EXPECT_EQ(graph.shownYMin(), 4);
    EXPECT_EQ(graph.shownYMax(), 12);
    open();
    spin(3).setValue(12); // not below the other
    click("cmdOK");
    QTest::keyClick(&chart, Qt::Key_Home);
    EXPECT_NE(said().find("from 4 to 12"), std::string::npos) << said();
    EXPECT_EQ(graph.YMin(), 12) << "stored all the same";
}

TEST_F(GraphSet, CancelChangesNothingAndOkUntouchedKeepsTheLookAndTellsWhatWasNotSaved) {
    open();
    spin(4).setValue(7);
    click("cmdCancel");
    EXPECT_EQ(graph.YMax(), 20);
    EXPECT_FALSE(memory.exists(graph.Cfg_Filename()));
    const ChartLook design = designLook(graph.design());
    open();
    QSignalSpy told(window, &frmGraphSet::settingsNotSaved);
    files.fillAfter(10);
    click("cmdOK");
    EXPECT_EQ(graph.YMax(), design.y.maximum);
    EXPECT_EQ(graph.XDiv(), design.x.gridSpacing);
    EXPECT_EQ(graph.YDiv(), design.y.gridSpacing);
    EXPECT_EQ(graph.Xwide(), 300);
    EXPECT_TRUE(graph.XGrid_Enable());
    ASSERT_EQ(told.size(), 4);
    EXPECT_EQ(told[0][0].toString().toStdString(), "Graph settings not saved: No space left on device");
}

TEST_F(GraphSet, TheEditorShowsChangesAtOnceAndCancelTakesAllBack) {
    run(0, 200);
    open();
    for (const bool accepted : {false, true}) {
        click("CmdAdvanced");
        QWidget* editor = nullptr;
        for (QWidget* top : QApplication::topLevelWidgets()) {
            editor = top->objectName() == QLatin1String("ChartEditor") && top->isVisible() ? top : editor;
        }
        ASSERT_NE(editor, nullptr);
        editor->findChild<QSpinBox*>(QStringLiteral("edtYMax"))->setValue(2550); // 25.50
        editor->findChild<QTableWidget*>(QStringLiteral("edtSeries"))
            ->item(0, 1)
            ->setText(QStringLiteral("Left"));
        QLineEdit* title = editor->findChild<QLineEdit*>(QStringLiteral("edtYTitle"));
        title->selectAll();
        title->insert(
            QString(60, QChar(0x1ebf))); // an accented letter of three bytes, more than there is room for
        EXPECT_EQ(graph.shownYMax(), 25.5F);
        const std::string written = QString(50, QChar(0x1ebf)).toStdString();
        EXPECT_EQ(said().find(written + " from"), 0U) << said();
        graph.setXMin(75); // the run goes on meanwhile, and the operator zooms
        graph.setXwide(300);
        QTest::keyClick(&chart, Qt::Key_Plus);
        const float zoomed = graph.shownYMax();
        QEvent comesBack(QEvent::WindowActivate);
        QApplication::sendEvent(editor, &comesBack);
        EXPECT_NEAR(editor->findChild<QSpinBox*>(QStringLiteral("edtYMax"))->value(), zoomed * 100, 1);
        QTest::keyClick(editor, accepted ? Qt::Key_Return : Qt::Key_Escape);
        EXPECT_EQ(graph.shownYMax(), zoomed);
        EXPECT_FALSE(chart.following());
        QTest::keyClick(&chart, Qt::Key_Home);
        EXPECT_EQ(graph.shownYMax(), accepted ? 25.5F : 20.F);
        EXPECT_EQ(said().find("Left 2.50") != std::string::npos, accepted) << said();
        EXPECT_NE(said().find("time 00:01:15 to 00:06:15"), std::string::npos) << said();
        settle();
        ASSERT_TRUE(graph.Cfg_Save());
        ASSERT_TRUE(graph.Cfg_Load());
        EXPECT_EQ(said().find(written) == 0, accepted) << said();
    }
    EXPECT_NE(memory.text("/app/ch_dep.oc2").find("Label=Left"), std::string::npos);
    EXPECT_EQ(placed, 2) << "where it was the last time";
}

} // namespace
} // namespace drx9
