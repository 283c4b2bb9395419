#include "graphs/controls/ChartControl.h"

#include "controls/PopUpMenu.h"
#include "graphs/ChartSummary.h"
#include "graphs/Texts.h"
#include "graphs/controls/ChartEditor.h"
#include "graphs/controls/ChartNotes.h"
#include "graphs/controls/ChartPainter.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>

namespace drx9 {

namespace {
constexpr int kRing = 2;
constexpr int kMessageMs = 10000;
constexpr int kDescribeMs = 1000;
constexpr const char* kHelp = "Arrow keys move the view, plus and minus zoom, Home follows the run. Control "
                              "with Left or Right reads the "
                              "points of a series, Control with Up or Down goes to the next series. Space "
                              "pins a point, Escape drops it. "
                              "1 to 6 hide or show a sensor. The Menu key opens the menu.";
constexpr Qt::Orientations kBoth = Qt::Horizontal | Qt::Vertical;
} // namespace

ChartControl::ChartControl(ChartModel& model, ChartGraph& graph, const ChartPorts& ports, QWidget* parent)
    : QWidget(parent)
    , model_(model)
    , graph_(graph)
    , mouse_(model)
    , tracer_(model)
    , place_(ports.place)
    , output_(model, ports, [this](const QString& text) { showMessage(text); }) {
    setObjectName(QString::fromLatin1(model.design().controlName));
    setAccessibleName(QString::fromLatin1(model.design().title));
    setWhatsThis(QString::fromLatin1(kHelp)); // also what accessibility gives as help
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMinimumSize(320, 200);
    messageTimer_.setSingleShot(true);
    connect(&messageTimer_, &QTimer::timeout, this, [this] { showMessage({}); });
    describeTimer_.setSingleShot(true);
    connect(&describeTimer_, &QTimer::timeout, this, &ChartControl::describe);
    model.setListener([this] { modelChanged(); });
    graph.setPlacer([this](const GraphPlace& place) { placeAt(place); });
    takePlace();
    describe();
}

ChartControl::~ChartControl() {
    model_.setListener({});
    graph_.setPlacer({});
}

/// A tick paints only where readings came.
void ChartControl::modelChanged() {
    tracer_.leaveHidden();
    if (model_.lastPoint(0) == 0) { // a new run
        tracer_.leave();
        tracer_.dropPin();
    }
    if (isVisible()) {
        update(surface_ != nullptr ? painter().news(rect(), devicePixelRatioF(), *surface_) : rect());
    }
    describeSoon();
}

void ChartControl::allChanged() {
    update();
    describeSoon();
}

/// The graph object's geometry is the chart's.
void ChartControl::takePlace() {
    graph_.setGraphHeight(height());
    graph_.setGraphLeft(x());
    graph_.setGraphTop(y());
    graph_.setGraphWidth(width());
}

/// Only where no layout places the chart.
void ChartControl::placeAt(const GraphPlace& place) {
    const bool placed = isWindow() || (parentWidget() != nullptr && parentWidget()->layout() != nullptr);
    if (!placed && place.width > 0 && place.height > 0) {
        setGeometry(place.left, place.top, place.width, place.height);
    }
}

void ChartControl::setSilence(const QString& text) {
    if (silence_ != text) {
        silence_ = text;
        allChanged();
    }
}

QString ChartControl::note() const {
    if (!message_.isEmpty()) {
        return message_; // for some seconds only
    }
    const QString paused = following() ? QString() : QString::fromUtf8(graphText::kPaused);
    if (silence_.isEmpty()) {
        return paused;
    }
    return paused.isEmpty() ? silence_ : silence_ + QStringLiteral(". ") + paused;
}

void ChartControl::showMessage(const QString& text) {
    message_ = text;
    if (!text.isEmpty()) {
        messageTimer_.start(kMessageMs);
    }
    allChanged();
}

char ChartControl::decimal() const {
    return locale().decimalPoint().at(0).toLatin1();
}

ChartPainter ChartControl::painter() const {
    return {model_, Theme::of(palette()), font(), decimal()};
}

QRect ChartControl::plotRect() const {
    return painter().layout(rect()).plot;
}

void ChartControl::paintEvent(QPaintEvent*) {
    QPainter device(this);
    ChartPainter drawing = painter();
    if (surface_ == nullptr) {
        surface_ = std::make_unique<ChartSurface>();
    }
    const QRect plot = drawing.paint(device, rect(), devicePixelRatioF(), surface_.get());
    const ChartNotes notes(model_, drawing, Theme::of(palette()), decimal());
    notes.paintTracer(device, plot, tracer_);
    notes.paintNote(device, plot, note());
    if (hasFocus()) {
        device.setRenderHint(QPainter::Antialiasing);
        device.setPen(QPen(Theme::of(palette()).accent, kRing));
        device.drawRect(QRectF(rect()).adjusted(1, 1, -1, -1));
    }
}

// What the operator does.

void ChartControl::follow() {
    tracer_.dropPin();
    model_.follow();
}

void ChartControl::toggleSeries(int series) {
    if (series < model_.seriesCount() && model_.seriesPresent(series)) {
        model_.setSeriesShown(series, !model_.look().series[static_cast<std::size_t>(series)].shown);
    }
}

void ChartControl::copyPicture() {
    QApplication::clipboard()->setImage(output_.image(*this, devicePixelRatioF()));
}

void ChartControl::traceAt(const QPointF& at) {
    const QRect plot = plotRect();
    const QPointF inPlot = at - plot.topLeft();
    if (plot.contains(at.toPoint())) {
        tracer_.moveTo(painter().curves(plot, 1), inPlot.x(), inPlot.y());
    } else {
        tracer_.leave();
    }
    update();
    describeSoon();
}

/// Moves the view where the traced point has left it.
void ChartControl::showTraced() {
    const ValueSpan view = model_.xView();
    if (!tracer_.point()) {
        return;
    }
    const double time = tracer_.point()->time;
    const double by = time < view.from ? time - view.from : time > view.to ? time - view.to : 0;
    if (by != 0) {
        model_.setXView({view.from + by, view.to + by});
    }
}

void ChartControl::pinTraced() {
    if (!tracer_.point()) {
        tracer_.step(-1);
    }
    tracer_.pin();
}

bool ChartControl::clickLegend(const QPoint& at) {
    const ChartLayout parts = painter().layout(rect());
    for (int series = 0; series < model_.seriesCount(); ++series) {
        if (parts.legend[static_cast<std::size_t>(series)].contains(at)) {
            toggleSeries(series);
            return true;
        }
    }
    return false;
}

/// The click that gives the focus, whether from a control beside or from another window, pins nothing.
void ChartControl::mousePressEvent(QMouseEvent* event) {
    pressPins_ = hasFocus() && !focusCame_;
    focusCame_ = false;
    if (event->button() != Qt::LeftButton || clickLegend(event->pos())) {
        return;
    }
    mouse_.setPlot(plotRect());
    mouse_.press(event->position());
}

void ChartControl::mouseMoveEvent(QMouseEvent* event) {
    focusCame_ = false;
    if (!event->buttons().testFlag(Qt::LeftButton)) {
        mouse_.cancel(); // a menu or another window took the release
    }
    if (!mouse_.pressed()) {
        traceAt(event->position());
    } else if (mouse_.move(event->position())) {
        tracer_.leave();
    }
}

void ChartControl::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && mouse_.release() && pressPins_) {
        traceAt(event->position());
        if (tracer_.point()) {
            tracer_.pin();
        }
        update();
    }
}

void ChartControl::mouseDoubleClickEvent(QMouseEvent* event) {
    mouse_.cancel(); // its release is no click
    if (event->button() == Qt::LeftButton && !clickLegend(event->pos())) {
        follow();
    }
}

void ChartControl::wheelEvent(QWheelEvent* event) {
    mouse_.setPlot(plotRect());
    mouse_.wheel(event->position(), event->angleDelta().y() / 120.0);
    event->accept();
}

void ChartControl::leaveEvent(QEvent* event) {
    QWidget::leaveEvent(event);
    tracer_.leave();
    describeSoon();
    update();
}

bool ChartControl::tracerKey(int key, Qt::KeyboardModifiers modifiers) {
    const bool control = modifiers.testFlag(Qt::ControlModifier);
    if (control && (key == Qt::Key_Left || key == Qt::Key_Right)) {
        tracer_.step(key == Qt::Key_Left ? -1 : 1);
        showTraced();
    } else if (control && (key == Qt::Key_Up || key == Qt::Key_Down)) {
        tracer_.stepSeries(key == Qt::Key_Up ? -1 : 1);
    } else if (key == Qt::Key_Space) {
        pinTraced();
    } else if (key == Qt::Key_Escape && (tracer_.pinned() || tracer_.point())) {
        if (!tracer_.pinned()) {
            tracer_.leave();
        }
        tracer_.dropPin();
    } else {
        return false;
    }
    update();
    describeSoon();
    return true;
}

void ChartControl::keyPressEvent(QKeyEvent* event) {
    focusCame_ = false;
    mouse_.setPlot(plotRect());
    const Qt::KeyboardModifiers command = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    if (event->matches(QKeySequence::Copy)) {
        copyPicture();
    } else if (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier) {
        openMenu(mapToGlobal(plotRect().topLeft()));
    } else if (event->key() >= Qt::Key_1 && event->key() <= Qt::Key_6 && !(event->modifiers() & command)) {
        toggleSeries(event->key() - Qt::Key_1);
    } else if (event->key() == Qt::Key_Home) {
        follow();
    } else if (!tracerKey(event->key(), event->modifiers()) &&
               !mouse_.key(event->key(), event->modifiers())) {
        QWidget::keyPressEvent(event);
    }
}

void ChartControl::addViews(QMenu& menu) {
    mouse_.setPlot(plotRect());
    menu.addAction(QStringLiteral("Follow the run\tHome"), this, &ChartControl::follow);
    menu.addAction(QStringLiteral("Fit Y to what is shown\tF"), this, [this] { model_.fitY(); });
    menu.addAction(QStringLiteral("Whole run\tW"), this, [this] { model_.viewWholeRun(); });
    menu.addSeparator();
    menu.addAction(QStringLiteral("Zoom in\t+"), this, [this] { mouse_.zoomIn(kBoth); });
    menu.addAction(QStringLiteral("Zoom out\t-"), this, [this] { mouse_.zoomOut(kBoth); });
    menu.addAction(QStringLiteral("Zoom X in\tCtrl++"), this, [this] { mouse_.zoomIn(Qt::Horizontal); });
    menu.addAction(QStringLiteral("Zoom X out\tCtrl+-"), this, [this] { mouse_.zoomOut(Qt::Horizontal); });
    menu.addAction(QStringLiteral("Zoom Y in\tShift+Num +"), this, [this] { mouse_.zoomIn(Qt::Vertical); });
    menu.addAction(QStringLiteral("Zoom Y out\tShift+-"), this, [this] { mouse_.zoomOut(Qt::Vertical); });
}

/// What mouse and keys do, for those who look for it. The keys are beside them as texts: the chart takes them
/// itself.
QMenu* ChartControl::buildMenu() {
    auto* menu = new QMenu(this);
    addViews(*menu);
    menu->addSeparator();
    for (int series = 0; series < model_.seriesCount(); ++series) {
        if (model_.seriesPresent(series)) {
            const SeriesLook& look = model_.look().series[static_cast<std::size_t>(series)];
            const QString label = QString::fromStdString(look.label).replace(u'&', QStringLiteral("&&"));
            QAction* item = menu->addAction(label + QStringLiteral("\t%1").arg(series + 1), this,
                                            [this, series] { toggleSeries(series); });
            item->setCheckable(true);
            item->setChecked(look.shown);
        }
    }
    menu->addSeparator();
    menu->addAction(QStringLiteral("Copy picture\tCtrl+C"), this, &ChartControl::copyPicture);
    if (output_.hasFiles()) {
        menu->addAction(QStringLiteral("Save picture..."), this, [this] { output_.savePicture(*this); });
        menu->addAction(QStringLiteral("Export data..."), this, [this] { output_.exportData(*this); });
    }
    if (output_.hasPrinter()) {
        menu->addAction(QStringLiteral("Print..."), this, [this] { output_.print(*this); });
    }
    return menu;
}

void ChartControl::openMenu(const QPoint& corner) {
    popUpMenu(buildMenu(), corner);
}

void ChartControl::contextMenuEvent(QContextMenuEvent* event) {
    openMenu(event->reason() == QContextMenuEvent::Mouse ? event->globalPos()
                                                         : mapToGlobal(plotRect().topLeft()));
    event->accept();
}

void ChartControl::openEditor(QWidget* owner) {
    if (editor_ == nullptr) {
        editor_ = new ChartEditor(model_, owner);
        if (place_) {
            place_(*editor_);
        }
    }
    editor_->show();
    editor_->raise();
    editor_->activateWindow();
}

// What the window system tells.

void ChartControl::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    focusCame_ = event->reason() == Qt::MouseFocusReason || event->reason() == Qt::ActiveWindowFocusReason;
    update();
}

void ChartControl::focusOutEvent(QFocusEvent* event) {
    QWidget::focusOutEvent(event);
    update();
}

void ChartControl::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    surface_.reset(); // theme, font or locale
    update();
}

void ChartControl::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    takePlace();
}

void ChartControl::moveEvent(QMoveEvent* event) {
    QWidget::moveEvent(event);
    takePlace();
}

void ChartControl::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    mouse_.cancel();
    tracer_.leave();
    surface_.reset();
}

void ChartControl::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    describe();
}

/// At most once a second, for who listens to the screen.
void ChartControl::describeSoon() {
    if (isVisible() && !describeTimer_.isActive()) {
        describeTimer_.start(kDescribeMs);
    }
}

void ChartControl::describe() {
    const QString summary = QString::fromStdString(chartSummary(model_, tracer_, decimal()));
    const QString said = note().isEmpty() ? summary : note() + QStringLiteral(". ") + summary;
    if (accessibleDescription() != said) {
        setAccessibleDescription(said);
    }
}

} // namespace drx9
