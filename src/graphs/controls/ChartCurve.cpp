#include "graphs/controls/ChartCurve.h"

#include <algorithm>
#include <cmath>

namespace drx9 {

namespace {
/// Joins points to lines; many points of one pixel column become one upright line over their range.
class LineBuilder {
public:
    void add(const QPointF& point) {
        const double column = std::floor(point.x());
        if (!open_ || column != column_) {
            endColumn();
            if (open_) {
                lines_.append(QLineF(last_, point));
            }
            open_ = true;
            column_ = column;
            low_ = high_ = point.y();
            count_ = 0;
        }
        last_ = point;
        low_ = std::min(low_, point.y());
        high_ = std::max(high_, point.y());
        ++count_;
    }
    void breakLine() {
        endColumn();
        open_ = false;
    }
    QVector<QLineF> take() {
        endColumn();
        return std::move(lines_);
    }

private:
    void endColumn() {
        if (open_ && count_ > 1) {
            lines_.append(QLineF(last_.x(), low_, last_.x(), high_));
        }
    }

    QVector<QLineF> lines_;
    QPointF last_;
    bool open_ = false;
    double column_ = 0;
    double low_ = 0;
    double high_ = 0;
    int count_ = 0;
};
} // namespace

ChartCurve::ChartCurve(QCPAxis* keyAxis, QCPAxis* valueAxis)
    : QCPGraph(keyAxis, valueAxis) {
    setSelectable(QCP::stNone);
}

void ChartCurve::setStrip(double left, double right) {
    left_ = left;
    right_ = right;
}

QVector<QLineF> ChartCurve::thinnedLines() const {
    const QCPAxis& x = *keyAxis();
    const QCPAxis& y = *valueAxis();
    const double from = std::max(x.range().lower, x.pixelToCoord(left_));
    const double to = std::min(x.range().upper, x.pixelToCoord(right_));
    LineBuilder lines;
    const auto end = data()->findEnd(to);
    for (auto point = data()->findBegin(from); point < end; ++point) {
        if (std::isnan(point->value)) {
            lines.breakLine();
        } else {
            lines.add({x.coordToPixel(point->key), y.coordToPixel(point->value)});
        }
    }
    return lines.take();
}

void ChartCurve::draw(QCPPainter* painter) {
    const QVector<QLineF> lines = thinnedLines();
    if (!lines.isEmpty()) {
        painter->setAntialiasing(true);
        painter->setPen(pen());
        painter->drawLines(lines); // single lines: far cheaper to draw than one wide path
    }
}

} // namespace drx9
