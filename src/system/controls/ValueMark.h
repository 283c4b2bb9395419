#pragma once

#include "controls/Build.h"
#include "controls/Theme.h"

#include <QLabel>
#include <QPainter>

namespace drx9 {

/// A triangle beside a field whose value is not shown as it is. Keeps its place while it is hidden.
class ValueMark : public QLabel {
public:
    explicit ValueMark(QWidget* parent)
        : QLabel(parent) {
        setFixedSize(kWidth + 2 * kRoom, kHeight);
        keepRoomWhenHidden(*this);
        hide();
    }

    /// `toolTip` says what the value is; an empty one hides the mark.
    void show(const QString& name, const QString& toolTip) {
        setToolTip(toolTip);
        setAccessibleName(name + QStringLiteral(", value not shown exactly"));
        setAccessibleDescription(toolTip);
        setVisible(!toolTip.isEmpty());
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        paintWarningMark(painter, QRectF(kRoom, 0, kWidth, kHeight), Theme::of(palette()).warn);
    }

private:
    static constexpr int kWidth = 14;
    static constexpr int kHeight = 13;
    static constexpr int kRoom = 4; ///< to the label and to the box
};

} // namespace drx9
