#pragma once

#include <array>
#include <string>
#include <string_view>

namespace drx9::sim {

/// The instrument-wide settings: eleven general values and seven of limits, analog outputs and etch mode.
/// Kept as they are written, whatever their size.
class SystemRecord {
public:
    SystemRecord();

    std::string general() const;
    std::string limits() const;
    /// Exactly 11, or 7, numbers separated by blanks; otherwise false and nothing changes.
    bool setGeneral(std::string_view fields);
    bool setLimits(std::string_view fields);

    bool highRateResolution() const { return values_[3] != 0; }
    /// Per cent; `sensor` is 1 to 6.
    double crystalTooling(int sensor) const { return values_[static_cast<std::size_t>(sensor) + 4]; }
    /// Rates and thicknesses count the other way round.
    bool etchMode() const { return values_[17] != 0; }

private:
    std::array<double, 18> values_;
};

} // namespace drx9::sim
