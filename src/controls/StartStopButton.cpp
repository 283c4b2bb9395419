#include "controls/StartStopButton.h"

#include "controls/Theme.h"

#include <QPainter>
#include <QPainterPath>

namespace drx9 {

namespace {
constexpr int kCaptionPixels = 20;
constexpr int kMark = 12;
constexpr int kMarkGap = 12;
const QColor kGreen(0x00, 0xFF, 0x00);
const QColor kRed(0xFF, 0x00, 0x00);
const QColor kGreenBorder(0x0A, 0x5A, 0x0A);
const QColor kRedBorder(0x7A, 0x00, 0x00);

void paintMark(QPainter& painter, const QRectF& rect, bool square) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    if (square) {
        painter.drawRect(rect);
        return;
    }
    QPainterPath path;
    path.moveTo(rect.topLeft() - QPointF(0, 1));
    path.lineTo(rect.right() + 1, rect.center().y());
    path.lineTo(rect.bottomLeft() + QPointF(0, 1));
    path.closeSubpath();
    painter.drawPath(path);
}
} // namespace

StartStopButton::StartStopButton(QWidget* parent)
    : QPushButton(QStringLiteral("START"), parent) {
    setFont(fontOfSize(font(), kCaptionPixels, true));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void StartStopButton::setRunning(bool running) {
    if (running_ != running) {
        running_ = running;
        setText(running ? QStringLiteral("STOP") : QStringLiteral("START"));
        update();
    }
}

void StartStopButton::setFaceHeight(int height) {
    faceHeight_ = height;
    updateGeometry();
}

QSize StartStopButton::sizeHint() const {
    const int needed = fontMetrics().horizontalAdvance(text()) + kMark + kMarkGap + 32;
    return {std::max(kFaceWidth, needed) + 2 * kRing, faceHeight_ + 2 * kRing};
}

void StartStopButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF face = QRectF(rect()).adjusted(kRing, kRing, -kRing, -kRing);
    if (hasFocus()) {
        painter.setPen(QPen(Theme::of(palette()).accent, 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 7, 7);
    }
    painter.setPen(QPen(running_ ? kRedBorder : kGreenBorder, isDown() ? 3 : 1));
    painter.setBrush(running_ ? kRed : kGreen);
    const double inset = isDown() ? 1.5 : 0.5;
    painter.drawRoundedRect(face.adjusted(inset, inset, -inset, -inset), 4, 4);
    const int textWidth = fontMetrics().horizontalAdvance(text());
    const double left = face.center().x() - (kMark + kMarkGap + textWidth) / 2.0;
    paintMark(painter, QRectF(left, face.center().y() - kMark / 2.0, kMark, kMark), running_);
    painter.setPen(Qt::black);
    painter.drawText(QRectF(left + kMark + kMarkGap, face.top(), textWidth + 2, face.height()),
                     Qt::AlignLeft | Qt::AlignVCenter, text());
}

} // namespace drx9
