#include "controls/AppIcon.h"

#include <QPainter>

#include <algorithm>

namespace drx9 {

namespace {
const QColor kFace(0x1A, 0x1E, 0x22);
const QColor kCurve(0xE3, 0xE7, 0xEA);
} // namespace

void paintAppIcon(QPainter& painter, const QRectF& rect) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(rect.topLeft());
    painter.scale(rect.width() / 60, rect.height() / 60);
    painter.setPen(Qt::NoPen);
    painter.setBrush(kFace);
    painter.drawRoundedRect(QRectF(0, 0, 60, 60), 10, 10);
    const double thinnest = 1.6 * 60 / rect.width(); // the curve must stay a line at 16 pixels
    painter.setPen(QPen(kCurve, std::max(3.6, thinnest), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const QPointF curve[5] = {{8, 44}, {18, 42}, {26, 20}, {38, 18}, {52, 18}};
    painter.drawPolyline(curve, 5);
    painter.restore();
}

QIcon appIcon() {
    QIcon icon;
    for (const int size : {16, 24, 32, 48, 64, 128}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paintAppIcon(painter, QRectF(0, 0, size, size));
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

} // namespace drx9
