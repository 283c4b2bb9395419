#include "monitor/controls/RunBar.h"

#include "controls/AccessibleRoles.h"
#include "controls/Build.h"
#include "controls/MarkLabel.h"
#include "controls/NoticePlate.h"
#include "controls/PickList.h"
#include "controls/Readout.h"
#include "controls/StartStopButton.h"
#include "controls/Theme.h"
#include "controls/WarnMark.h"
#include "monitor/Texts.h"
#include "monitor/controls/SizeStep.h"

#include <QApplication>
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

#include <algorithm>
#include <utility>

namespace drx9 {

namespace {
constexpr int kMargin = 16;
constexpr int kRightMargin = 24;
constexpr int kOffLinePixels = 24;
constexpr int kMarkGap = 4;
constexpr int kZeroWidth = 104;
constexpr int kLeastShutterWidth = 148;

void design(QWidget* widget, const char* name, const char* toolTip) {
    widget->setObjectName(QString::fromLatin1(name));
    widget->setToolTip(QString::fromLatin1(toolTip));
    widget->setAccessibleDescription(widget->toolTip());
    keepRoomWhenHidden(*widget);
}

void setVisibleIfDiffers(QWidget* widget, bool visible) {
    if (widget->isHidden() == visible) {
        widget->setVisible(visible);
    }
}

void setEnabledIfDiffers(QWidget* widget, bool enabled) {
    if (widget->isEnabled() != enabled) {
        widget->setEnabled(enabled);
    }
}

void setTextIfDiffers(QPushButton* button, const std::string& text) {
    const QString shown = QString::fromStdString(text);
    if (button->text() != shown) {
        button->setText(shown);
    }
}

void setDownIfDiffers(QPushButton* button, bool waits, bool waited) {
    if (waits != waited) { // between the two the mouse alone rules
        button->setDown(waits);
    }
}

void press(QPushButton* button) {
    if (button->isVisible() && button->isEnabled()) {
        button->click();
    }
}
} // namespace

RunBar::RunBar(QWidget* parent)
    : QWidget(parent) {
    auto* cell = new QGridLayout(this); // the run's row and the off-line row share its one cell
    cell->setContentsMargins(0, 0, 0, 0);
    cell->addWidget(buildRunRow(), 0, 0);
    cell->addWidget(buildOffLineRow(), 0, 0);
    connect(cboFilms_, &PickList::activated, this, &RunBar::filmChosen);
    connect(cmdZero_, &QPushButton::clicked, this, &RunBar::zeroPressed);
    connect(cmdShutter_, &QPushButton::clicked, this, &RunBar::shutterPressed);
    connect(cmdStartStop_, &QPushButton::clicked, this, &RunBar::startStopPressed);
    setTabOrder(cboFilms_, cmdZero_);
    setTabOrder(cmdZero_, cmdShutter_);
    setTabOrder(cmdShutter_, cmdStartStop_);
    applyTheme();
    setAccessibleRole(*this, QAccessible::Grouping);
    setAccessibleName(QStringLiteral("Run"));
}

QWidget* RunBar::buildRunRow() {
    auto* rowWidget = new QWidget(this);
    lblFilm_ = new QLabel(QStringLiteral("Film"), rowWidget);
    mrkFilm_ = new WarnMark(rowWidget);
    cboFilms_ = new PickList(rowWidget);
    lblNotice_ = new NoticePlate(rowWidget);
    cmdZero_ = new QPushButton(QStringLiteral("Zero"), rowWidget);
    cmdShutter_ = new QPushButton(QStringLiteral("Open Shutter"), rowWidget);
    cmdStartStop_ = new StartStopButton(rowWidget);
    design(lblFilm_, "lblFilm", "");
    design(cboFilms_, "cboFilms", "Set DRX-9 film.");
    design(lblNotice_, "lblNotice", "");
    design(cmdZero_, "cmdZero", "Zero DRX-9 thickness.");
    design(cmdShutter_, "cmdShutter", "Open/Close DRX-9 shutter & start graphing.");
    design(cmdStartStop_, "cmdStartStop", "Start/Stop graphing.");
    mrkFilm_->setObjectName(QStringLiteral("mrkFilm"));
    lblFilm_->setBuddy(cboFilms_);
    cboFilms_->setAccessibleName(QStringLiteral("Film"));
    cboFilms_->setMaxVisibleItems(20);
    cboFilms_->setFont(Readout::digitFont(font()));

    auto* row = new QHBoxLayout(rowWidget);
    row->setContentsMargins(kMargin, 0, kRightMargin - StartStopButton::kRing, 0);
    row->setSpacing(0);
    row->addWidget(lblFilm_);
    row->addSpacing(kMarkGap);
    row->addWidget(mrkFilm_);
    row->addSpacing(kMarkGap);
    row->addWidget(cboFilms_);
    row->addSpacing(kMargin);
    row->addWidget(lblNotice_, 1);
    row->addSpacing(kMargin);
    row->addWidget(cmdZero_);
    row->addSpacing(24);
    row->addWidget(cmdShutter_);
    row->addSpacing(kMargin - StartStopButton::kRing);
    row->addWidget(cmdStartStop_);
    return rowWidget;
}

QWidget* RunBar::buildOffLineRow() {
    offLineRow_ = new QWidget(this);
    offLineRow_->setAttribute(Qt::WA_TransparentForMouseEvents);
    auto* row = new QHBoxLayout(offLineRow_);
    row->setContentsMargins(kMargin, 0, kRightMargin, 0);
    row->setSpacing(32);
    auto* lblNotFound = new MarkLabel(offLineRow_);
    lblNotFound->setObjectName(QStringLiteral("lblNotFound"));
    lblNotFound->setTextPixels(kOffLinePixels, true);
    lblNotFound->say(QString::fromUtf8(monitorText::kOffLine), Tone::Alarm);
    offLineHint_ = new QLabel(QString::fromUtf8(monitorText::kChooseLink), offLineRow_);
    offLineHint_->setForegroundRole(kMutedRole);
    row->addWidget(lblNotFound);
    row->addWidget(offLineHint_);
    row->addStretch(1);
    offLineRow_->hide();
    return offLineRow_;
}

void RunBar::showFacts(const Facts& facts) {
    const bool comesOnLine = facts.onLine && cboFilms_->isHidden();
    const bool startsRun = facts.running && !shown_.running;
    showFilms(facts);
    for (QWidget* control :
         {static_cast<QWidget*>(lblFilm_), static_cast<QWidget*>(cboFilms_), static_cast<QWidget*>(cmdZero_),
          static_cast<QWidget*>(cmdShutter_), static_cast<QWidget*>(cmdStartStop_)}) {
        setVisibleIfDiffers(control, facts.onLine);
    }
    setVisibleIfDiffers(offLineRow_, facts.started && !facts.onLine);
    cmdStartStop_->setRunning(facts.running);
    setTextIfDiffers(cmdShutter_, facts.shutterCaption);
    setDownIfDiffers(cmdZero_, facts.zeroDown, shown_.zeroDown);
    setDownIfDiffers(cmdShutter_, facts.shutterDown, shown_.shutterDown);
    setDownIfDiffers(cmdStartStop_, facts.startStopDown, shown_.startStopDown);
    placeFocus(comesOnLine, startsRun);
    allow(facts);
    shown_ = facts;
    shown_.films = {};
}

void RunBar::showFilms(const Facts& facts) {
    if (!std::equal(shownFilms_.begin(), shownFilms_.end(), facts.films.begin(), facts.films.end())) {
        shownFilms_.assign(facts.films.begin(), facts.films.end());
        cboFilms_->clear();
        for (const std::string& name : shownFilms_) {
            cboFilms_->addItem(QString::fromStdString(name));
        }
    }
    if (cboFilms_->placeholderText() != facts.filmName) { // first: an empty one makes Qt choose an entry
        cboFilms_->setPlaceholderText(facts.filmName);
    }
    if (cboFilms_->currentIndex() != facts.filmIndex) {
        cboFilms_->setCurrentIndex(facts.filmIndex);
    }
    mrkFilm_->setExplanation(facts.onLine ? facts.filmMark : QString());
}

void RunBar::placeFocus(bool comesOnLine, bool startsRun) {
    const bool first = comesOnLine && !std::exchange(wasOnLine_, true); // nobody has chosen the focus yet
    if (first || (comesOnLine && focusIsSpare())) {
        cboFilms_->setFocus();
    }
    if (startsRun && (focusIsSpare() || window()->focusWidget() == cboFilms_)) { // the list gets locked now
        cmdStartStop_->setFocus();
    }
}

/// A hold takes the focus out of the bar and gives it back.
void RunBar::allow(const Facts& facts) {
    if (facts.held && !shown_.held) {
        QWidget* focus = window()->focusWidget();
        focusBeforeHold_ = isAncestorOf(focus) ? focus : nullptr;
        if (focusBeforeHold_ != nullptr) {
            focus->clearFocus(); // else Qt hands it to a readout, and selects its text
        }
    }
    setEnabledIfDiffers(cboFilms_, !facts.running && !facts.held);
    for (QPushButton* button : {cmdZero_, cmdShutter_, static_cast<QPushButton*>(cmdStartStop_)}) {
        setEnabledIfDiffers(button, !facts.held);
    }
    if (!facts.held && shown_.held && focusBeforeHold_ != nullptr && focusIsSpare()) {
        focusBeforeHold_->setFocus();
    }
}

/// Not hasFocus(), which is false while another window is active.
bool RunBar::focusIsSpare() const {
    const QWidget* focus = window()->focusWidget();
    return focus == nullptr || focus == spareFocus_;
}

void RunBar::showNotice(int subject, const QString& text, const QString& brief) {
    lblNotice_->showNotice(subject, text, brief);
    setVisibleIfDiffers(offLineHint_, text.isEmpty());
}

void RunBar::setStep(const StepMeasures& measures) {
    setFixedHeight(measures.barHeight);
    cboFilms_->setFixedSize(measures.filmWidth, 36);
    cmdZero_->setFixedSize(kZeroWidth, measures.buttonHeight);
    const int caption = QFontMetrics(font()).horizontalAdvance(QStringLiteral("Close Shutter")) + 40;
    cmdShutter_->setFixedSize(std::max(kLeastShutterWidth, caption), measures.buttonHeight);
    cmdStartStop_->setFaceHeight(measures.faceHeight);
}

void RunBar::openFilms() {
    if (cboFilms_->isVisible() && cboFilms_->isEnabled()) {
        cboFilms_->setFocus(Qt::ShortcutFocusReason);
        cboFilms_->showPopup();
    }
}

void RunBar::pressZero() {
    press(cmdZero_);
}

void RunBar::pressShutter() {
    press(cmdShutter_);
}

void RunBar::pressStartStop() {
    press(cmdStartStop_);
}

QWidget* RunBar::entry() const {
    return cboFilms_->isEnabled() ? static_cast<QWidget*>(cboFilms_) : cmdStartStop_;
}

QWidget* RunBar::filmList() const {
    return cboFilms_;
}

QWidget* RunBar::lastControl() const {
    return cmdStartStop_;
}

void RunBar::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        applyTheme();
    }
}

/// The film of a run must stay readable while its list is locked.
void RunBar::applyTheme() {
    const Theme theme = Theme::of(QApplication::palette());
    QPalette films;
    films.setColor(QPalette::PlaceholderText, theme.text);
    films.setColor(QPalette::Disabled, QPalette::PlaceholderText, theme.muted);
    for (const QPalette::ColorRole role : {QPalette::Text, QPalette::ButtonText, QPalette::WindowText}) {
        films.setColor(QPalette::Disabled, role, theme.muted);
    }
    cboFilms_->setPalette(films);
}

} // namespace drx9
