#include "controls/NoticePlate.h"

#include "controls/AccessibleRoles.h"
#include "controls/Build.h"
#include "controls/Theme.h"

#include <QAccessible>
#include <QPainter>

namespace drx9 {

namespace {
constexpr int kHeight = 36;
constexpr int kTextPixels = 15;
constexpr int kMark = 15;
constexpr int kMarkTop = (kHeight - kMark) / 2; // on whole pixels
constexpr int kSide = 10;
constexpr int kGap = 8;
} // namespace

NoticePlate::NoticePlate(QWidget* parent)
    : QWidget(parent) {
    setFont(fontOfSize(font(), kTextPixels));
    setFixedHeight(kHeight);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    keepRoomWhenHidden(*this);
    setAccessibleRole(*this, QAccessible::AlertMessage);
    hide();
}

void NoticePlate::showNotice(int subject, const QString& text, const QString& brief) {
    if (text_ == text && brief_ == brief) {
        return;
    }
    text_ = text;
    brief_ = brief;
    setToolTip(text);
    setAccessibleDescription(text);
    setVisible(!text.isEmpty());
    update();
    if (subject_ != subject) {
        subject_ = subject;
        setAccessibleName(text);
        announce();
    }
}

void NoticePlate::announce() {
    if (!text_.isEmpty() && QAccessible::isActive()) {
        QAccessibleEvent event(this, QAccessible::Alert);
        QAccessible::updateAccessibility(&event);
    }
}

int NoticePlate::plateWidth(const QString& text) const {
    return 2 * kSide + kMark + kGap + fontMetrics().horizontalAdvance(text) + 4;
}

QString NoticePlate::shownText() const {
    return plateWidth(text_) <= width() ? text_ : brief_;
}

QSize NoticePlate::sizeHint() const {
    return {200, kHeight};
}

QSize NoticePlate::minimumSizeHint() const {
    return {120, kHeight};
}

void NoticePlate::paintEvent(QPaintEvent*) {
    if (text_.isEmpty()) {
        return;
    }
    const Theme theme = Theme::of(palette());
    const int room = width() - plateWidth(QString());
    const QString shown = fontMetrics().elidedText(shownText(), Qt::ElideRight, room);
    const int wide = std::min(plateWidth(shown), width());
    const int left = (width() - wide) / 2; // on whole pixels
    const QRectF plate = QRectF(left, 0, wide, kHeight).adjusted(0.5, 0.5, -0.5, -0.5);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(theme.warn, 1));
    painter.setBrush(theme.warnFill);
    painter.drawRoundedRect(plate, 4, 4);
    paintWarningMark(painter, QRectF(plate.left() + kSide, kMarkTop, kMark, kMark - 1), theme.warnText);
    painter.setPen(theme.warnText);
    painter.drawText(plate.adjusted(kSide + kMark + kGap, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, shown);
}

} // namespace drx9
