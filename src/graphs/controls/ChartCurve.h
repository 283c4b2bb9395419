#pragma once

#include <qcustomplot.h>

namespace drx9 {

/// A curve of a strip chart. Draws only what lies in the plot's dirty strip, thinned to what pixel columns
/// can show, and breaks where a point is no number.
class ChartCurve : public QCPGraph {
    Q_OBJECT
public:
    ChartCurve(QCPAxis* keyAxis, QCPAxis* valueAxis);

    /// Only between these two x pixels from the next drawing on.
    void setStrip(double left, double right);

protected:
    void draw(QCPPainter* painter) override;

private:
    [[nodiscard]] QVector<QLineF> thinnedLines() const;

    double left_ = 0;
    double right_ = 0;
};

} // namespace drx9
