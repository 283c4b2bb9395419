#include "graphs/controls/ChartControl.h"

#include "graphs/controls/ChartHeader.h"
#include "graphs/controls/ChartPlot.h"
#include "controls/Theme.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QVBoxLayout>

namespace drx9 {

namespace {
constexpr float kDesignWidth = 300; ///< s
constexpr int kRing = 2;
constexpr double kPanStep = 0.1;
constexpr double kZoomStep = 0.8;
} // namespace

const std::array<ChartDesign, 4>& chartDesigns() {
    // The third chart's series is labelled as the first one's: kept.
    static const std::array<ChartDesign, 4> designs{{
        {"oc2AvgRate", "Average Rate (A/s)", "Average Rate", 1, 20, 5, 2},
        {"oc2ChanRate", "Sensor Rates (A/s)", "Sensor", 6, 20, 5, 2},
        {"oc2AvgThick", "Average Thickness (kA)", "Average Rate", 1, 5, 1, 3},
        {"oc2ChanThick", "Sensor Thickness (kA)", "Sensor", 6, 5, 1, 3},
    }};
    return designs;
}

ChartControl::ChartControl(const ChartDesign& design, QWidget* parent)
    : QWidget(parent)
    , design_(design)
    , header_(new ChartHeader(QString::fromLatin1(design.title), this))
    , plot_(new ChartPlot(design.series, design.ySpacing, design.decimals, this))
    , sensors_(design.series) {
    setObjectName(QString::fromLatin1(design.objectName));
    setAccessibleName(QString::fromLatin1(design.title));
    setFocusPolicy(Qt::StrongFocus);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kRing, kRing, kRing, kRing);
    column->setSpacing(0);
    column->addWidget(header_);
    column->addWidget(plot_, 1);
    setMinimumSize(320, 200);
    connect(header_, &ChartHeader::entryClicked, this, &ChartControl::toggleSeries);
    connect(plot_, &ChartPlot::xViewChanged, this, &ChartControl::pauseFollowing);
    connect(plot_, &ChartPlot::followWanted, this, &ChartControl::follow);
    for (int i = 0; i < design.series; ++i) {
        const QString label = QString::fromLatin1(design.seriesLabel);
        plot_->setSeriesName(i, design.series > 1 ? label + QStringLiteral(" %1").arg(i + 1) : label);
    }
    Init();
    applyTheme();
}

void ChartControl::Init() {
    for (int series = 1; series <= design_.series; ++series) {
        setLastPoint(series, 0);
    }
    yMin_ = homeYMin_ = 0;
    yMax_ = homeYMax_ = design_.yMax;
    xMin_ = 0;
    xWide_ = kDesignWidth;
    plot_->setYRange(yMin_, yMax_);
    follow();
}

void ChartControl::ReInit() {
    setXMin(0);
    setXwide(Xwide());
    setLastPoint(1, 0);
    followX(); // Y stays as the operator has it
}

void ChartControl::setYMin(float value) {
    if (value != shownYMin()) { // set from outside, not the operator's own zoom taken over
        homeYMin_ = value;
    }
    yMin_ = value;
    if (static_cast<float>(plot_->yAxis->range().lower) != value) {
        plot_->setYRange(value, plot_->yAxis->range().upper);
    }
}

void ChartControl::setYMax(float value) {
    if (value != shownYMax()) {
        homeYMax_ = value;
    }
    yMax_ = value;
    if (static_cast<float>(plot_->yAxis->range().upper) != value) {
        plot_->setYRange(plot_->yAxis->range().lower, value);
    }
}

void ChartControl::setXMin(float value) {
    xMin_ = value;
    axisXMin_ = value;
    applyX();
}

void ChartControl::setXwide(float value) {
    xWide_ = value;
    axisXMax_ = axisXMin_ + value;
    applyX();
}

void ChartControl::applyX() {
    if (following_ && axisXMin_ < axisXMax_) {
        plot_->setXRange(axisXMin_, axisXMax_);
    }
}

float ChartControl::shownYMin() const {
    return static_cast<float>(plot_->yAxis->range().lower);
}

float ChartControl::shownYMax() const {
    return static_cast<float>(plot_->yAxis->range().upper);
}

void ChartControl::setLastPoint(int series, int last) {
    plot_->cut(series - 1, last);
}

void ChartControl::append(int series, double elapsed, double value) {
    plot_->append(series - 1, elapsed, value);
}

void ChartControl::appendGap() {
    plot_->breakCurves();
}

void ChartControl::redraw() {
    plot_->drawAppended();
}

void ChartControl::pauseFollowing() {
    following_ = false;
    showNote();
}

void ChartControl::followX() {
    following_ = true;
    axisXMin_ = xMin_;
    axisXMax_ = axisXMin_ + xWide_;
    applyX();
    showNote();
}

void ChartControl::follow() {
    followX();
    if (homeYMin_ < homeYMax_) {
        yMin_ = homeYMin_;
        yMax_ = homeYMax_;
        plot_->setYRange(yMin_, yMax_);
    }
}

void ChartControl::setSensorCount(int count) {
    if (design_.series > 1 && sensors_ != count) {
        sensors_ = count;
        showSeries();
    }
}

void ChartControl::toggleSeries(int series) {
    if (series < std::min(sensors_, design_.series)) {
        bool& hidden = hidden_[static_cast<std::size_t>(series)];
        hidden = !hidden;
        showSeries();
    }
}

void ChartControl::showSeries() {
    const Theme theme = Theme::of(palette());
    std::vector<ChartHeader::Entry> entries;
    for (int i = 0; i < design_.series; ++i) {
        const bool present = i < sensors_;
        const bool shown = present && !hidden_[static_cast<std::size_t>(i)];
        if (plot_->seriesShown(i) != shown) {
            plot_->setSeriesShown(i, shown);
        }
        const QColor color = design_.series > 1 ? theme.sensor(i + 1) : theme.text;
        entries.push_back({plot_->graph(i)->name(), color, shown, present});
    }
    header_->setEntries(std::move(entries));
}

void ChartControl::setSilence(const QString& text) {
    if (silence_ != text) {
        silence_ = text;
        showNote();
    }
}

QString ChartControl::note() const {
    return header_->note();
}

void ChartControl::showNote() {
    header_->setNote(!silence_.isEmpty() ? silence_
                     : following_        ? QString()
                                         : QStringLiteral("Following paused. Home returns"));
}

void ChartControl::applyTheme() {
    plot_->applyTheme(Theme::of(palette()));
    showSeries();
}

void ChartControl::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        applyTheme();
    }
}

void ChartControl::paintEvent(QPaintEvent*) {
    const Theme theme = Theme::of(palette());
    QPainter painter(this);
    const QColor color = hasFocus() ? theme.accent : theme.plot;
    painter.setPen(QPen(color, kRing, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.drawRect(rect().adjusted(1, 1, -1, -1));
}

void ChartControl::mousePressEvent(QMouseEvent* event) {
    setFocus(Qt::MouseFocusReason);
    event->accept();
}

void ChartControl::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    update();
}

void ChartControl::focusOutEvent(QFocusEvent* event) {
    QWidget::focusOutEvent(event);
    update();
}

bool ChartControl::viewKey(int key, Qt::KeyboardModifiers modifiers) {
    const bool control = modifiers.testFlag(Qt::ControlModifier);
    const bool onlyY = modifiers.testFlag(Qt::ShiftModifier);
    switch (key) {
    case Qt::Key_Left:
    case Qt::Key_Right: {
        const int direction = key == Qt::Key_Left ? -1 : 1;
        if (control) {
            plot_->moveTracer(direction);
        } else {
            plot_->pan(Qt::Horizontal, direction * kPanStep);
        }
        return true;
    }
    case Qt::Key_Up:
        plot_->pan(Qt::Vertical, kPanStep);
        return true;
    case Qt::Key_Down:
        plot_->pan(Qt::Vertical, -kPanStep);
        return true;
    case Qt::Key_Plus:
    case Qt::Key_Equal:
    case Qt::Key_Asterisk: // "+" with Shift on some keyboards
        plot_->zoom(kZoomStep, !onlyY || (key == Qt::Key_Plus && !modifiers.testFlag(Qt::KeypadModifier)));
        return true;
    case Qt::Key_Minus:
    case Qt::Key_Underscore:
        plot_->zoom(1 / kZoomStep, !onlyY);
        return true;
    case Qt::Key_Home:
        follow();
        return true;
    default:
        return false;
    }
}

void ChartControl::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy)) {
        copyPicture();
    } else if (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier) {
        openMenu(menuCorner());
    } else if (event->key() >= Qt::Key_1 && event->key() <= Qt::Key_6 &&
               !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))) {
        toggleSeries(event->key() - Qt::Key_1);
    } else if (!viewKey(event->key(), event->modifiers())) {
        QWidget::keyPressEvent(event);
    }
}

void ChartControl::copyPicture() {
    QApplication::clipboard()->setPixmap(grab(rect().adjusted(kRing, kRing, -kRing, -kRing)));
}

/// What the keys do, for those who look for it. The keys stand beside as texts: the chart takes them itself.
QMenu* ChartControl::buildMenu() {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(QStringLiteral("Follow the run\tHome"), this, &ChartControl::follow);
    menu->addAction(QStringLiteral("Zoom in\t+"), this, [this] { plot_->zoom(kZoomStep, true); });
    menu->addAction(QStringLiteral("Zoom out\t-"), this, [this] { plot_->zoom(1 / kZoomStep, true); });
    menu->addAction(QStringLiteral("Zoom Y in"), this, [this] { plot_->zoom(kZoomStep, false); });
    menu->addAction(QStringLiteral("Zoom Y out"), this, [this] { plot_->zoom(1 / kZoomStep, false); });
    if (design_.series > 1) {
        menu->addSeparator();
        for (int i = 0; i < std::min(sensors_, design_.series); ++i) {
            QAction* item = menu->addAction(plot_->graph(i)->name() + QStringLiteral("\t%1").arg(i + 1), this,
                                            [this, i] { toggleSeries(i); });
            item->setCheckable(true);
            item->setChecked(!hidden_[static_cast<std::size_t>(i)]);
        }
    }
    menu->addSeparator();
    menu->addAction(QStringLiteral("Copy picture\tCtrl+C"), this, &ChartControl::copyPicture);
    return menu;
}

QPoint ChartControl::menuCorner() const {
    return plot_->mapToGlobal(plot_->axisRect()->topLeft());
}

/// Not modal: readings go on while the menu is open.
void ChartControl::openMenu(const QPoint& corner) {
    buildMenu()->popup(corner);
}

void ChartControl::contextMenuEvent(QContextMenuEvent* event) {
    openMenu(event->reason() == QContextMenuEvent::Mouse ? event->globalPos() : menuCorner());
    event->accept();
}

ChartSet::ChartSet() {
    for (std::size_t i = 0; i < charts_.size(); ++i) {
        charts_[i] = new ChartControl(chartDesigns()[i]);
    }
}

ChartSet::~ChartSet() {
    for (const QPointer<ChartControl>& chart : charts_) {
        if (chart != nullptr && chart->parent() == nullptr) {
            delete chart;
        }
    }
}

ChartControl& ChartSet::chart(int number) const {
    return *charts_[static_cast<std::size_t>(number - 1)];
}

std::array<Graph*, 4> ChartSet::graphs() const {
    return {charts_[0].data(), charts_[1].data(), charts_[2].data(), charts_[3].data()};
}

} // namespace drx9
