#include "monitor/Readouts.h"

#include "util/DisplayFormats.h"

#include <algorithm>
#include <utility>

namespace drx9 {

namespace {

enum : std::int16_t { kShowRate = 1, kShowThickness = 2, kShowFrequency = 3 };
constexpr std::int16_t kGraphs = 4;
constexpr double kHertzPerMegahertz = 1e6;

bool isSensorItem(std::int16_t item) {
    return item >= kShowRate && item <= kShowFrequency;
}

std::string sensorLabel(std::int16_t item, int sensor) {
    static constexpr std::array<const char*, 4> names = {"", "Rate ", "Thick ", "Freq "};
    static constexpr std::array<const char*, 4> units = {"", " (A/s)", " (kA)", " (Hz)"};
    const auto kind = static_cast<std::size_t>(item);
    return names[kind] + std::to_string(sensor) + units[kind];
}

/// Both thicknesses are compared in single precision: what differs by less than that is the same thickness.
bool below(double thickness, double finalThickness) {
    return static_cast<float>(thickness) < static_cast<float>(finalThickness);
}

std::string timeRemainingText(double rate, double thickness, double finalThickness) {
    if (rate != 0 && below(thickness, finalThickness)) {
        return clockText((finalThickness - thickness) * 1000 / rate + 1);
    }
    return below(finalThickness, thickness) ? clockText(0) : std::string();
}

} // namespace

Readouts::Readouts(const NumberLocale& locale, const SystemParameters& system)
    : locale_(locale)
    , system_(system)
    , labels_{"",       "Avg. Rate (A/s)",  "Avg. Thick (kA)", "Rate 1",
              "Rate 2", "Rate 3",           "Rate 4",          "Rate 5",
              "Rate 6", "Final Thick (kA)", "Elapsed Time",    "Time Remaining"} {}

void Readouts::setDisplay(std::int16_t value) {
    display_ = value;
    if (!isSensorItem(value)) {
        return;
    }
    sensorItem_ = value;
    for (int sensor = 1; sensor <= kMaxSensors; ++sensor) {
        labels_[FirstSensor + static_cast<std::size_t>(sensor - 1)] = sensorLabel(value, sensor);
    }
}

void Readouts::setGraph(std::int16_t value) {
    graph_ = value;
    if (value >= 1 && value <= kGraphs) {
        graphItem_ = value;
    }
}

void Readouts::sensorItemClicked(std::int16_t item) {
    if (item != sensorItem_) {
        setDisplay(item);
    }
}

void Readouts::graphItemClicked(std::int16_t item) {
    if (item != graphItem_) {
        setGraph(item);
    }
}

void Readouts::refresh(RunState runMode, const Readings* readings, const FilmRecord* currentFilm,
                       int sensorCount) {
    if (runMode == RunState::Starting) {
        return;
    }
    if (runMode == RunState::Running && readings != nullptr) {
        refreshRun(*readings, currentFilm);
    }
    if (currentFilm != nullptr) {
        set(FinalThickness, threeFigureText(currentFilm->EndThick, locale_), false);
    }
    if (readings != nullptr) {
        judgeFinal(*readings, currentFilm);
        refreshReading(*readings, sensorCount);
    }
}

void Readouts::refreshReading(const Readings& readings, int sensorCount) {
    set(AverageRate, rateText(readings.averageRate, locale_),
        readings.failed[valueIndex(Value::AverageRate)]);
    set(AverageThickness, threeFigureText(readings.averageThickness, locale_),
        readings.failed[valueIndex(Value::AverageThickness)]);
    for (int sensor = 0; sensor < kMaxSensors; ++sensor) {
        if (sensor < sensorCount) {
            refreshSensor(readings, sensor);
        } else {
            set(FirstSensor + static_cast<std::size_t>(sensor), "OFF", false);
        }
    }
    judgeCrystals(readings, sensorCount);
}

void Readouts::refreshRun(const Readings& readings, const FilmRecord* film) {
    set(ElapsedTime, clockText(readings.elapsed), false);
    if (film == nullptr) {
        return;
    }
    const bool failed = readings.failed[valueIndex(Value::AverageRate)] ||
                        readings.failed[valueIndex(Value::AverageThickness)];
    set(TimeRemaining, timeRemainingText(readings.averageRate, readings.averageThickness, film->EndThick),
        failed);
}

void Readouts::judgeFinal(const Readings& readings, const FilmRecord* film) {
    if (film == nullptr) {
        finalReached_ = false;
    } else if (!readings.failed[valueIndex(Value::AverageThickness)]) {
        finalReached_ = film->EndThick > 0 && !below(readings.averageThickness, film->EndThick);
    }
}

void Readouts::refreshSensor(const Readings& readings, int sensor) {
    const auto s = static_cast<std::size_t>(sensor);
    const std::size_t field = FirstSensor + s;
    switch (sensorItem_) {
    case kShowRate:
        set(field, rateText(readings.rate[s], locale_), readings.failed[valueIndex(Value::Rate, sensor)]);
        break;
    case kShowThickness:
        set(field, sensorThicknessText(readings.thickness[s], locale_),
            readings.failed[valueIndex(Value::Thickness, sensor)]);
        break;
    case kShowFrequency:
        set(field, frequencyText(readings.frequency[s], locale_),
            readings.failed[valueIndex(Value::Frequency, sensor)]);
        break;
    default:
        break; // nothing chosen yet: the field stays as it is
    }
}

void Readouts::judgeCrystals(const Readings& readings, int sensorCount) {
    if (readings.elapsed == judgedElapsed_) {
        return; // shown again after a film change
    }
    judgedElapsed_ = readings.elapsed;
    for (int sensor = 0; sensor < kMaxSensors; ++sensor) {
        int& bad = badReadings_[static_cast<std::size_t>(sensor)];
        if (sensor >= sensorCount) {
            bad = 0;
        } else if (!readings.failed[valueIndex(Value::Frequency, sensor)]) {
            const bool isBad = outsideLimits(readings.frequency[static_cast<std::size_t>(sensor)]);
            bad = isBad ? std::min(bad + 1, kReadingsToMark) : 0;
        }
    }
}

/// The record's limits are MHz, frequencies Hz. Limits that make no range check nothing.
bool Readouts::outsideLimits(double frequency) const {
    if (frequency == 0) {
        return true;
    }
    if (system_.FreqMin <= 0 || system_.FreqMax <= 0 || system_.FreqMin >= system_.FreqMax) {
        return false;
    }
    return frequency < system_.FreqMin * kHertzPerMegahertz ||
           frequency > system_.FreqMax * kHertzPerMegahertz;
}

bool Readouts::crystalMarked(int sensor) const {
    return badReadings_.at(static_cast<std::size_t>(sensor - 1)) >= kReadingsToMark;
}

void Readouts::set(std::size_t field, std::string text, bool failed) {
    texts_[field] = std::move(text);
    failed_[field] = failed;
}

} // namespace drx9
