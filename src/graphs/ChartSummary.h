#pragma once

#include "graphs/ChartTracer.h"

#include <string>

namespace drx9 {

/// What a chart shows, in words: what is read off, the ranges, the newest value of each visible series.
std::string chartSummary(const ChartModel& model, const ChartTracer& tracer, char decimal);

} // namespace drx9
