#pragma once

#include "graphs/AxisTicks.h"
#include "graphs/ChartCurves.h"
#include "graphs/ChartFile.h"
#include "graphs/CurveInk.h"

#include <cstdlib>
#include <string_view>

namespace drx9 {

/// What must hold of any bytes given as a chart's configuration and data; aborts where it does not. A look
/// that was taken is written and read back as itself, and is drawn.
inline void checkChartFiles(std::string_view bytes) {
    const ChartDesign& design = chartDesign(GraphKind::cChanGraph);
    RunPoints run(kRunColumns);
    ChartModel model(design, run);
    if (std::optional<ChartLook> look = parseChartLook(bytes, designLook(design))) {
        const std::string text = chartLookText(*look);
        const std::optional<ChartLook> again = parseChartLook(text, designLook(design));
        if (!again || chartLookText(*again) != text) {
            std::abort();
        }
        model.setLook(std::move(*look));
    }
    // As the program lays it out: the axes of the following view.
    static_cast<void>(
        axisTicks(model.look().x, model.xView(), {.pixels = 800, .labelPixels = 70, .time = true}));
    static_cast<void>(axisTicks(model.look().y, model.yView(), {.pixels = 300, .labelPixels = 20}));
    model.setOwnPoints(parseChartData(bytes, design.series));
    model.viewWholeRun();
    model.fitY();
    std::vector<std::uint32_t> pixels(64 * 48, 0xffffffff);
    const ChartCurves curves(model, 64, 48);
    CurveInk ink;
    for (int series = 0; series < design.series; ++series) {
        ink.line({pixels.data(), 64, 48, 64}, curves.curve(series), 2, 0);
        ink.thinLine({pixels.data(), 64, 48, 64}, curves.curve(series), 1, 0);
    }
    static_cast<void>(chartExport(model));
}

} // namespace drx9
