#pragma once

#include "controls/AccessibleRoles.h"
#include "controls/Theme.h"

#include <QPainter>
#include <QWidget>

namespace drx9 {

/// A separator one pixel wide.
class HairLine : public QWidget {
public:
    HairLine(Qt::Orientation orientation, QWidget* parent)
        : QWidget(parent) {
        setAccessibleRole(*this, QAccessible::Separator);
        if (orientation == Qt::Horizontal) {
            setFixedHeight(1);
        } else {
            setFixedWidth(1);
        }
    }

protected:
    void paintEvent(QPaintEvent*) override { QPainter(this).fillRect(rect(), Theme::of(palette()).hair); }
};

} // namespace drx9
