#include "graphs/controls/ChartEditor.h"

#include "controls/SpinBox.h"
#include "controls/Theme.h"
#include "graphs/Texts.h"
#include "graphs/controls/ChartPainter.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTableWidget>

#include <cmath>

namespace drx9 {

namespace {
enum Column { kShown, kLabel, kColor, kWidth };
constexpr int kButtonWidth = 92;
constexpr double kMostValue = 100000;

/// A spin box for numbers with decimals: its position counts the last one.
class DecimalBox : public SpinBox {
public:
    DecimalBox(int decimals, QWidget* parent)
        : SpinBox(parent)
        , decimals_(decimals)
        , scale_(std::pow(10, decimals)) {}

    [[nodiscard]] int position(double value) const { return static_cast<int>(std::lround(value * scale_)); }
    [[nodiscard]] double number() const { return value() / scale_; }

protected:
    [[nodiscard]] QString textFromValue(int value) const override {
        return locale().toString(value / scale_, 'f', decimals_).remove(locale().groupSeparator());
    }
    [[nodiscard]] int valueFromText(const QString& text) const override { return position(numberOf(text)); }
    QValidator::State validate(QString& text, int&) const override {
        bool number = false;
        static_cast<void>(plain(text).toDouble(&number));
        return number ? QValidator::Acceptable : QValidator::Intermediate;
    }

private:
    [[nodiscard]] static QString plain(QString text) { return text.trimmed().replace(u',', u'.'); }
    [[nodiscard]] double numberOf(const QString& text) const {
        return std::clamp(plain(text).toDouble(), minimum() / scale_, maximum() / scale_);
    }

    int decimals_;
    double scale_;
};

QFormLayout* formOn(QWidget* page) {
    auto* form = new QFormLayout;
    form->setHorizontalSpacing(12);
    form->setVerticalSpacing(8);
    form->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
    static_cast<QBoxLayout*>(page->layout())->addLayout(form, 1);
    return form;
}

QWidget* pageWith(QBoxLayout* layout) {
    auto* page = new QWidget;
    layout->setContentsMargins(14, 14, 14, 14);
    layout->setSpacing(16);
    page->setLayout(layout);
    return page;
}

template<class Control>
Control* named(Control* control, const char* name, const char* accessible) {
    control->setObjectName(QString::fromLatin1(name));
    control->setAccessibleName(QString::fromLatin1(accessible));
    return control;
}
} // namespace

ChartEditor::ChartEditor(ChartModel& model, QWidget* owner)
    : Window(owner)
    , model_(model)
    , edit_(model) {
    setObjectName(QStringLiteral("ChartEditor"));
    setWindowTitle(QString::fromLatin1(model.design().heading));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(16, 16, 16, 16);
    column->setSpacing(12);
    auto* tabs = named(new QTabWidget(this), "edtTabs", "Settings of the chart");
    tabs->addTab(buildAxes(), QStringLiteral("Axes"));
    tabs->addTab(buildSeries(), QStringLiteral("Series"));
    tabs->addTab(buildTitles(), QStringLiteral("Titles && Fonts"));
    column->addWidget(tabs, 1);
    auto* hint = new QLabel(QString::fromUtf8(graphText::kAtOnce), this);
    hint->setForegroundRole(kMutedRole);
    column->addWidget(hint);
    column->addLayout(buildBottom());
    refill();
    resize(sizeHint().expandedTo({540, 427}));
}

/// The chart may have been changed by its own keys and wheel.
void ChartEditor::refill() {
    for (const std::function<void()>& each : refills_) {
        each();
    }
    fillSeries();
}

bool ChartEditor::event(QEvent* event) {
    if (event->type() == QEvent::WindowActivate) {
        refill();
    }
    return Window::event(event);
}

void ChartEditor::reject() {
    edit_.takeBack();
    Window::reject();
}

void ChartEditor::addNumber(QFormLayout& form, const char* label, const char* name, const Limits& limits,
                            Field field) {
    auto* box = new DecimalBox(limits.decimals, this);
    box->setNames(QString::fromLatin1(name), QString::fromLatin1(name) + QStringLiteral("Text"),
                  QString::fromLatin1(label));
    box->setRange(box->position(limits.least), box->position(limits.most));
    box->setSingleStep(box->position(limits.step));
    box->setAlignment(Qt::AlignRight);
    box->setMinimumSize(110, 28);
    refills_.push_back([this, box, limits, shown = field] {
        const QSignalBlocker quiet(box);
        ChartLook now = model_.look();
        box->setValue(box->position(std::clamp(shown(now), limits.least, limits.most)));
    });
    connect(box, &QSpinBox::valueChanged, this, [this, box, field = std::move(field)] {
        change([&](ChartLook& changed) { field(changed) = box->number(); });
    });
    form.addRow(QString::fromLatin1(label), box);
}

void ChartEditor::addCheck(QFormLayout& form, const char* label, const char* name,
                           std::function<bool&(ChartLook&)> field) {
    auto* box = named(new QCheckBox(QStringLiteral("Visible"), this), name, label);
    refills_.push_back([this, box, shown = field] {
        const QSignalBlocker quiet(box);
        ChartLook now = model_.look();
        box->setChecked(shown(now));
    });
    connect(box, &QCheckBox::toggled, this, [this, field = std::move(field)](bool on) {
        change([&](ChartLook& changed) { field(changed) = on; });
    });
    form.addRow(QString::fromLatin1(label), box);
}

void ChartEditor::addGridCheck(QFormLayout& form, const char* label, const char* name,
                               AxisLook ChartLook::*axis) {
    auto* box = named(new QCheckBox(QStringLiteral("Visible"), this), name, label);
    refills_.push_back([this, box, axis] {
        const QSignalBlocker quiet(box);
        box->setChecked((model_.look().*axis).gridPattern == kGridOn);
    });
    connect(box, &QCheckBox::toggled, this, [this, axis](bool on) {
        change([&](ChartLook& changed) { (changed.*axis).gridPattern = on ? kGridOn : kGridOff; });
    });
    form.addRow(QString::fromLatin1(label), box);
}

QWidget* ChartEditor::buildAxes() {
    QWidget* page = pageWith(new QHBoxLayout);
    QFormLayout& y = *formOn(page);
    const Limits value{-kMostValue, kMostValue, 1, 2};
    const Limits spacing{0.001, kMostValue, 1, 3};
    addNumber(y, "Y Minimum", "edtYMin", value, [](ChartLook& l) -> double& { return l.y.minimum; });
    addNumber(y, "Y Maximum", "edtYMax", value, [](ChartLook& l) -> double& { return l.y.maximum; });
    addNumber(y, "Y Grid", "edtYGrid", spacing, [](ChartLook& l) -> double& { return l.y.gridSpacing; });
    addNumber(y, "Y Labels", "edtYLabels", spacing, [](ChartLook& l) -> double& { return l.y.labelSpacing; });
    addNumber(y, "Y Ticks", "edtYTicks", spacing, [](ChartLook& l) -> double& { return l.y.tickSpacing; });
    addGridCheck(y, "Y Grid Lines", "edtYGridOn", &ChartLook::y);
    QFormLayout& x = *formOn(page);
    addNumber(x, "X Grid, s", "edtXGrid", spacing, [](ChartLook& l) -> double& { return l.x.gridSpacing; });
    addNumber(x, "X Labels, s", "edtXLabels", spacing,
              [](ChartLook& l) -> double& { return l.x.labelSpacing; });
    addNumber(x, "X Ticks, s", "edtXTicks", spacing, [](ChartLook& l) -> double& { return l.x.tickSpacing; });
    addGridCheck(x, "X Grid Lines", "edtXGridOn", &ChartLook::x);
    return page;
}

QWidget* ChartEditor::buildSeries() {
    QWidget* page = pageWith(new QVBoxLayout);
    table_ = named(new QTableWidget(model_.seriesCount(), 4, page), "edtSeries", "Series");
    table_->setHorizontalHeaderLabels({QStringLiteral("Shown"), QStringLiteral("Label"),
                                       QStringLiteral("Colour"), QStringLiteral("Width")});
    table_->verticalHeader()->hide();
    table_->horizontalHeader()->setSectionResizeMode(kLabel, QHeaderView::Stretch);
    table_->setColumnWidth(kColor, 140);
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setTabKeyNavigation(false);
    page->layout()->addWidget(table_);
    fillSeries();
    connect(table_, &QTableWidget::itemChanged, this, &ChartEditor::seriesEdited);
    connect(table_, &QTableWidget::cellDoubleClicked, this, [this](int, int column) {
        if (column == kColor) {
            chooseColor();
        }
    });
    auto* row = new QHBoxLayout;
    auto* color =
        named(new QPushButton(QStringLiteral("Colour..."), page), "edtColor", "Colour of the series");
    auto* program = named(new QPushButton(QStringLiteral("Program's Colours"), page), "edtProgramColors",
                          "Program's Colours");
    for (QPushButton* button : {color, program}) {
        button->setAutoDefault(false);
        button->setMinimumWidth(kButtonWidth);
        row->addWidget(button);
    }
    row->addStretch(1);
    static_cast<QBoxLayout*>(page->layout())->addLayout(row);
    connect(color, &QPushButton::clicked, this, &ChartEditor::chooseColor);
    connect(program, &QPushButton::clicked, this, &ChartEditor::useProgramColors);
    return page;
}

QColor ChartEditor::shownColor(int series) const {
    return ChartPainter(model_, Theme::of(palette()), font(), '.').seriesColor(series);
}

void ChartEditor::fillSeries() {
    const QSignalBlocker quiet(table_);
    for (int row = 0; row < model_.seriesCount(); ++row) {
        const SeriesLook& look = model_.look().series[static_cast<std::size_t>(row)];
        const QString label = QString::fromStdString(look.label);
        auto* shown = new QTableWidgetItem;
        shown->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        shown->setCheckState(look.shown ? Qt::Checked : Qt::Unchecked);
        shown->setData(Qt::AccessibleTextRole, label + QStringLiteral(", shown"));
        QPixmap patch(40, 12);
        patch.fill(shownColor(row));
        auto* color = new QTableWidgetItem(QIcon(patch), shownColor(row).name().toUpper());
        color->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        table_->setItem(row, kShown, shown);
        table_->setItem(row, kLabel, new QTableWidgetItem(label));
        table_->setItem(row, kColor, color);
        table_->setItem(row, kWidth, new QTableWidgetItem(locale().toString(look.width, 'g', 3)));
    }
    table_->setIconSize({40, 12});
}

void ChartEditor::seriesEdited(QTableWidgetItem* item) {
    const auto series = static_cast<std::size_t>(item->row());
    change([&](ChartLook& look) {
        SeriesLook& edited = look.series[series];
        bool number = false;
        const float width = item->text().replace(u',', u'.').toFloat(&number);
        if (item->column() == kShown) {
            edited.shown = item->checkState() == Qt::Checked;
        } else if (item->column() == kLabel) {
            edited.label = item->text().left(kMostTextCharacters).toStdString();
        } else if (item->column() == kWidth && number) {
            edited.width = std::clamp(width, kLeastLine, kMostLine);
        }
    });
    fillSeries();
}

void ChartEditor::chooseColor() {
    const int row = std::max(0, table_->currentRow());
    auto* dialog = new QColorDialog(shownColor(row), this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QColorDialog::colorSelected, this, [this, row](const QColor& color) {
        change([&](ChartLook& look) {
            look.series[static_cast<std::size_t>(row)].color = color.rgb() & 0xffffffU;
        });
        fillSeries();
    });
    dialog->open();
}

void ChartEditor::useProgramColors() {
    change([](ChartLook& look) {
        for (SeriesLook& series : look.series) {
            series.color.reset();
        }
    });
    fillSeries();
}

void ChartEditor::addText(QFormLayout& form, const char* label, const char* name, std::string AxisLook::*text,
                          AxisLook ChartLook::*axis) {
    auto* line = named(new QLineEdit(QString::fromStdString(model_.look().*axis.*text), this), name, label);
    line->setMaxLength(kMostTextCharacters);
    line->setMinimumSize(260, 28);
    connect(line, &QLineEdit::textChanged, this, [this, axis, text](const QString& typed) {
        change([&](ChartLook& look) { look.*axis.*text = typed.toStdString(); });
    });
    form.addRow(QString::fromLatin1(label), line);
}

void ChartEditor::addFormat(QFormLayout& form, const char* label, const char* name, AxisLook ChartLook::*axis,
                            const std::vector<std::pair<const char*, const char*>>& choices) {
    auto* box = named(new QComboBox(this), name, label);
    const QString now = QString::fromStdString((model_.look().*axis).format);
    for (const auto& [caption, format] : choices) {
        box->addItem(QString::fromLatin1(caption), QString::fromLatin1(format));
    }
    if (box->findData(now) < 0) {
        box->addItem(now, now);
    }
    box->setCurrentIndex(box->findData(now));
    connect(box, &QComboBox::activated, this, [this, axis, box] {
        change([&](ChartLook& look) { (look.*axis).format = box->currentData().toString().toStdString(); });
    });
    form.addRow(QString::fromLatin1(label), box);
}

void ChartEditor::addFontSize(QFormLayout& form) {
    auto* size = new SpinBox(this);
    size->setNames(QStringLiteral("edtFontSize"), QStringLiteral("edtFontSizeText"),
                   QStringLiteral("Font Size"));
    size->setRange(kLeastFont - 1, kMostFont);
    size->setSpecialValueText(QStringLiteral("Program's"));
    size->setValue(model_.look().fontPixels == 0 ? kLeastFont - 1 : model_.look().fontPixels);
    size->setMinimumSize(110, 28);
    connect(size, &QSpinBox::valueChanged, this, [this](int pixels) {
        change([&](ChartLook& look) { look.fontPixels = pixels < kLeastFont ? 0 : pixels; });
    });
    form.addRow(QStringLiteral("Font Size"), size);
}

QWidget* ChartEditor::buildTitles() {
    QWidget* page = pageWith(new QVBoxLayout);
    QFormLayout& form = *formOn(page);
    addText(form, "Y Title", "edtYTitle", &AxisLook::title, &ChartLook::y);
    addText(form, "X Title", "edtXTitle", &AxisLook::title, &ChartLook::x);
    addFormat(form, "Y Numbers", "edtYFormat", &ChartLook::y,
              {{"As short as they are", "%g"},
               {"0", "%.0f"},
               {"0.0", "%.1f"},
               {"0.00", "%.2f"},
               {"0.000", "%.3f"}});
    addFormat(form, "Time", "edtXFormat", &ChartLook::x,
              {{"Hours:minutes:seconds", "%H:%M:%S"}, {"Hours:minutes", "%H:%M"}});
    addFontSize(form);
    addCheck(form, "Legend", "edtLegend", [](ChartLook& look) -> bool& { return look.legend; });
    return page;
}

QLayout* ChartEditor::buildBottom() {
    auto* row = new QHBoxLayout;
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    for (QAbstractButton* button : buttons->buttons()) {
        button->setMinimumWidth(kButtonWidth);
    }
    row->addStretch(1);
    row->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] {
        SpinBox::finishTyping(*this);
        accept();
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &ChartEditor::reject);
    return row;
}

} // namespace drx9
