#include "controls/Gauge.h"

#include "controls/AccessibleRoles.h"
#include "controls/Theme.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace drx9 {

namespace {
constexpr int kHeight = 8;
}

Gauge::Gauge(QWidget* parent)
    : QWidget(parent) {
    setFixedHeight(kHeight);
    setFocusPolicy(Qt::NoFocus);
    setAccessibleRole(*this, QAccessible::Indicator);
}

int Gauge::fillWidth() const {
    return static_cast<int>(std::lround(share_ * width() * devicePixelRatioF()));
}

void Gauge::setShare(double share) {
    const int before = fillWidth();
    share_ = std::clamp(std::isnan(share) ? 0.0 : share, 0.0, 1.0);
    if (fillWidth() != before) {
        setAccessibleDescription(QStringLiteral("%1 %").arg(std::lround(share_ * 100)));
        update();
    }
}

void Gauge::setStale(bool stale) {
    if (stale_ != stale) {
        stale_ = stale;
        update();
    }
}

void Gauge::paintEvent(QPaintEvent*) {
    const Theme theme = Theme::of(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF frame = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    QPainterPath path;
    path.addRoundedRect(frame, 3.5, 3.5);
    painter.fillPath(path, theme.hair);
    if (share_ > 0) {
        painter.save();
        painter.setClipPath(path);
        painter.fillRect(QRectF(0, 0, width() * share_, height()), stale_ ? theme.stale : theme.text);
        painter.restore();
    }
    painter.setPen(QPen(theme.line, 1));
    painter.drawPath(path);
}

} // namespace drx9
