#include "graphs/ChartSummary.h"

#include "graphs/AxisTicks.h"

namespace drx9 {

namespace {
std::string newestValues(const ChartModel& model, char decimal) {
    const std::string format = "%." + std::to_string(model.design().decimals) + "f";
    std::string text;
    for (int series = 0; series < model.seriesCount(); ++series) {
        const ChartModel::Rows rows = model.drawnRows(series);
        if (model.seriesVisible(series) && rows.to > rows.from) {
            const float newest = model.points().value(model.column(series), rows.to - 1);
            text += (text.empty() ? "" : ", ") + model.look().series[static_cast<std::size_t>(series)].label +
                    " " + axisValueText(newest, format, decimal);
        }
    }
    return text.empty() ? "no readings" : text;
}
} // namespace

std::string chartSummary(const ChartModel& model, const ChartTracer& tracer, char decimal) {
    std::string text;
    for (const std::string& read : {tracer.text(decimal), tracer.differenceText(decimal)}) {
        text += read.empty() ? "" : read + ". ";
    }
    const ValueSpan x = model.xView();
    const ValueSpan y = model.yView();
    text += model.look().y.title + " from " + axisValueText(y.from, "%g", decimal) + " to " +
            axisValueText(y.to, "%g", decimal) + ", time " + elapsedText(x.from) + " to " +
            elapsedText(x.to) + ". Newest: " + newestValues(model, decimal);
    return text;
}

} // namespace drx9
