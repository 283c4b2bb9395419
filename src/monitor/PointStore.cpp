#include "monitor/PointStore.h"

namespace drx9 {

void PointStore::clear() {
    rows_.fill(Row{});
    current_ = 1;
    plotted_ = 1;
}

void PointStore::store(const Readings& readings, int sensors, bool gapBefore) {
    Row& row = rows_[static_cast<std::size_t>(current_ - 1)];
    row = Row{};
    row.elapsed = readings.elapsed;
    row.averageRate = readings.averageRate;
    row.averageThickness = readings.averageThickness;
    row.gapBefore = gapBefore;
    for (std::size_t s = 0; s < static_cast<std::size_t>(sensors); ++s) {
        row.rate[s] = readings.rate[s];
        row.thickness[s] = readings.thickness[s];
    }
}

void PointStore::advance() {
    ++current_;
    if (current_ > kRows) {
        current_ = kRestartPoint;
    }
}

} // namespace drx9
