// The main window's controls, their arrangement, and the three steps of their sizes.
#include "monitor/frmMain.h"

#include "controls/Gauge.h"
#include "controls/HairLine.h"
#include "controls/MarkLabel.h"
#include "controls/NoticePlate.h"
#include "controls/Readout.h"
#include "controls/SensorLabel.h"
#include "controls/StartStopButton.h"
#include "controls/Theme.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStackedLayout>
#include <QStatusBar>

#include <cmath>

namespace drx9 {

namespace {
constexpr int kMargin = 16;
constexpr int kRightMargin = 24;
constexpr int kBandTop = 10;
constexpr int kBandBottom = 10;
constexpr int kHysteresis = 16;
constexpr int kFirstSensorField = Readouts::FirstSensor;
constexpr int kOffLinePixels = 24;
constexpr int kStatusHeight = 28;

struct StepMeasures {
    QSize from; ///< least window
    int primary;
    int secondary;
    int label;
    int barHeight;
    int buttonHeight;
    int faceHeight;
    int filmWidth;
};

const StepMeasures& measures(frmMain::Step step) {
    static const std::array<StepMeasures, 3> all{{
        {{940, 540}, 56, 28, 13, 56, 36, 42, 160},
        {{1200, 720}, 72, 40, 13, 72, 44, 52, 200},
        {{1720, 900}, 104, 56, 16, 72, 44, 52, 200},
    }};
    return all[static_cast<std::size_t>(step)];
}

int roundUp(int value, int grid) {
    return (value + grid - 1) / grid * grid;
}

/// Height of capitals and digits; their room above and below includes a decimal comma's tail.
int capHeight(int pixels) {
    return static_cast<int>(std::lround(pixels * 0.73));
}

int commaTail(int pixels) {
    return static_cast<int>(std::lround(pixels * 0.14));
}

void keepRoomWhenHidden(QWidget* widget) {
    QSizePolicy policy = widget->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    widget->setSizePolicy(policy);
}

const char* readoutToolTip(std::size_t field) {
    switch (field) {
    case Readouts::AverageRate:
        return "Average rate of active sensors.";
    case Readouts::AverageThickness:
        return "Average thickness of active sensors.";
    case Readouts::FinalThickness:
        return "Final thickness setpoint.";
    case Readouts::ElapsedTime:
        return "";
    case Readouts::TimeRemaining:
        return "Estimtaed time to final thickness."; // the program's own spelling
    default:
        return "Rate of this sensor.";
    }
}

bool isSensorField(std::size_t field) {
    return field >= kFirstSensorField && field < kFirstSensorField + kMaxSensors;
}
} // namespace

void frmMain::buildControls() {
    for (std::size_t field = 1; field < Readouts::kFields; ++field) {
        buildReadout(field);
    }
    auto* centre = new QWidget(this);
    setCentralWidget(centre);
    auto* column = new QVBoxLayout(centre);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(new HairLine(Qt::Horizontal, centre));
    column->addWidget(buildBand());
    column->addWidget(new HairLine(Qt::Horizontal, centre));
    auto* body = new QHBoxLayout;
    column->addLayout(body, 1);
    body->setSpacing(0);
    body->addWidget(buildSensors());
    body->addWidget(new HairLine(Qt::Vertical, centre));
    // Into the window first: a stack shows its first widget, which without a parent is a window of its own.
    charts_ = new QStackedLayout;
    body->addLayout(charts_, 1);
    for (int number = 1; number <= 4; ++number) {
        charts_->addWidget(&parts_.charts.chart(number));
    }
    column->addWidget(new HairLine(Qt::Horizontal, centre));
    column->addWidget(buildBar());
    buildStatusBar();
}

void frmMain::buildReadout(std::size_t field) {
    const QString index = QString::number(field);
    auto* text = new Readout(this);
    text->setObjectName(QStringLiteral("TxtData_") + index);
    text->setToolTip(QString::fromLatin1(readoutToolTip(field)));
    text->setAccessibleDescription(text->toolTip());
    text->setFocusPolicy(field == Readouts::AverageRate ? Qt::StrongFocus : Qt::ClickFocus);
    connect(text, &Readout::walk, this, [this, field](int direction) { walkReadouts(field, direction); });
    TxtData_[field] = text;
    QLabel* label = nullptr;
    if (isSensorField(field)) {
        const int sensor = static_cast<int>(field) - kFirstSensorField + 1;
        sensorLabels_[static_cast<std::size_t>(sensor - 1)] = new SensorLabel(sensor, this);
        label = sensorLabels_[static_cast<std::size_t>(sensor - 1)];
    } else {
        label = new QLabel(this);
        label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    }
    label->setObjectName(QStringLiteral("LblData_") + index);
    label->setBuddy(text);
    label->setForegroundRole(kMutedRole);
    LblData_[field] = label;
}

QWidget* frmMain::buildBand() {
    bandWidget_ = new QWidget(this);
    band_ = new QGridLayout(bandWidget_);
    band_->setContentsMargins(kMargin, kBandTop, kRightMargin, kBandBottom);
    band_->setHorizontalSpacing(0);
    band_->setVerticalSpacing(0);
    gauge_ = new Gauge(bandWidget_);
    const auto addColumn = [this](int column, std::size_t field, MarkLabel* age) {
        auto* row = new QHBoxLayout;
        row->setSpacing(8);
        if (age != nullptr) {
            row->addWidget(age);
        }
        row->addStretch(1);
        row->addWidget(LblData_[field]);
        band_->addLayout(row, 0, column);
        band_->addWidget(TxtData_[field], 1, column, Qt::AlignRight | Qt::AlignBottom);
    };
    for (MarkLabel*& age : ages_) {
        age = new MarkLabel(bandWidget_);
    }
    addColumn(0, Readouts::AverageRate, ages_[0]);
    addColumn(2, Readouts::AverageThickness, ages_[1]);
    addColumn(4, Readouts::FinalThickness, nullptr);
    addColumn(6, Readouts::ElapsedTime, nullptr);
    addColumn(8, Readouts::TimeRemaining, nullptr);
    band_->setColumnMinimumWidth(1, 2 * kMargin + 1);
    band_->setColumnMinimumWidth(3, kMargin);
    band_->setColumnStretch(5, 1);
    band_->setColumnMinimumWidth(7, kRightMargin);
    band_->setRowMinimumHeight(2, 6);
    band_->addWidget(gauge_, 3, 2, 1, 3);
    return bandWidget_;
}

QWidget* frmMain::buildSensors() {
    sensorColumn_ = new QWidget(this);
    auto* column = new QVBoxLayout(sensorColumn_);
    column->setContentsMargins(kMargin, 4, kMargin, 4);
    column->setSpacing(0);
    for (int sensor = 1; sensor <= kMaxSensors; ++sensor) {
        const auto field = static_cast<std::size_t>(kFirstSensorField + sensor - 1);
        if (sensor > 1) {
            column->addWidget(new HairLine(Qt::Horizontal, sensorColumn_));
        }
        column->addStretch(1);
        column->addWidget(LblData_[field]);
        column->addWidget(TxtData_[field], 0, Qt::AlignRight);
        column->addStretch(1);
    }
    return sensorColumn_;
}

QWidget* frmMain::buildBar() {
    bar_ = new QWidget(this);
    auto* cell = new QGridLayout(bar_); // the run's row and the off-line row share its one cell
    cell->setContentsMargins(0, 0, 0, 0);
    auto* runRow = new QWidget(bar_);
    barRow_ = new QHBoxLayout(runRow);
    barRow_->setContentsMargins(kMargin, 0, kRightMargin - StartStopButton::kRing, 0);
    barRow_->setSpacing(0);

    lblFilm_ = new QLabel(QStringLiteral("Film"), bar_);
    cboFilms_ = new QComboBox(bar_);
    cmdZero_ = new QPushButton(QStringLiteral("Zero"), bar_);
    cmdShutter_ = new QPushButton(QStringLiteral("Open Shutter"), bar_);
    cmdStartStop_ = new StartStopButton(bar_);
    lblNotice_ = new NoticePlate(bar_);
    const auto name = [](QWidget* widget, const char* objectName, const char* toolTip) {
        widget->setObjectName(QString::fromLatin1(objectName));
        widget->setToolTip(QString::fromLatin1(toolTip));
        widget->setAccessibleDescription(widget->toolTip());
        keepRoomWhenHidden(widget);
    };
    name(lblFilm_, "lblFilm", "");
    name(cboFilms_, "cboFilms", "Set DRX-9 film.");
    name(cmdZero_, "cmdZero", "Zero DRX-9 thickness.");
    name(cmdShutter_, "cmdShutter", "Open/Close DRX-9 shutter & start graphing.");
    name(cmdStartStop_, "cmdStartStop", "Start/Stop graphing.");
    name(lblNotice_, "lblNotice", "");
    lblFilm_->setBuddy(cboFilms_);
    cboFilms_->setAccessibleName(QStringLiteral("Film"));
    cboFilms_->setMaxVisibleItems(20);
    QFont digits = Readout::digitFont(font());
    cboFilms_->setFont(digits);

    barRow_->addWidget(lblFilm_);
    barRow_->addSpacing(8);
    barRow_->addWidget(cboFilms_);
    barRow_->addSpacing(kMargin);
    barRow_->addWidget(lblNotice_, 1);
    barRow_->addSpacing(kMargin);
    barRow_->addWidget(cmdZero_);
    barRow_->addSpacing(24);
    barRow_->addWidget(cmdShutter_);
    barRow_->addSpacing(kMargin - StartStopButton::kRing);
    barRow_->addWidget(cmdStartStop_);
    cell->addWidget(runRow, 0, 0);
    cell->addWidget(buildOffLineRow(), 0, 0);

    connect(cboFilms_, &QComboBox::activated, this, [this](int index) { monitor_.cboFilms_Click(index); });
    connect(cmdZero_, &QPushButton::clicked, this, [this] { monitor_.cmdZero_Click(); });
    connect(cmdShutter_, &QPushButton::clicked, this, [this] { monitor_.cmdShutter_Click(); });
    connect(cmdStartStop_, &QPushButton::clicked, this, [this] { monitor_.cmdStartStop_Click(); });
    return bar_;
}

QWidget* frmMain::buildOffLineRow() {
    offLineRow_ = new QWidget(bar_);
    offLineRow_->setAttribute(Qt::WA_TransparentForMouseEvents);
    auto* row = new QHBoxLayout(offLineRow_);
    row->setContentsMargins(kMargin, 0, kRightMargin, 0);
    row->setSpacing(32);
    lblNotFound_ = new MarkLabel(offLineRow_);
    lblNotFound_->setObjectName(QStringLiteral("lblNotFound"));
    lblNotFound_->setTextPixels(kOffLinePixels, true);
    lblNotFound_->say(QStringLiteral("DRX-9 Off Line"), MarkLabel::Tone::Alarm);
    offLineHint_ = new QLabel(QStringLiteral("Choose the link under Edit, Communcations."), offLineRow_);
    offLineHint_->setForegroundRole(kMutedRole);
    row->addWidget(lblNotFound_);
    row->addWidget(offLineHint_);
    row->addStretch(1);
    offLineRow_->hide();
    return offLineRow_;
}

void frmMain::buildStatusBar() {
    QStatusBar* bar = statusBar();
    bar->setSizeGripEnabled(false);
    bar->setFixedHeight(kStatusHeight);
    auto* rowWidget = new QWidget(bar);
    auto* row = new QHBoxLayout(rowWidget);
    row->setContentsMargins(10, 0, 9, 3);
    row->setSpacing(12);
    const auto add = [&](const char* name, bool separator) {
        auto* field = new MarkLabel(rowWidget);
        field->setObjectName(QString::fromLatin1(name));
        field->setSeparator(separator);
        return field;
    };
    staLink_ = add("staLink", false);
    staReply_ = add("staReply", true);
    staRun_ = add("staRun", true);
    staShutter_ = add("staShutter", true);
    staMode_ = add("staMode", true);
    staLog_ = add("staLog", false);
    for (MarkLabel* field : {staLink_, staReply_, staRun_, staShutter_, staMode_}) {
        field->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Preferred);
        row->addWidget(field);
    }
    row->addStretch(1);
    row->addWidget(staLog_);
    bar->addWidget(rowWidget, 1);
}

void frmMain::setTabStops() {
    setTabOrder(cboFilms_, cmdZero_);
    setTabOrder(cmdZero_, cmdShutter_);
    setTabOrder(cmdShutter_, cmdStartStop_);
    setTabOrder(cmdStartStop_, TxtData_[Readouts::AverageRate]);
    QWidget* last = TxtData_[Readouts::AverageRate];
    for (int number = 1; number <= 4; ++number) {
        setTabOrder(last, &parts_.charts.chart(number));
        last = &parts_.charts.chart(number);
    }
}

/// A step is taken when the window reaches its size, and left when it is 16 px below, so that a drag does not
/// flicker.
void frmMain::chooseStep() {
    const auto reaches = [this](Step step, int slack) {
        const QSize from = measures(step).from;
        return width() >= from.width() - slack && height() >= from.height() - slack;
    };
    Step wanted = Step::S;
    for (const Step step : {Step::M, Step::L}) {
        const bool holds = stepApplied_ && step_ >= step;
        if (reaches(step, holds ? kHysteresis : 0)) {
            wanted = step;
        }
    }
    if (!stepApplied_ || wanted != step_) {
        step_ = wanted;
        stepApplied_ = true;
        applyStep();
    }
    beat();
}

void frmMain::applyStep() {
    const StepMeasures& m = measures(step_);
    const int columnA = roundUp(Readout::columnWidth(font(), m.primary, QStringLiteral("999.99")) + 2, 4);
    const int thickness = roundUp(Readout::columnWidth(font(), m.primary, QStringLiteral("-9.999")) + 4, 4);
    const int clock = Readout::columnWidth(font(), m.secondary, QStringLiteral("100:40:00")) + 4;
    const int small = Readout::columnWidth(font(), m.secondary, QStringLiteral("999.99")) + 4;
    const QFont labelFont = fontOfSize(font(), m.label);
    for (std::size_t field = 1; field < Readouts::kFields; ++field) {
        LblData_[field]->setFont(labelFont);
        LblData_[field]->setFixedHeight(QFontMetrics(labelFont).height());
    }
    const int bandHeight = capHeight(m.primary) + static_cast<int>(m.primary * 0.2) + commaTail(m.primary);
    const auto place = [&](std::size_t field, int width, int height, int pixels, int baseline) {
        TxtData_[field]->setFixedSize(width, height);
        TxtData_[field]->setSize(pixels, baseline);
    };
    const int base = commaTail(m.primary);
    place(Readouts::AverageRate, columnA, bandHeight, m.primary, base);
    place(Readouts::AverageThickness, thickness, bandHeight, m.primary, base);
    const int labelWidth = QFontMetrics(labelFont).horizontalAdvance(QStringLiteral("Final Thick (kA)"));
    place(Readouts::FinalThickness, std::max(small, labelWidth), bandHeight, m.secondary, base);
    place(Readouts::ElapsedTime, clock, bandHeight, m.secondary, base);
    place(Readouts::TimeRemaining, clock, bandHeight, m.secondary, base);
    const int sensorBase = commaTail(m.secondary);
    for (std::size_t sensor = 0; sensor < kMaxSensors; ++sensor) {
        place(kFirstSensorField + sensor, columnA, capHeight(m.secondary) + 6 + sensorBase, m.secondary,
              sensorBase);
    }
    for (MarkLabel* age : ages_) {
        age->setFont(labelFont);
    }
    sensorColumn_->setFixedWidth(columnA + 2 * kMargin);
    bandWidget_->setFixedHeight(kBandTop + QFontMetrics(labelFont).height() + bandHeight + 6 +
                                gauge_->height() + kBandBottom);
    bar_->setFixedHeight(m.barHeight);
    cboFilms_->setFixedSize(m.filmWidth, 36);
    for (QPushButton* button : {cmdZero_, cmdShutter_}) {
        button->setFixedHeight(m.buttonHeight);
    }
    cmdZero_->setFixedWidth(104);
    cmdShutter_->setFixedWidth(
        std::max(148, QFontMetrics(font()).horizontalAdvance(QStringLiteral("Close Shutter")) + 40));
    cmdStartStop_->setFaceHeight(m.faceHeight);
}

} // namespace drx9
