#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <string>

namespace drx9 {

inline constexpr int kMaxSensors = 6;

/// What one exchange of a reading delivers; indexes Readings::failed.
enum class Value : std::uint8_t {
    Frequency = 0,
    Rate = 6,
    Thickness = 12,
    AverageRate = 18,
    AverageThickness = 19
};
inline constexpr std::size_t kValueCount = 20;

/// Index of a value in Readings::failed; `sensor` counts from 0 and is 0 for the averages.
constexpr std::size_t valueIndex(Value kind, int sensor = 0) {
    return static_cast<std::size_t>(kind) + static_cast<std::size_t>(sensor);
}

/// One full set of values of the instrument. Sensor s (1..6) lies at index s - 1.
struct Readings {
    std::array<double, kMaxSensors> frequency{}; ///< in the unit the instrument sends (Hz)
    std::array<double, kMaxSensors> rate{};      ///< Å/s
    std::array<double, kMaxSensors> thickness{}; ///< kÅ
    double averageRate = 0;                      ///< Å/s
    double averageThickness = 0;                 ///< kÅ
    double elapsed = 0;   ///< s since `startTime`, taken after the reading's last exchange
    double startTime = 0; ///< monotonic seconds at which the run (or the last zero) started
    /// Values whose own last exchange failed or brought no number (they read 0); see valueIndex.
    std::bitset<kValueCount> failed;
};

/// One film of the instrument's memory.
struct FilmRecord {
    std::int16_t FilmNum = 0;
    std::string FilmName = "        "; ///< exactly 8 characters (bytes), blank-padded
    std::string Material;
    double Density = 0;
    double Tooling = 0;
    double ZFactor = 0;
    double EndThick = 0;  ///< kÅ
    double ThickSet = 0;  ///< kÅ
    double TimeSet = 0;   ///< s
    double SensorAvg = 0; ///< bit 0 = sensor 1

    bool operator==(const FilmRecord&) const = default;
};

inline constexpr int kMostFilms = 99; ///< slots of the largest instrument
/// Entry i holds instrument film i; entry 0 is scratch space for read-back.
using Films = std::array<FilmRecord, kMostFilms + 1>;

/// Instrument-wide settings, in the order in which the records carry them. On/off settings hold 0 or 1.
struct SystemParameters {
    // First record ("B")
    double Timebase = 0;
    double Simulate = 0;
    double FreqDisplay = 0;
    double RateResolution = 0;
    double RateFilter = 0;
    std::array<double, kMaxSensors> Tooling{};
    // Second record ("C")
    double FreqMin = 0;
    double FreqMax = 0;
    double RateMin = 0;
    double RateMax = 0;
    double ThickMin = 0;
    double ThickMax = 0;
    double EtchMode = 0;
};

} // namespace drx9
