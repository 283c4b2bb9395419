#pragma once

#include "graphs/ChartCurves.h"

#include <vector>

namespace drx9 {

/// The dot at the end of a curve and the height of the number beside it, in pixels of the plot.
struct EndMark {
    int series; ///< from 0
    double x;
    double y;
    double numberY;
};

/// Marks of the visible curves that end in view, from the top down, their numbers at least `step` apart.
std::vector<EndMark> endMarks(const ChartModel& model, const ChartCurves& curves, double height, double step);

/// Spreads sorted positions so that neighbours are at least `step` apart, moving them as little as possible:
/// runs that are too tight are centred on their mean.
std::vector<double> spread(const std::vector<double>& sorted, double step);

} // namespace drx9
