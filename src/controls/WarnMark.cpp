#include "controls/WarnMark.h"

#include "controls/AccessibleRoles.h"
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
    QSizePolicy policy = sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    setSizePolicy(policy);
    hide();
}

void WarnMark::setExplanation(const QString& text) {
    if (toolTip() != text) {
        setToolTip(text);
        setAccessibleName(text);
        setVisible(!text.isEmpty());
    }
}

void WarnMark::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paintWarningMark(painter, QRectF(0, 0, kMark, kMark - 1), Theme::of(palette()).warn);
}

} // namespace drx9
