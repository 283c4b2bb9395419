// A chart as the acquisition cycle and the operator work it.
#include "graphs/controls/ChartControl.h"
#include "graphs/controls/ChartPlot.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>
#include <QTest>

#include <gtest/gtest.h>

#include <cmath>

namespace drx9 {
namespace {

class Chart : public testing::Test {
protected:
    Chart() {
        chart.resize(900, 500);
        chart.show();
        plot = chart.findChild<ChartPlot*>();
        settle();
    }
    static void settle() { QTest::qWait(20); }
    void run(double from, double to) {
        for (double t = from; t <= to; t += 0.25) {
            for (int s = 1; s <= 6; ++s) {
                chart.append(s, t, s + std::sin(t));
            }
            chart.redraw();
        }
    }
    [[nodiscard]] int points(int series) const { return plot->graph(series - 1)->dataCount(); }
    [[nodiscard]] QCPRange x() const { return plot->xAxis->range(); }
    [[nodiscard]] QCPRange y() const { return plot->yAxis->range(); }
    [[nodiscard]] QImage picture() { return plot->grab().toImage(); }

    ChartControl chart{chartDesigns()[1]};
    ChartPlot* plot = nullptr;
};

TEST_F(Chart, KeepsPointsInOrderAndGapsAsGaps) {
    chart.append(1, 1, 5);
    chart.append(1, 1, 6);   // not later
    chart.append(1, 0.5, 6); // earlier
    EXPECT_EQ(points(1), 1);
    chart.appendGap();
    chart.append(1, 3, 7);
    ASSERT_EQ(points(1), 3);
    EXPECT_TRUE(std::isnan(plot->graph(0)->data()->at(1)->value));
    chart.append(2, 1, 1);
    chart.setLastPoint(1, 2); // a gap is no point
    EXPECT_EQ(points(1), 3);
    chart.setLastPoint(1, 1);
    EXPECT_EQ(points(1), 1);
    chart.ReInit(); // series 1 only
    EXPECT_EQ(points(1), 0);
    EXPECT_EQ(points(2), 1);
}

TEST_F(Chart, AppendedPointsLookAsAFullPictureDoes) {
    run(0, 20);
    settle();
    run(20.25, 40);
    const QImage grown = picture();
    plot->replot();
    const QImage whole = picture();
    int different = 0;
    for (int row = 0; row < whole.height(); ++row) {
        for (int column = 0; column < whole.width(); ++column) {
            const QColor a = grown.pixelColor(column, row);
            const QColor b = whole.pixelColor(column, row);
            different += std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) > 160 ? 1 : 0;
        }
    }
    EXPECT_LT(different, 60) << "of the curves' some 700 pixels";
    EXPECT_NE(grown.pixelColor(whole.width() - 60, 30), QColor());
}

TEST_F(Chart, AxesFollowTheGraph) {
    chart.setXMin(375);
    chart.setXwide(300);
    EXPECT_EQ(x(), QCPRange(375, 675));
    chart.setYMax(15);
    EXPECT_EQ(y(), QCPRange(0, 15));
    chart.ReInit();
    EXPECT_EQ(x(), QCPRange(0, 300));
}

TEST_F(Chart, TheOperatorsViewIsNotPulledAway) {
    chart.setFocus();
    QTest::keyClick(&chart, Qt::Key_Right);
    EXPECT_FALSE(chart.following());
    EXPECT_EQ(chart.note().toStdString(), "Following paused. Home returns");
    const QCPRange paused = x();
    chart.setXMin(75);
    chart.setXwide(300);
    EXPECT_EQ(x(), paused);
    EXPECT_EQ(chart.XMin(), 75);
    chart.setSilence(QStringLiteral("No readings since 14:09:04"));
    EXPECT_EQ(chart.note().toStdString(), "No readings since 14:09:04");
    chart.setSilence({});
    QTest::keyClick(&chart, Qt::Key_Home);
    EXPECT_TRUE(chart.following());
    EXPECT_EQ(x(), QCPRange(75, 375));
    EXPECT_EQ(chart.note(), QString());
}

TEST_F(Chart, ZoomingYChangesTheAxisItself) {
    chart.setFocus();
    QTest::keyClick(&chart, Qt::Key_Up);
    EXPECT_TRUE(chart.following());
    EXPECT_GT(chart.shownYMax(), 20);
    chart.setYMax(chart.shownYMax()); // as the cycle does at each point
    chart.setYMin(chart.shownYMin());
    EXPECT_EQ(chart.YMax(), chart.shownYMax());
    QTest::mouseDClick(plot, Qt::LeftButton);
    EXPECT_EQ(y(), QCPRange(0, 20)) << "back to the axis before the zoom";
}

TEST_F(Chart, MenuOpensFromMouseAndKeysAndWorksOnTheChart) {
    chart.setSensorCount(4);
    const std::function<void()> openings[] = {
        [this] { // as the window system sends it: to the drawing, which leaves it to the chart
            const QPoint at(300, 200);
            QContextMenuEvent event(QContextMenuEvent::Mouse, at, plot->mapToGlobal(at));
            QApplication::sendEvent(plot, &event);
        },
        [this] { QTest::keyClick(&chart, Qt::Key_F10, Qt::ShiftModifier); }};
    for (const auto& open : openings) {
        const bool shown = plot->seriesShown(3);
        open();
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        const QList<QAction*> items = menu->actions();
        const auto sensor4 = std::find_if(items.begin(), items.end(), [](const QAction* item) {
            return item->text().startsWith(QLatin1String("Sensor 4"));
        });
        ASSERT_NE(sensor4, items.end());
        EXPECT_FALSE(std::any_of(items.begin(), items.end(), [](const QAction* item) {
            return item->text().startsWith(QLatin1String("Sensor 5"));
        })) << "there is no such sensor";
        EXPECT_EQ((*sensor4)->isChecked(), shown);
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(*sensor4).center());
        EXPECT_EQ(plot->seriesShown(3), !shown);
    }
}

TEST_F(Chart, KeysWalkTheTracerFromTheNewestPointInView) {
    run(0, 20);
    settle();
    const QImage before = picture();
    QTest::keyClick(&chart, Qt::Key_Left, Qt::ControlModifier);
    EXPECT_NE(picture(), before);
    EXPECT_TRUE(chart.following()) << "looking at a point is no change of view";
}

TEST_F(Chart, SeriesHideByKeyAndBySensorCount) {
    chart.setFocus();
    QTest::keyClick(&chart, Qt::Key_2);
    EXPECT_FALSE(plot->seriesShown(1));
    chart.setSensorCount(4);
    EXPECT_FALSE(plot->seriesShown(4));
    QTest::keyClick(&chart, Qt::Key_5); // there is no such sensor
    EXPECT_FALSE(plot->seriesShown(4));
    QTest::keyClick(&chart, Qt::Key_2);
    EXPECT_TRUE(plot->seriesShown(1));
}

} // namespace
} // namespace drx9
