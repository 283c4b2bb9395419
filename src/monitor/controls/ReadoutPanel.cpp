#include "monitor/controls/ReadoutPanel.h"

#include "controls/AccessibleRoles.h"
#include "controls/Gauge.h"
#include "controls/HairLine.h"
#include "controls/MarkLabel.h"
#include "controls/Readout.h"
#include "controls/SensorLabel.h"
#include "controls/Theme.h"
#include "monitor/Texts.h"
#include "monitor/controls/SizeStep.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>

#include <algorithm>
#include <cmath>

namespace drx9 {

namespace {
constexpr int kMargin = 16;
constexpr int kRightMargin = 24;
constexpr int kBandTop = 10;
constexpr int kBandBottom = 10;
constexpr int kGaugeGap = 6;
constexpr int kFirstSensorField = Readouts::FirstSensor;

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

const char* toolTipOf(std::size_t field) {
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

bool isClock(std::size_t field) {
    return field == Readouts::ElapsedTime || field == Readouts::TimeRemaining;
}
} // namespace

ReadoutPanel::ReadoutPanel(QWidget* between, QWidget* parent)
    : QWidget(parent) {
    for (std::size_t field = 1; field < Readouts::kFields; ++field) {
        buildReadout(field);
    }
    setAccessibleRole(*this, QAccessible::Grouping);
    setAccessibleName(QStringLiteral("Readouts"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(buildBand());
    column->addWidget(new HairLine(Qt::Horizontal, this));
    auto* body = new QHBoxLayout;
    column->addLayout(body, 1);
    body->setSpacing(0);
    body->addWidget(buildSensors());
    body->addWidget(new HairLine(Qt::Vertical, this));
    body->addWidget(between, 1);
}

void ReadoutPanel::buildReadout(std::size_t field) {
    const QString index = QString::number(field);
    auto* text = new Readout(this);
    text->setObjectName(QStringLiteral("TxtData_") + index);
    text->setToolTip(QString::fromLatin1(toolTipOf(field)));
    text->setAccessibleDescription(text->toolTip());
    text->setFocusPolicy(field == Readouts::AverageRate ? Qt::StrongFocus : Qt::ClickFocus);
    connect(text, &Readout::walk, this, [this, field](int direction) { walk(field, direction); });
    TxtData_[field] = text;
    QLabel* label = nullptr;
    if (isSensorField(field)) {
        const auto sensor = field - kFirstSensorField;
        sensorLabels_[sensor] = new SensorLabel(static_cast<int>(sensor) + 1, this);
        label = sensorLabels_[sensor];
    } else {
        label = new QLabel(this);
        label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    }
    label->setObjectName(QStringLiteral("LblData_") + index);
    label->setBuddy(text);
    label->setForegroundRole(kMutedRole);
    LblData_[field] = label;
}

QWidget* ReadoutPanel::buildBand() {
    band_ = new QWidget(this);
    auto* grid = new QGridLayout(band_);
    grid->setContentsMargins(kMargin, kBandTop, kRightMargin, kBandBottom);
    grid->setHorizontalSpacing(0);
    grid->setVerticalSpacing(0);
    const auto addColumn = [this, grid](int column, std::size_t field, MarkLabel* age) {
        auto* row = new QHBoxLayout;
        row->setSpacing(8);
        if (age != nullptr) {
            row->addWidget(age);
        }
        row->addStretch(1);
        row->addWidget(LblData_[field]);
        grid->addLayout(row, 0, column);
        grid->addWidget(TxtData_[field], 1, column, Qt::AlignRight | Qt::AlignBottom);
    };
    for (MarkLabel*& age : ages_) {
        age = new MarkLabel(band_);
    }
    addColumn(0, Readouts::AverageRate, ages_[0]);
    addColumn(2, Readouts::AverageThickness, ages_[1]);
    addColumn(4, Readouts::FinalThickness, nullptr);
    addColumn(6, Readouts::ElapsedTime, nullptr);
    addColumn(8, Readouts::TimeRemaining, nullptr);
    grid->setColumnMinimumWidth(1, 2 * kMargin + 1);
    grid->setColumnMinimumWidth(3, kMargin);
    grid->setColumnStretch(5, 1);
    grid->setColumnMinimumWidth(7, kRightMargin);
    grid->setRowMinimumHeight(2, kGaugeGap);
    gauge_ = new Gauge(band_);
    gauge_->setAccessibleName(QStringLiteral("Average thickness of the final thickness"));
    grid->addWidget(gauge_, 3, 2, 1, 3);
    return band_;
}

QWidget* ReadoutPanel::buildSensors() {
    sensors_ = new QWidget(this);
    auto* column = new QVBoxLayout(sensors_);
    column->setContentsMargins(kMargin, 4, kMargin, 4);
    column->setSpacing(0);
    for (std::size_t sensor = 0; sensor < kMaxSensors; ++sensor) {
        if (sensor > 0) {
            column->addWidget(new HairLine(Qt::Horizontal, sensors_));
        }
        column->addStretch(1);
        column->addWidget(LblData_[kFirstSensorField + sensor]);
        column->addWidget(TxtData_[kFirstSensorField + sensor], 0, Qt::AlignRight);
        column->addStretch(1);
    }
    return sensors_;
}

void ReadoutPanel::showFacts(const Facts& facts) {
    for (std::size_t field = 1; field < Readouts::kFields; ++field) {
        if (shownTexts_[field] != facts.texts[field]) {
            shownTexts_[field] = facts.texts[field];
            TxtData_[field]->showText(QString::fromStdString(shownTexts_[field]));
        }
        if (shownLabels_[field] != facts.labels[field]) {
            shownLabels_[field] = facts.labels[field];
            const QString label = QString::fromStdString(shownLabels_[field]);
            LblData_[field]->setText(label);
            TxtData_[field]->setAccessibleName(label);
        }
    }
    for (std::size_t sensor = 0; sensor < kMaxSensors; ++sensor) {
        sensorLabels_[sensor]->setOff(static_cast<int>(sensor) >= facts.sensorCount);
        sensorLabels_[sensor]->setMark(QString::fromStdString(facts.crystalMarks[sensor]));
    }
    gauge_->setShare(facts.gaugeShare);
}

void ReadoutPanel::showLooks(const Looks& looks) {
    for (std::size_t field = 1; field < Readouts::kFields; ++field) {
        Readout::Look look = Readout::Look::Live;
        const bool noSensor = shownTexts_[field] == "OFF"; // nothing that could grow old
        if (isClock(field) && !looks.running) {
            look = Readout::Look::Kept;
        } else if (field != Readouts::FinalThickness && !noSensor && (looks.stale || looks.failed[field])) {
            look = Readout::Look::Stale;
        }
        TxtData_[field]->setLook(look);
    }
    gauge_->setStale(looks.stale);
    const bool final = looks.finalReached && looks.age.isEmpty();
    ages_[0]->say(looks.age, Tone::Warn);
    ages_[1]->say(final ? QString::fromUtf8(monitorText::kFinal) : looks.age, Tone::Warn);
}

void ReadoutPanel::setStep(const StepMeasures& m) {
    const auto columnOf = [this](int pixels, const char* widest, int room) {
        return Readout::columnWidth(font(), pixels, QString::fromLatin1(widest)) + room;
    };
    const QFont labelFont = fontOfSize(font(), m.label);
    const QFontMetrics labels(labelFont);
    for (std::size_t field = 1; field < Readouts::kFields; ++field) {
        LblData_[field]->setFont(labelFont);
        LblData_[field]->setFixedHeight(labels.height());
    }
    for (MarkLabel* age : ages_) {
        age->setFont(labelFont);
    }
    const auto place = [this](std::size_t field, int width, int height, int pixels, int baseline) {
        TxtData_[field]->setFixedSize(width, height);
        TxtData_[field]->setSize(pixels, baseline);
    };
    const int columnA = roundUp(columnOf(m.primary, "999.99", 2), 4);
    const int thickness = roundUp(columnOf(m.primary, "-9.999", 4), 4);
    const int clock = columnOf(m.secondary, "100:40:00", 4);
    const int final = std::max(columnOf(m.secondary, "999.99", 4),
                               labels.horizontalAdvance(QStringLiteral("Final Thick (kA)")));
    const int base = commaTail(m.primary);
    const int height = capHeight(m.primary) + static_cast<int>(m.primary * 0.2) + base;
    place(Readouts::AverageRate, columnA, height, m.primary, base);
    place(Readouts::AverageThickness, thickness, height, m.primary, base);
    place(Readouts::FinalThickness, final, height, m.secondary, base);
    place(Readouts::ElapsedTime, clock, height, m.secondary, base);
    place(Readouts::TimeRemaining, clock, height, m.secondary, base);
    const int sensorBase = commaTail(m.secondary);
    for (std::size_t sensor = 0; sensor < kMaxSensors; ++sensor) {
        place(kFirstSensorField + sensor, columnA, capHeight(m.secondary) + 6 + sensorBase, m.secondary,
              sensorBase);
    }
    sensors_->setFixedWidth(columnA + 2 * kMargin);
    band_->setFixedHeight(kBandTop + labels.height() + height + kGaugeGap + gauge_->height() + kBandBottom);
}

QWidget* ReadoutPanel::entry() const {
    return TxtData_[Readouts::AverageRate];
}

/// In the order in which the eye meets them: the band from left to right, then the sensors.
void ReadoutPanel::walk(std::size_t from, int direction) {
    static constexpr std::array<std::size_t, 11> kOrder{1, 2, 9, 10, 11, 3, 4, 5, 6, 7, 8};
    const auto* at = std::find(kOrder.begin(), kOrder.end(), from);
    const auto index = static_cast<int>(at - kOrder.begin()) + direction;
    const int count = static_cast<int>(kOrder.size());
    TxtData_[kOrder[static_cast<std::size_t>((index + count) % count)]]->setFocus(Qt::TabFocusReason);
}

} // namespace drx9
