#include "controls/SensorLabel.h"

#include "controls/Theme.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace drx9 {

namespace {
constexpr int kSwatchWidth = 18;
constexpr int kSwatchHeight = 3;
constexpr int kTextStart = 24;
constexpr int kMark = 14;
constexpr int kMarkGap = 6;
const QString kMarkWord = QStringLiteral("crystal?");
} // namespace

SensorLabel::SensorLabel(int sensor, QWidget* parent)
    : QLabel(parent)
    , sensor_(sensor) {
    setContentsMargins(kTextStart, 0, 0, 0);
}

void SensorLabel::setOff(bool off) {
    if (off_ != off) {
        off_ = off;
        update();
    }
}

void SensorLabel::setMark(const QString& explanation) {
    if (explanation_ == explanation) {
        return;
    }
    explanation_ = explanation;
    setAccessibleDescription(explanation);
    update();
}

QRect SensorLabel::markRect() const {
    const int wide = kMark + kMarkGap + fontMetrics().horizontalAdvance(kMarkWord);
    return {width() - wide, 0, wide, height()};
}

void SensorLabel::paintEvent(QPaintEvent* event) {
    QLabel::paintEvent(event);
    const Theme theme = Theme::of(palette());
    QPainter painter(this);
    if (!off_) {
        painter.fillRect(0, (height() - kSwatchHeight) / 2, kSwatchWidth, kSwatchHeight,
                         theme.sensor(sensor_));
    }
    if (marked()) {
        const QRect r = markRect();
        const int top = (height() - kMark + 1) / 2; // on whole pixels
        paintWarningMark(painter, QRectF(r.left(), top, kMark, kMark - 1), theme.warn);
        painter.setPen(theme.warn);
        painter.drawText(r.adjusted(kMark + kMarkGap, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, kMarkWord);
    }
}

bool SensorLabel::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        if (marked() && markRect().contains(help->pos())) {
            QToolTip::showText(help->globalPos(), explanation_, this);
            return true;
        }
    }
    return QLabel::event(event);
}

} // namespace drx9
