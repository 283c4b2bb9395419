// How the system parameters window is laid out.
#include "system/frmSystem.h"

#include "controls/Build.h"
#include "controls/MarkLabel.h"
#include "system/controls/SystemSpinBox.h"
#include "system/controls/ValueMark.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

#include <algorithm>

namespace drx9 {

namespace {
constexpr int kMargin = 16;
constexpr int kInside = 12; ///< of a group
constexpr int kGroupGap = 12;
constexpr int kGap = 8;
constexpr int kBoxWidth = 96;
constexpr int kBoxHeight = 30;
constexpr int kBoxRoom = 36; ///< of a box's arrows and edges
constexpr int kRadioHeight = 28;
constexpr const char* kWidestNumber = "99.999";
} // namespace

/// One number. `index` is that of its control array; -1 where it is the only one.
struct frmSystem::Row {
    SpinnerField* field;
    const char* array;
    int index;
    QString label;
    const char* unit;
};

/// A mode's two option buttons, as they are from left to right.
struct frmSystem::ModeBox {
    SystemMode mode;
    const char* array;
    const char* caption;
    const char* first;
    const char* second;
    bool firstIsOn;
    const char* toolTip;
};

void frmSystem::buildNumber(QGridLayout& grid, const Row& row, const QString& toolTip) {
    auto* box = new SystemSpinBox(*row.field, parts_.locale, this);
    const QString member =
        latin(row.array) + (row.index < 0 ? QString() : QStringLiteral("_%1").arg(row.index));
    const QString unit = latin(row.unit);
    box->setNames(latin("spn") + member, latin("txt") + member,
                  unit.isEmpty() ? row.label : row.label + latin(", ") + unit);
    box->setToolTip(toolTip);
    box->setFixedWidth(std::max(kBoxWidth, fontMetrics().horizontalAdvance(latin(kWidestNumber)) + kBoxRoom));
    box->setMinimumHeight(kBoxHeight);

    auto* label = new QLabel(row.label, this);
    label->setBuddy(box);
    QLabel* unitLabel = makeMutedLabel(this, unit);
    unitLabel->setContentsMargins(kGap, 0, 0, 0);
    const int line = grid.rowCount();
    grid.addWidget(label, line, 0);
    auto* mark = new ValueMark(this);
    grid.addWidget(mark, line, 1);
    grid.addWidget(box, line, 2);
    grid.addWidget(unitLabel, line, 3);

    const bool parameter = latin(row.array) == latin("SysParam");
    numbers_.push_back(std::make_unique<Number>(
        Number{row.field, box, mark, row.label, row.unit, parameter ? row.index : -1}));
    const Number& number = *numbers_.back();
    connect(box, &SystemSpinBox::edited, this, [this, &number] { numberChanged(number); });
    connect(box, &SystemSpinBox::refused, this, [this, &number] { numberRefused(number); });
}

QGroupBox* frmSystem::buildGroup(const char* name, const char* caption, const std::vector<Row>& rows,
                                 int labelWidth, const char* toolTip) {
    auto* group = new QGroupBox(latin(caption), this);
    group->setObjectName(latin(name));
    group->setToolTip(latin(toolTip));
    auto* grid = new QGridLayout(group);
    grid->setContentsMargins(kInside, kInside, kInside, kInside);
    grid->setHorizontalSpacing(0);
    grid->setVerticalSpacing(kGap);
    grid->setColumnMinimumWidth(0, labelWidth);
    grid->setColumnStretch(3, 1);
    for (const Row& row : rows) {
        buildNumber(*grid, row, latin(toolTip));
    }
    return group;
}

QGroupBox* frmSystem::buildMode(const ModeBox& look) {
    auto* group = new QGroupBox(latin(look.caption), this);
    group->setObjectName(latin("fra") + latin(look.array));
    auto* row = new QHBoxLayout(group);
    row->setContentsMargins(kInside, kInside / 2, kInside, kInside / 2);
    const auto radio = [&](const char* caption, bool on) {
        auto* option = new QRadioButton(latin(caption), group);
        option->setObjectName(latin("opt") + latin(look.array) + latin(on ? "_1" : "_0"));
        option->setAccessibleName(latin(look.caption) + latin(", ") + latin(caption));
        option->setMinimumHeight(kRadioHeight);
        row->addWidget(option, 1);
        return option;
    };
    QRadioButton* first = radio(look.first, look.firstIsOn);
    QRadioButton* second = radio(look.second, !look.firstIsOn);
    auto* mark = new ValueMark(this);
    row->addWidget(mark);
    for (QWidget* control :
         {static_cast<QWidget*>(group), static_cast<QWidget*>(first), static_cast<QWidget*>(second)}) {
        control->setToolTip(latin(look.toolTip));
    }
    modes_.push_back(
        std::make_unique<Mode>(Mode{&fields_.mode(look.mode), look.firstIsOn ? second : first,
                                    look.firstIsOn ? first : second, mark, latin(look.caption)}));
    Mode& mode = *modes_.back();
    connect(mode.on, &QRadioButton::toggled, this, [this, &mode](bool on) { optMode_Click(mode, on); });
    return group;
}

QBoxLayout* frmSystem::buildNumbers() {
    using F = SystemFields;
    const auto parameter = [this](int index, const char* label, const char* unit) {
        return Row{&fields_.parameter(index), "SysParam", index, latin(label), unit};
    };
    const std::vector<Row> measurement{parameter(F::kTimebase, "Timebase", "s"),
                                       {&fields_.rateFilter(), "RateFilt", -1, latin("Filter"), ""},
                                       parameter(F::kMinFrequency, "Min Frequency", "MHz"),
                                       parameter(F::kMaxFrequency, "Max Frequency", "MHz")};
    const std::vector<Row> analogOut{parameter(F::kMaxRate, "Max Rate", "A/s"),
                                     parameter(F::kMinRate, "Min Rate", "A/s"),
                                     parameter(F::kMinThickness, "Min Thickness", "kA"),
                                     parameter(F::kMaxThickness, "Max Thickness", "kA")};
    int widest = 0; // so that the boxes of both groups are in one column
    for (const auto* rows : {&measurement, &analogOut}) {
        for (const Row& row : *rows) {
            widest = std::max(widest, QLabel(row.label).sizeHint().width());
        }
    }
    auto* column = new QVBoxLayout;
    column->addWidget(buildGroup("fraMeasurement", "Measurement", measurement, widest, ""));
    column->addWidget(
        buildGroup("fraAnalogOut", "Analog Out", analogOut, widest, "Analog output option settings."));
    return column;
}

QBoxLayout* frmSystem::buildTooling() {
    std::vector<Row> crystals;
    for (int crystal = 1; crystal <= kMaxSensors; ++crystal) {
        crystals.push_back(
            {&fields_.tooling(crystal), "XTool", crystal, QStringLiteral("Crystal %1").arg(crystal), ""});
    }
    auto* column = new QVBoxLayout;
    column->addWidget(
        buildGroup("fraXTool", "X Tooling", crystals, 0, "Overall tooling factor for each sensor."));
    return column;
}

QBoxLayout* frmSystem::buildModes() {
    auto* column = new QVBoxLayout;
    for (const ModeBox& look :
         {ModeBox{SystemMode::Etch, "EtchMode", "Etch Mode", "On", "Off", true,
                  "Reverses thickness/rate sense."},
          ModeBox{SystemMode::RateResolution, "RateRes", "Rate Resolution", "Low", "High", false, ""},
          ModeBox{SystemMode::FreqDisplay, "FreqDisp", "Freq Display", "Off", "On", false, ""},
          ModeBox{SystemMode::Simulate, "SimMode", "Simulate Mode", "On", "Off", true,
                  "Enable/disable sensor simulation."}}) {
        column->addWidget(buildMode(look));
    }
    int widest = 0; // the second buttons are in one column
    for (const auto& mode : modes_) {
        widest = std::max({widest, mode->on->sizeHint().width(), mode->off->sizeHint().width()});
    }
    for (const auto& mode : modes_) {
        mode->on->setMinimumWidth(widest);
        mode->off->setMinimumWidth(widest);
    }
    return column;
}

QLayout* frmSystem::buildColumns() {
    auto* columns = new QHBoxLayout;
    columns->setSpacing(kMargin);
    for (QBoxLayout* column : {buildNumbers(), buildTooling(), buildModes()}) { // in the order of the Tab key
        column->setSpacing(kGroupGap);
        column->addStretch(1);
        columns->addLayout(column);
    }
    return columns;
}

QPushButton* frmSystem::button(const char* name, const char* caption, const char* toolTip,
                               void (frmSystem::*click)()) {
    QPushButton* button = makeButton(this, name, caption, toolTip);
    connect(button, &QPushButton::clicked, this, click);
    return button;
}

QLayout* frmSystem::buildBottom() {
    lblState_ = new MarkLabel(this);
    lblState_->setObjectName(QStringLiteral("lblState"));
    lblState_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto* row = new QHBoxLayout;
    row->setSpacing(kGap);
    row->addWidget(lblState_, 1);
    row->addWidget(
        button("cmdRead", "&Read", "Read the DRX-9 system parameters.", &frmSystem::cmdRead_Click));
    cmdSave_ = button("cmdSave", "&Save", "Send system parameters to the DRX-9.", &frmSystem::cmdSave_Click);
    row->addWidget(cmdSave_);
    row->addWidget(button("cmdOK", "&Close", "Close form.", &frmSystem::cmdOK_Click));
    return row;
}

void frmSystem::buildWindow() {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(kGroupGap);
    column->setSizeConstraint(QLayout::SetFixedSize);
    column->addLayout(buildColumns());
    column->addLayout(buildBottom());
}

} // namespace drx9
