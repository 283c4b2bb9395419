#pragma once

#include "link/Records.h"
#include "monitor/RunState.h"
#include "util/NumberLocale.h"

#include <array>
#include <bitset>
#include <cstdint>
#include <string>

namespace drx9 {

/// What the main window's readouts and view menu show. Knows no window: the window pulls after a refresh.
class Readouts {
public:
    /// Fields count from 1, entry 0 is not used.
    static constexpr std::size_t kFields = 12;
    enum Field : std::size_t {
        AverageRate = 1,
        AverageThickness = 2,
        FirstSensor = 3, ///< sensor s (1..6) has the field s + 2
        FinalThickness = 9,
        ElapsedTime = 10,
        TimeRemaining = 11,
    };
    using Texts = std::array<std::string, kFields>;

    /// The frequency limits are read from `system` at each refresh.
    Readouts(const NumberLocale& locale, const SystemParameters& system);

    // What the view menu chooses. A value that is none of the menu's is stored and changes nothing else.

    [[nodiscard]] std::int16_t Display() const { return display_; }
    void setDisplay(std::int16_t value); ///< 1 rate, 2 thickness, 3 frequency
    [[nodiscard]] std::int16_t Graph() const { return graph_; }
    /// 1 average rate, 2 sensor rates, 3 average thickness, 4 sensor thickness.
    void setGraph(std::int16_t value);

    /// The checked sensor item, 1..3 as for Display; 0 when none is checked yet.
    [[nodiscard]] std::int16_t checkedSensorItem() const { return sensorItem_; }
    /// The checked graph item and visible chart, 1..4; 0 when none was chosen yet (the charts stay as
    /// designed).
    [[nodiscard]] std::int16_t checkedGraphItem() const { return graphItem_; }
    /// Clicks on the menu's items; an item that is checked already does nothing.
    void sensorItemClicked(std::int16_t item);
    void graphItemClicked(std::int16_t item);

    // The fields.

    /// After each reading and after a film change. `readings` is null before the first one: then only what
    /// the film tells is shown. `currentFilm` is null where there is no valid film; `sensorCount` 0..6. Does
    /// nothing while the program starts or a window has set the state back to Starting.
    void refresh(RunState runMode, const Readings* readings, const FilmRecord* currentFilm, int sensorCount);

    [[nodiscard]] const Texts& texts() const { return texts_; }
    [[nodiscard]] const Texts& labels() const { return labels_; }
    /// Fields whose value comes from an exchange that failed; such a field shows the value 0.
    [[nodiscard]] const std::bitset<kFields>& failed() const { return failed_; }

    /// Average thickness at or above the current film's final thickness, which must be above 0, at the last
    /// refresh.
    [[nodiscard]] bool finalReached() const { return finalReached_; }
    /// Sensor 1..6: its frequency was 0, or outside the record's limits, in two readings in a row. An
    /// exchange that failed says nothing about the crystal and leaves the mark as it is.
    [[nodiscard]] bool crystalMarked(int sensor) const;

private:
    void refreshRun(const Readings& readings, const FilmRecord* film);
    void refreshReading(const Readings& readings, int sensorCount);
    void judgeFinal(const Readings& readings, const FilmRecord* film);
    void refreshSensor(const Readings& readings, int sensor);
    void judgeCrystals(const Readings& readings, int sensorCount);
    [[nodiscard]] bool outsideLimits(double frequency) const;
    void set(std::size_t field, std::string text, bool failed);

    static constexpr int kReadingsToMark = 2;

    const NumberLocale& locale_;
    const SystemParameters& system_;
    std::int16_t display_ = 0;
    std::int16_t graph_ = 0;
    std::int16_t sensorItem_ = 0;
    std::int16_t graphItem_ = 0;
    Texts texts_;
    Texts labels_;
    std::bitset<kFields> failed_;
    bool finalReached_ = false;
    std::array<int, kMaxSensors> badReadings_{}; ///< in a row, up to kReadingsToMark
    double judgedElapsed_ = -1;                  ///< elapsed time of the reading that was judged last
};

} // namespace drx9
