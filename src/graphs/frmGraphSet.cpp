#include "graphs/frmGraphSet.h"

#include "controls/MarkLabel.h"
#include "controls/SpinBox.h"
#include "controls/Theme.h"
#include "graphs/Texts.h"
#include "graphs/controls/ChartControl.h"
#include "util/Numbers.h"
#include "util/Text.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>

namespace drx9 {

namespace {
constexpr int kSpinnerWidth = 84;
constexpr int kButtonWidth = 92;
constexpr int kMostValue = 9999;
constexpr std::int16_t kChecked = 1;
constexpr std::int16_t kUnchecked = 2; ///< the graph turns its grid on only for exactly 1 (kept)

QLabel* mutedLabel(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setForegroundRole(kMutedRole);
    return label;
}
} // namespace

frmGraphSet::frmGraphSet(ChartSet& charts, int current, QWidget* owner)
    : Window(owner)
    , charts_(charts)
    , current_(current) {
    setObjectName(QStringLiteral("frmGraphSet"));
    setWindowTitle(QStringLiteral("Configure Graph"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(16, 16, 16, 16);
    column->setSpacing(12);
    column->setSizeConstraint(QLayout::SetFixedSize);
    column->addWidget(buildCurrent());
    column->addWidget(buildAll());
    column->addLayout(buildBottom());
    for (const SpinBox* box : spnSetup_) {
        connect(box, &QSpinBox::valueChanged, this, &frmGraphSet::spnSetup_Change);
    }
    Form_Load();
    spn(kYMinimum).setFocus();
}

ChartGraph& frmGraphSet::graph() const {
    return charts_.graph(current_);
}

SpinBox* frmGraphSet::spinner(Spinner index, const char* accessible, int least, int most) {
    auto* box = new SpinBox(this);
    const QString number = QString::number(static_cast<int>(index));
    box->setNames(QStringLiteral("spnSetup_") + number, QStringLiteral("lblReading_") + number,
                  QString::fromLatin1(accessible));
    box->setRange(least, most);
    box->setAlignment(Qt::AlignRight);
    box->setMinimumHeight(30);
    box->setFixedWidth(
        std::max(kSpinnerWidth, fontMetrics().horizontalAdvance(QStringLiteral("-9999")) + 42));
    spnSetup_[static_cast<std::size_t>(index)] = box;
    return box;
}

void frmGraphSet::addRow(QGridLayout& grid, int row, int column, const char* heading, SpinBox* box,
                         const char* toolTip) {
    auto* label = new QLabel(QString::fromLatin1(heading), this);
    label->setBuddy(box);
    label->setToolTip(QString::fromLatin1(toolTip));
    box->setToolTip(label->toolTip());
    box->setAccessibleDescription(label->toolTip());
    grid.addWidget(label, row, column);
    grid.addWidget(box, row, column + 1);
}

QCheckBox* frmGraphSet::addGrid(QGridLayout& grid, int row, int column, const char* heading, const char* name,
                                const char* toolTip) {
    auto* box = new QCheckBox(QStringLiteral("Visible"), this);
    box->setObjectName(QString::fromLatin1(name));
    box->setAccessibleName(QString::fromLatin1(heading) + QStringLiteral(", visible"));
    box->setToolTip(QString::fromLatin1(toolTip));
    box->setAccessibleDescription(box->toolTip());
    box->setMinimumHeight(28);
    grid.addWidget(new QLabel(QString::fromLatin1(heading), this), row, column);
    grid.addWidget(box, row, column + 1, 1, 2);
    return box;
}

QGroupBox* frmGraphSet::buildCurrent() {
    auto* group = new QGroupBox(QStringLiteral("Current Graph"), this);
    group->setObjectName(QStringLiteral("Frame4"));
    auto* grid = new QGridLayout(group);
    grid->setContentsMargins(12, 12, 12, 12);
    grid->setHorizontalSpacing(8);
    grid->setVerticalSpacing(8);
    grid->addWidget(mutedLabel(QString::fromLatin1(graph().design().heading), group), 0, 0, 1, 7);
    const QString unit = QString::fromLatin1(graph().design().unit);
    addRow(*grid, 1, 0, "Y Axis Min.", spinner(kYMinimum, "Y Axis Min.", -kMostValue, kMostValue), "");
    addRow(*grid, 2, 0, "Y Axis Max.", spinner(kYMaximum, "Y Axis Max.", -kMostValue, kMostValue), "");
    addRow(*grid, 3, 0, "Spacing", spinner(kYSpacing, "Y Spacing", 0, kMostValue),
           "Show an axis tic at this Y spacing.");
    for (const Spinner index : {kYMinimum, kYMaximum, kYSpacing}) {
        grid->addWidget(mutedLabel(unit, group), 1 + index - kYMinimum, 2);
        spn(index).setAccessibleName(spn(index).accessibleName() + QStringLiteral(", ") + unit);
    }
    chkYDiv_ = addGrid(*grid, 4, 0, "Y Grid", "chkYDiv", "Show Y grid lines.");
    grid->setColumnMinimumWidth(3, 16);
    addRow(*grid, 1, 4, "Spacing", spinner(kXSpacing, "X Spacing, s", 0, kMostValue),
           "Show an axis tic at this X spacing.");
    grid->addWidget(mutedLabel(QStringLiteral("s"), group), 1, 6);
    chkXDiv_ = addGrid(*grid, 2, 4, "X Grid", "chkXDiv", "Show X grid lines.");
    return group;
}

QGroupBox* frmGraphSet::buildAll() {
    auto* group = new QGroupBox(QStringLiteral("All Graphs"), this);
    group->setObjectName(QStringLiteral("Frame1"));
    auto* row = new QHBoxLayout(group);
    row->setContentsMargins(12, 12, 12, 12);
    row->setSpacing(8);
    auto* heading = new QLabel(QStringLiteral("X Axis Width"), group);
    SpinBox* minutes = spinner(kWidthMinutes, "X Axis Width, minutes", 0, 99);
    heading->setBuddy(minutes);
    row->addWidget(heading);
    row->addSpacing(8);
    row->addWidget(minutes);
    row->addWidget(mutedLabel(QStringLiteral("min."), group));
    row->addSpacing(8);
    row->addWidget(spinner(kWidthSeconds, "X Axis Width, seconds", 0, 59));
    row->addWidget(mutedLabel(QStringLiteral("sec."), group));
    row->addStretch(1);
    return group;
}

QLayout* frmGraphSet::buildBottom() {
    auto* column = new QVBoxLayout;
    state_ = new MarkLabel(this);
    column->addWidget(state_);
    auto* row = new QHBoxLayout;
    column->addLayout(row);
    auto* advanced = new QPushButton(QStringLiteral("&Advanced..."), this);
    advanced->setObjectName(QStringLiteral("CmdAdvanced"));
    advanced->setAutoDefault(false);
    advanced->setMinimumWidth(kButtonWidth);
    row->addWidget(advanced);
    row->addStretch(1);
    auto* buttons = new QDialogButtonBox(this);
    QPushButton* ok = buttons->addButton(QStringLiteral("&OK"), QDialogButtonBox::AcceptRole);
    QPushButton* cancel = buttons->addButton(QStringLiteral("&Cancel"), QDialogButtonBox::RejectRole);
    ok->setObjectName(QStringLiteral("cmdOK"));
    cancel->setObjectName(QStringLiteral("cmdCancel"));
    for (QPushButton* button : {ok, cancel}) {
        button->setMinimumWidth(kButtonWidth);
    }
    ok->setDefault(true);
    cancel->setAutoDefault(false);
    row->addWidget(buttons);
    connect(ok, &QPushButton::clicked, this, &frmGraphSet::cmdOK_Click);
    connect(cancel, &QPushButton::clicked, this, &frmGraphSet::cmdCancel_Click);
    connect(advanced, &QPushButton::clicked, this, &frmGraphSet::CmdAdvanced_Click);
    const std::array<QWidget*, 11> order{
        &spn(kYMinimum),     &spn(kYMaximum),     &spn(kYSpacing), chkYDiv_, &spn(kXSpacing), chkXDiv_,
        &spn(kWidthMinutes), &spn(kWidthSeconds), advanced,        ok,       cancel};
    for (std::size_t i = 1; i < order.size(); ++i) {
        setTabOrder(order[i - 1], order[i]);
    }
    return column;
}

void frmGraphSet::Form_Load() {
    const std::int32_t width = toInt32(graph().Xwide());
    spn(kWidthMinutes).setValue(width / 60);
    spn(kWidthSeconds).setValue(width % 60);
    spn(kXSpacing).setValue(toInt32(graph().XDiv()));
    spn(kYMinimum).setValue(toInt32(graph().shownYMin()));
    spn(kYMaximum).setValue(toInt32(graph().shownYMax()));
    spn(kYSpacing).setValue(graph().YDiv());
    chkXDiv_->setChecked(graph().XGrid_Enable());
    chkYDiv_->setChecked(graph().YGrid_Enable());
    spnSetup_Change();
}

void frmGraphSet::spnSetup_Change() {
    const bool ordered = spn(kYMinimum).value() < spn(kYMaximum).value();
    state_->say(ordered ? QString() : QString::fromUtf8(graphText::kNotOrdered),
                ordered ? Tone::Plain : Tone::Warn);
}

void frmGraphSet::cmdOK_Click() {
    SpinBox::finishTyping(*this);
    ChartGraph& current = graph();
    current.setXDiv(static_cast<float>(spn(kXSpacing).value()));
    current.setYMin(static_cast<float>(spn(kYMinimum).value()));
    current.setYMax(static_cast<float>(spn(kYMaximum).value()));
    current.markYHome();
    current.setYDiv(static_cast<std::int16_t>(spn(kYSpacing).value()));
    current.setYGrid_Enable(chkYDiv_->isChecked() ? kChecked : kUnchecked);
    current.setXGrid_Enable(chkXDiv_->isChecked() ? kChecked : kUnchecked);
    const int width = spn(kWidthMinutes).value() * 60 + spn(kWidthSeconds).value();
    for (int number = 1; number <= 4; ++number) {
        ChartGraph& each = charts_.graph(number);
        each.setXwide(static_cast<float>(width));
        if (!each.Cfg_Save()) {
            emit settingsNotSaved(
                QString::fromStdString(filled(graphText::kSettingsNotSaved, {each.saveFault()})));
        }
    }
    accept();
}

void frmGraphSet::cmdCancel_Click() {
    reject();
}

/// Over the main window: what is changed there lives on when this window closes.
void frmGraphSet::CmdAdvanced_Click() {
    SpinBox::finishTyping(*this);
    charts_.chart(current_).openEditor(parentWidget());
}

} // namespace drx9
