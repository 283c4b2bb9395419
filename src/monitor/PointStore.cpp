#include "monitor/PointStore.h"

#include <cmath>

namespace drx9 {

namespace {
double thousandths(double value) {
    return std::nearbyint(value * 1000.0) / 1000.0;
}
} // namespace

void PointStore::clear() {
    rows_.fill(Row{});
    current_ = 1;
    plotted_ = 1;
    rolledOver_ = false;
}

void PointStore::store(const Readings& readings, int sensors, bool gapBefore) {
    Row& row = rows_[static_cast<std::size_t>(current_ - 1)];
    row = Row{};
    row.elapsed = thousandths(readings.elapsed);
    row.averageRate = readings.averageRate;
    row.averageThickness = readings.averageThickness;
    row.gapBefore = gapBefore;
    for (std::size_t s = 0; s < static_cast<std::size_t>(sensors); ++s) {
        row.rate[s] = thousandths(readings.rate[s]);
        row.thickness[s] = readings.thickness[s];
        frequencies_[s] = readings.frequency[s];
    }
}

void PointStore::advance() {
    ++current_;
    if (current_ > kRows) {
        rolledOver_ = true;
        current_ = kRestartPoint;
    }
}

} // namespace drx9
