#pragma once

#include <qcustomplot.h>

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenuBar>
#include <QPushButton>
#include <QStackedLayout>
#include <QStatusBar>

/// What the main window's first paint is measured against: a window that does nothing, with the same menus,
/// as many controls and four plots of the same library, in Qt's own classes.
class BareWindow : public QMainWindow {
public:
    BareWindow() {
        addMenus();
        auto* centre = new QWidget(this);
        setCentralWidget(centre);
        auto* column = new QVBoxLayout(centre);
        auto* band = new QGridLayout;
        for (int i = 0; i < 5; ++i) {
            addReadout(*band, i, 0, i < 2 ? 72 : 40);
        }
        column->addLayout(band);
        auto* body = new QHBoxLayout;
        auto* sensors = new QGridLayout;
        for (int i = 0; i < 6; ++i) {
            addReadout(*sensors, 0, i, 40);
        }
        body->addLayout(sensors);
        auto* plots = new QStackedLayout;
        body->addLayout(plots, 1);
        for (int i = 0; i < 4; ++i) {
            plots->addWidget(plot(i % 2 == 0 ? 1 : 6));
        }
        column->addLayout(body, 1);
        column->addLayout(bar());
        for (int i = 0; i < 7; ++i) {
            statusBar()->addWidget(new QLabel(QStringLiteral("Last exchange: OK")));
        }
        resize(1280, 800);
    }

private:
    void addMenus() {
        const int items[] = {2, 4, 7, 2};
        for (const int count : items) {
            QMenu* menu = menuBar()->addMenu(QStringLiteral("&Menu"));
            for (int i = 0; i < count; ++i) {
                menu->addAction(QStringLiteral("Sensor &Thickness Display"));
            }
            menu->addSeparator();
        }
    }
    void addReadout(QGridLayout& grid, int column, int row, int pixels) {
        auto* text = new QLineEdit(QStringLiteral("\u2014"));
        QFont large = font();
        large.setPixelSize(pixels);
        text->setFont(large);
        text->setReadOnly(true);
        text->setFrame(false);
        text->setAlignment(Qt::AlignRight);
        text->setFixedWidth(QFontMetrics(large).horizontalAdvance(QStringLiteral("999.99")));
        grid.addWidget(new QLabel(QStringLiteral("Avg. Rate (A/s)")), 2 * row, column);
        grid.addWidget(text, 2 * row + 1, column);
    }
    QCustomPlot* plot(int series) {
        auto* plot = new QCustomPlot;
        for (int i = 0; i < series; ++i) {
            plot->addGraph();
        }
        plot->legend->setVisible(true);
        plot->xAxis->setRange(0, 300);
        plot->yAxis->setRange(0, 20);
        return plot;
    }
    QLayout* bar() {
        auto* row = new QHBoxLayout;
        auto* films = new QComboBox;
        films->addItem(QStringLiteral("ALUM_5K"));
        row->addWidget(new QLabel(QStringLiteral("Film")));
        row->addWidget(films);
        row->addStretch(1);
        for (const char* caption : {"Zero", "Open Shutter", "START"}) {
            row->addWidget(new QPushButton(QString::fromLatin1(caption)));
        }
        return row;
    }
};
