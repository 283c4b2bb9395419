#include "monitor/frmDataLog.h"

#include "controls/Build.h"
#include "controls/MarkLabel.h"
#include "controls/ReadOnlyLine.h"
#include "controls/SpinBox.h"
#include "monitor/Texts.h"
#include "util/DisplayFormats.h"
#include "util/Paths.h"
#include "util/Text.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>

namespace drx9 {

namespace {
constexpr int kSpinnerWidth = 84;
constexpr int kSpinnerRoom = 34; ///< of its arrows and edges
constexpr int kStateWidth = 272;
constexpr int kStateMs = 500;
} // namespace

frmDataLog::frmDataLog(const DataLogWindowParts& parts, QWidget* owner)
    : Window(owner)
    , parts_(parts)
    , span_(parts.settings) {
    setObjectName(QStringLiteral("frmDataLog"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(16, 16, 16, 16);
    column->setSpacing(12);
    column->setSizeConstraint(QLayout::SetFixedSize);
    column->addWidget(buildFile());
    column->addWidget(buildSpan());
    column->addLayout(buildBottom());
    showSettings();
    setWindowTitle(shown("Data Log - [ " + bareName(parts.settings.File) + " ]"));
    loading_ = false;
    stateTimer_.setInterval(kStateMs);
    connect(&stateTimer_, &QTimer::timeout, this, &frmDataLog::showState);
    stateTimer_.start();
}

QGroupBox* frmDataLog::buildFile() {
    auto* group = new QGroupBox(QStringLiteral("Log File"), this);
    group->setObjectName(QStringLiteral("fraLog"));
    auto* grid = new QGridLayout(group);
    grid->setContentsMargins(12, 12, 12, 12);
    grid->setVerticalSpacing(8);
    struct Choice {
        LogMode mode;
        const char* caption;
        const char* toolTip;
    };
    const std::array<Choice, 3> choices{
        {{LogMode::Overwrite, "Overwrite", "Overwrite the log file at start of each run."},
         {LogMode::Append, "Append", "Append each run to the log file."},
         {LogMode::None, "None", "Do not log data."}}};
    for (int row = 0; row < 3; ++row) {
        const Choice& choice = choices[static_cast<std::size_t>(row)];
        const auto index = static_cast<int>(choice.mode);
        auto* button = new QRadioButton(latin(choice.caption), group);
        button->setObjectName(QStringLiteral("optLog_%1").arg(index));
        button->setToolTip(latin(choice.toolTip));
        button->setMinimumHeight(28);
        connect(button, &QRadioButton::toggled, this, [this, index](bool on) {
            if (on && !loading_) { // however it was switched on
                optLog_Click(index);
            }
        });
        grid->addWidget(button, row, 0, Qt::AlignLeft);
        optLog_[static_cast<std::size_t>(index)] = button;
    }
    cmdNew_ = makeButton(group, "cmdNew", "&New", "Open a new log file.");
    cmdView_ = makeButton(group, "cmdView", "View", "View the log file.");
    grid->addWidget(cmdNew_, 0, 1, Qt::AlignRight);
    grid->addWidget(cmdView_, 1, 1, Qt::AlignRight);
    path_ = new ReadOnlyLine(group);
    path_->setObjectName(QStringLiteral("txtLogFile"));
    path_->setFocusPolicy(Qt::ClickFocus);
    path_->setAccessibleName(QStringLiteral("Log File"));
    grid->addWidget(path_, 3, 0, 1, 2);
    connect(cmdNew_, &QPushButton::clicked, this, &frmDataLog::cmdNew_Click);
    connect(cmdView_, &QPushButton::clicked, this, &frmDataLog::cmdView_Click);
    return group;
}

SpinBox* frmDataLog::spinner(const char* name, const char* accessible, int most, int digits) {
    auto* box = new SpinBox(this);
    box->setObjectName(latin(name));
    box->setAccessibleName(latin(accessible));
    box->setRange(0, most);
    box->setLeastDigits(digits);
    box->setAlignment(Qt::AlignRight);
    const int longest = fontMetrics().horizontalAdvance(QString::number(DataLogSpan::kMostHours));
    box->setFixedWidth(std::max(kSpinnerWidth, longest + kSpinnerRoom));
    box->setMinimumHeight(30);
    return box;
}

QGroupBox* frmDataLog::buildSpan() {
    auto* group = new QGroupBox(QStringLiteral("Logged Span of the Run"), this);
    start_ = {spinner("spnStartHour", "Start, hours", DataLogSpan::kMostHours, 1),
              spinner("spnStartMin", "Start, minutes", 59, 2),
              spinner("spnStartSec", "Start, seconds", 59, 2)};
    end_ = {spinner("spnEndHour", "End, hours", DataLogSpan::kMostHours, 1),
            spinner("spnEndMin", "End, minutes", 59, 2), spinner("spnEndSec", "End, seconds", 59, 2)};
    interval_ = {nullptr, spinner("spnIntMin", "Interval, minutes", DataLogSpan::kMostIntervalMinutes, 2),
                 spinner("spnIntSec", "Interval, seconds", 59, 2)};
    auto* grid = new QGridLayout(group);
    grid->setContentsMargins(12, 12, 12, 12);
    grid->setHorizontalSpacing(8);
    grid->setVerticalSpacing(8);
    grid->setColumnStretch(0, 1);
    grid->addWidget(makeMutedLabel(group, latin("Hour")), 0, 1);
    grid->addWidget(makeMutedLabel(group, latin("Min.")), 0, 2);
    grid->addWidget(makeMutedLabel(group, latin("Sec.")), 0, 3);
    const auto addRow = [&](int row, const char* caption, const Spinners& spinners,
                            void (frmDataLog::*change)()) {
        auto* label = new QLabel(latin(caption), group);
        label->setBuddy(spinners.hours != nullptr ? spinners.hours : spinners.minutes);
        grid->addWidget(label, row, 0);
        int column = 1;
        for (SpinBox* box : {spinners.hours, spinners.minutes, spinners.seconds}) {
            if (box != nullptr) {
                grid->addWidget(box, row, column);
                connect(box, &SpinBox::valueChanged, this, change);
            }
            ++column;
        }
    };
    addRow(1, "&Start", start_, &frmDataLog::spnStart_Change);
    addRow(2, "&End", end_, &frmDataLog::spnEnd_Change);
    addRow(3, "&Interval", interval_, &frmDataLog::spnInt_Change);
    return group;
}

QLayout* frmDataLog::buildBottom() {
    auto* row = new QHBoxLayout;
    row->setSpacing(8);
    state_ = new MarkLabel(this);
    state_->setObjectName(QStringLiteral("lblState"));
    state_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    cmdForm_ = makeButton(this, "cmdForm", "&Close");
    connect(cmdForm_, &QPushButton::clicked, this, &QDialog::close);
    row->addWidget(state_, 1);
    row->addWidget(cmdForm_);
    state_->setMinimumWidth(kStateWidth);
    return row;
}

void frmDataLog::showSettings() {
    const LogMode type = parts_.settings.Type;
    const bool known = type == LogMode::None || type == LogMode::Overwrite;
    const auto mode = static_cast<std::size_t>(known ? type : LogMode::Append);
    optLog_[mode]->setChecked(true);
    fill(start_, span_.start());
    fill(end_, span_.end());
    fill(interval_, span_.interval());
    showFile();
    showState();
    optLog_[mode]->setFocus();
}

void frmDataLog::fill(const Spinners& spinners, const SpanFields& fields) {
    const auto set = [](SpinBox* box, std::int32_t value) {
        if (box != nullptr) {
            const QSignalBlocker blocker(box);
            box->setValue(value);
        }
    };
    set(spinners.hours, fields.hours);
    set(spinners.minutes, fields.minutes);
    set(spinners.seconds, fields.seconds);
}

SpanFields frmDataLog::fieldsOf(const Spinners& spinners) const {
    return {spinners.hours != nullptr ? spinners.hours->value() : 0, spinners.minutes->value(),
            spinners.seconds->value()};
}

void frmDataLog::showFile() {
    const QString path = shown(parts_.log.fullPath());
    if (path_->text() != path) {
        path_->setText(path);
        path_->setCursorPosition(0);
        path_->setToolTip(path);
    }
}

void frmDataLog::showState() {
    showFile();
    cmdView_->setEnabled(parts_.files.exists(parts_.log.fullPath()));
    const DataLog& log = parts_.log;
    if (!log.lastError().empty()) {
        state_->say(shown(filled(monitorText::kNotWritten, {log.lastError()})), Tone::Alarm);
        return;
    }
    std::string text = monitorText::kNoLineYet;
    if (log.lastLineTime()) {
        text = filled(monitorText::kLastLine,
                      {std::to_string(log.runNumber()),
                       log.linesWritten() == 1
                           ? monitorText::kOneLine
                           : filled(monitorText::kLines, {std::to_string(log.linesWritten())}),
                       timeOfDayText(*log.lastLineTime())});
    }
    state_->say(shown(text), Tone::Plain);
}

void frmDataLog::optLog_Click(int index) {
    SpinBox::finishTyping(*this);
    parts_.settings.Type = static_cast<LogMode>(index);
}

void frmDataLog::spnStart_Change() {
    if (!loading_ && span_.setStart(fieldsOf(start_))) {
        fill(end_, span_.end());
    }
}

void frmDataLog::spnEnd_Change() {
    if (!loading_ && span_.setEnd(fieldsOf(end_))) {
        fill(start_, span_.start());
    }
}

void frmDataLog::spnInt_Change() {
    const SpanFields fields = fieldsOf(interval_);
    span_.setInterval(fields.minutes, fields.seconds);
}

// Both may run an event loop of their own (a file dialog, a box): they wait until no exchange is under way.

void frmDataLog::cmdNew_Click() {
    SpinBox::finishTyping(*this);
    parts_.actions.runWhenIdle(ifAlive([this] { chooseFile(); }));
}

void frmDataLog::cmdView_Click() {
    SpinBox::finishTyping(*this);
    parts_.actions.runWhenIdle(ifAlive([this] { viewFile(); }));
}

void frmDataLog::chooseFile() {
    const QPointer<frmDataLog> self(this);
    FileDialogRequest request;
    request.title = "New Log File";
    request.defaultExtension = "txt";
    request.filter = "Data Files (*.txt)|*.txt";
    request.fileName = parts_.settings.File;
    if (!request.fileName.empty() && request.fileName.find('.') == std::string::npos) {
        request.fileName += ".xls"; // kept
    }
    if (!isAbsolutePath(request.fileName)) {
        request.initialFolder = folderOf(parts_.log.fullPath());
    }
    const std::string chosen = parts_.dialogs.saveFile(request);
    if (chosen.empty() || self == nullptr) {
        return;
    }
    parts_.settings.File = chosen;
    const std::string bracket = "[" + bareName(chosen) + "]";
    setWindowTitle(shown("DRX-9 Comm - " + bracket)); // kept: replaced at once
    setWindowTitle(shown("Data Log - " + bracket));
    showState();
}

void frmDataLog::viewFile() {
    const std::string reason = parts_.shell.openDocument(parts_.log.fullPath());
    if (!reason.empty()) {
        parts_.boxes.show(reason, "Data Log", MessageIcon::Exclamation);
    }
}

} // namespace drx9
