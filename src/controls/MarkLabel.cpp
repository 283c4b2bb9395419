#include "controls/MarkLabel.h"

#include "controls/AccessibleRoles.h"
#include "controls/Theme.h"

#include <QEvent>
#include <QPainter>
#include <QTextLayout>

namespace drx9 {

namespace {
constexpr int kMark = 14;
constexpr int kGap = 6;
constexpr int kSeparatorRoom = 12; ///< right of the hair line
} // namespace

MarkLabel::MarkLabel(QWidget* parent)
    : QWidget(parent) {
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    setForegroundRole(QPalette::WindowText);
    setAccessibleRole(*this, QAccessible::StaticText);
}

void MarkLabel::say(const QString& text, Tone tone) {
    if (text_ == text && tone_ == tone) {
        return;
    }
    const QSize before = sizeHint();
    text_ = text;
    tone_ = tone;
    setAccessibleName(text);
    if (sizeHint() != before) {
        updateGeometry();
    }
    update();
}

void MarkLabel::setTextPixels(int pixels, bool bold) {
    setFont(fontOfSize(font(), pixels, bold));
}

void MarkLabel::setSeparator(bool on) {
    separator_ = on;
    updateGeometry();
}

void MarkLabel::setTwoLines() {
    lines_ = 2;
    updateGeometry();
}

int MarkLabel::markWidth() const {
    return tone_ == Tone::Plain || text_.isEmpty() ? 0 : kMark + kGap;
}

int MarkLabel::widthFor(const QString& text, Tone tone) const {
    const int mark = tone == Tone::Plain ? 0 : kMark + kGap;
    const int wanted = text.isEmpty() ? 0 : mark + widths_.of(text, fontMetrics()) + 1;
    return wanted + (separator_ ? kSeparatorRoom + 1 : 0);
}

QSize MarkLabel::sizeHint() const {
    return {widthFor(text_, tone_), fontMetrics().height() * lines_};
}

QSize MarkLabel::minimumSizeHint() const {
    return {0, fontMetrics().height() * lines_};
}

/// The text in its lines, shortened to what they hold.
QString MarkLabel::fitting(int room) const {
    if (widths_.of(text_, fontMetrics()) <= room + 1) {
        return text_;
    }
    if (lines_ == 1) {
        return fontMetrics().elidedText(text_, Qt::ElideMiddle, room + 1);
    }
    QTextLayout layout(text_, font());
    layout.beginLayout();
    QTextLine first = layout.createLine();
    first.setLineWidth(room);
    const int split = first.textLength();
    layout.endLayout();
    const QString rest = fontMetrics().elidedText(text_.mid(split).trimmed(), Qt::ElideRight, room + 1);
    return text_.left(split).trimmed() + '\n' + rest;
}

void MarkLabel::paintEvent(QPaintEvent*) {
    const Theme theme = Theme::of(palette());
    QPainter painter(this);
    const QColor& color = theme.tone(tone_);
    if (separator_) {
        painter.fillRect(QRect(0, 0, 1, height()), theme.hair);
        painter.translate(kSeparatorRoom + 1, 0);
    }
    if (text_.isEmpty()) {
        return;
    }
    if (tone_ != Tone::Plain) {
        const int top = (height() - kMark + 1) / 2; // on whole pixels
        paintWarningMark(painter, QRectF(0, top, kMark, kMark - 1), color);
    }
    painter.setPen(color);
    const int room = width() - markWidth() - (separator_ ? kSeparatorRoom + 1 : 0);
    painter.drawText(QRect(markWidth(), 0, room + 2, height()), Qt::AlignLeft | Qt::AlignVCenter,
                     fitting(room));
}

void MarkLabel::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        widths_.forget();
        updateGeometry();
    }
}

} // namespace drx9
