#pragma once

#include "graphs/ChartModel.h"

#include <string>
#include <vector>

namespace drx9 {

struct AxisLabel {
    double value;
    std::string text;
};

/// Where an axis has grid lines, labels and small ticks, all at whole multiples of their spacings. Where
/// there is no room for all of a kind, some are left out; where the view holds no whole multiple, labels
/// are at round parts of the spacing.
struct AxisTicks {
    std::vector<double> grid;
    std::vector<AxisLabel> labels;
    std::vector<double> ticks;
};

struct AxisRoom {
    double pixels = 1;      ///< length of the axis
    double labelPixels = 1; ///< what a label needs along it
    bool time = false;      ///< seconds: the spacings go up by minutes and hours
    char decimal = '.';
    double fractionPixels = 0; ///< what a label with thousandths of a second needs more
};

AxisTicks axisTicks(const AxisLook& axis, const ValueSpan& view, const AxisRoom& room);

/// Elapsed seconds in a time format: "%H", "%M", "%S" are hours (beyond 24), minutes and seconds in two
/// digits, other characters stay as they are.
std::string elapsedText(double seconds, const std::string& format = "%H:%M:%S");
/// The same with thousandths: "00:01:40.250".
std::string preciseElapsedText(double seconds, const std::string& format, char decimal);
/// A value in a number format: "%.0f" to "%.6f"; any other text is the shortest form.
std::string axisValueText(double value, const std::string& format, char decimal);

} // namespace drx9
