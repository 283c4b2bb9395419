#include "graphs/ChartLook.h"

#include <array>

namespace drx9 {

namespace {
constexpr double kDesignWidth = 300; ///< s
constexpr double kDesignSpacing = 60;
constexpr float kSensorLine = 1.5F;
constexpr float kAverageLine = 2;

AxisLook axis(double maximum, double spacing, const char* title, const char* format) {
    return {0, maximum, spacing, spacing, spacing / 10, kGridOn, 2, title, format};
}
} // namespace

const ChartDesign& chartDesign(GraphKind kind) {
    // The third chart's series is labelled as the first one's: kept.
    static const std::array<ChartDesign, 4> designs{{
        {GraphKind::cAvgGraph, "oc2AvgRate", "\\avg_dep.oc2", "Average Rate Graph", "Average Rate (A/s)",
         "A/s", "Average Rate", 1, 0, 20, 5, 2, true},
        {GraphKind::cChanGraph, "oc2ChanRate", "\\ch_dep.oc2", "Sensor Rates Graph", "Sensor Rates (A/s)",
         "A/s", "Sensor", 6, 2, 20, 5, 2, false},
        {GraphKind::cAvgThkGraph, "oc2AvgThick", "\\avg_thk.oc2", "Average Thickness Graph",
         "Average Thickness (kA)", "kA", "Average Rate", 1, 1, 5, 1, 3, true},
        {GraphKind::cChanThkGraph, "oc2ChanThick", "\\ch_thk.oc2", "Sensor Thickness Graph",
         "Sensor Thickness (kA)", "kA", "Sensor", 6, 8, 5, 1, 3, false},
    }};
    return designs[static_cast<std::size_t>(kind)];
}

ChartLook designLook(const ChartDesign& design) {
    ChartLook look;
    look.x = axis(kDesignWidth, kDesignSpacing, "Elapsed Time ()", "%H:%M:%S");
    look.y = axis(design.yMax, design.ySpacing, design.title, "%g");
    for (int number = 1; number <= design.series; ++number) {
        const std::string label = design.seriesLabel;
        look.series.push_back({design.series > 1 ? label + " " + std::to_string(number) : label, std::nullopt,
                               design.series > 1 ? kSensorLine : kAverageLine, true});
    }
    return look;
}

} // namespace drx9
