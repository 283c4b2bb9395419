#include "controls/WarnMark.h"

#include "controls/AccessibleRoles.h"
#include "controls/Build.h"
#include "controls/Theme.h"

#include <QPainter>

namespace drx9 {

namespace {
constexpr int kMark = 14;
}

WarnMark::WarnMark(QWidget* parent)
    : QWidget(parent) {
    setAccessibleRole(*this, QAccessible::StaticText);
    setFixedSize(kMark, kMark);
    keepRoomWhenHidden(*this);
    hide();
}

void WarnMark::setExplanation(const QString& text, Tone tone) {
    if (tone_ != tone) {
        tone_ = tone;
        update();
    }
    if (toolTip() != text) {
        setToolTip(text);
        setAccessibleName(text);
        setVisible(!text.isEmpty());
    }
}

void WarnMark::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paintWarningMark(painter, QRectF(0, 0, kMark, kMark - 1), Theme::of(palette()).tone(tone_));
}

} // namespace drx9
