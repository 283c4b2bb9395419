#pragma once

#include "controls/Theme.h"
#include "graphs/ChartModel.h"

#include <QFont>
#include <QRect>
#include <QString>

#include <vector>

class QPainter;

namespace drx9 {

class ChartPainter;
class ChartTracer;

/// Draws what comes and goes over a chart in its window: the note, the tracer with its words, the pin.
class ChartNotes {
public:
    /// For one drawing: keeps references to model and painter.
    ChartNotes(const ChartModel& model, const ChartPainter& chart, const Theme& theme, char decimal);

    void paintNote(QPainter& painter, const QRect& plot, const QString& note) const;
    void paintTracer(QPainter& painter, const QRect& plot, const ChartTracer& tracer) const;

private:
    [[nodiscard]] QPointF place(const QRect& plot, double time, double value) const;
    void paintCross(QPainter& painter, const QPointF& at) const;
    [[nodiscard]] std::vector<QString> tracerLines(const ChartTracer& tracer) const;
    void paintWords(QPainter& painter, const QRect& plot, const QPointF& point,
                    const ChartTracer& tracer) const;

    const ChartModel& model_;
    const ChartPainter& chart_;
    Theme theme_;
    QFont font_;
    char decimal_;
};

} // namespace drx9
