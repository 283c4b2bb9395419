#pragma once

#include "link/Records.h"

#include <array>
#include <cstdint>

namespace drx9 {

/// The points of the run that feed the charts: 500 rows that wrap.
///
/// Outside a run the current point does not advance: each reading overwrites the same row. Point numbers
/// count from 1; the row of point p is p - 1.
class PointStore {
public:
    static constexpr std::int16_t kRows = 500;
    static constexpr std::int16_t kRestartPoint = 1; ///< point that follows the last one when the store wraps

    struct Row {
        double elapsed = 0;                          ///< s, rounded to 0.001
        double averageRate = 0;                      ///< Å/s
        double averageThickness = 0;                 ///< kÅ
        std::array<double, kMaxSensors> rate{};      ///< Å/s, rounded to 0.001
        std::array<double, kMaxSensors> thickness{}; ///< kÅ, for the sensor thickness chart
        bool gapBefore = false;                      ///< a reading before this one failed
    };

    /// Empties the store and sets the counters to their start values.
    void clear();
    /// Stores a reading at the current point; `sensors` values are taken.
    void store(const Readings& readings, int sensors, bool gapBefore);
    /// Moves to the next point; wraps to kRestartPoint after the last row.
    void advance();

    [[nodiscard]] std::int16_t currentPoint() const { return current_; }
    [[nodiscard]] std::int16_t lastPlotted() const { return plotted_; }
    void setLastPlotted(std::int16_t point) { plotted_ = point; }
    [[nodiscard]] const Row& row(std::int16_t point) const {
        return rows_[static_cast<std::size_t>(point - 1)];
    }

private:
    std::array<Row, kRows> rows_{};
    std::int16_t current_ = 1;
    std::int16_t plotted_ = 1;
};

} // namespace drx9
