#pragma once

#include "link/Records.h"
#include "system/SpinnerField.h"

#include <array>

namespace drx9 {

/// Modes of the instrument that are on or off, in the order in which the window is filled.
enum class SystemMode { Simulate, FreqDisplay, RateResolution, Etch };
inline constexpr int kSystemModes = 4;

/// One of two option buttons. A stored value other than 0 and 1 shows as on, and stays itself until touched.
class ModeField {
public:
    void fill(double stored) {
        stored_ = stored;
        touched_ = false;
        on_ = stored != 0;
    }
    void choose(bool on) {
        touched_ = touched_ || on != on_;
        on_ = on;
    }
    [[nodiscard]] bool on() const { return on_; } ///< "On", "High"
    [[nodiscard]] bool touched() const { return touched_; }
    [[nodiscard]] bool isExact() const { return touched_ || stored_ == 0 || stored_ == 1; }
    [[nodiscard]] double stored() const { return stored_; }
    [[nodiscard]] double value() const { return touched_ ? (on_ ? 1 : 0) : stored_; }

private:
    double stored_ = 0;
    bool on_ = false;
    bool touched_ = false;
};

/// What the system parameters window holds: the record's values as its spinners and option buttons show them.
class SystemFields {
public:
    static constexpr int kParameters = 7;
    // Indices of the parameters.
    static constexpr int kTimebase = 0;
    static constexpr int kMinFrequency = 1;
    static constexpr int kMaxFrequency = 2;
    static constexpr int kMinRate = 3;
    static constexpr int kMaxRate = 4;
    static constexpr int kMinThickness = 5;
    static constexpr int kMaxThickness = 6;

    SystemFields();

    void fill(const SystemParameters& record);
    /// Fields that nobody touched put back exactly what fill() took.
    void store(SystemParameters& record) const;
    [[nodiscard]] bool touched() const;

    /// To be called after the operator changed the parameter `index`. The two frequencies are never equal:
    /// one that came to the other is pushed back by a step, and true says that the operator must be told.
    /// They may cross.
    bool keepFrequenciesApart(int index);

    SpinnerField& parameter(int index) { return parameters_[static_cast<std::size_t>(index)]; }
    SpinnerField& rateFilter() { return rateFilter_; }
    SpinnerField& tooling(int crystal) { return tooling_[static_cast<std::size_t>(crystal - 1)]; } ///< 1..6
    ModeField& mode(SystemMode mode) { return modes_[static_cast<std::size_t>(mode)]; }

private:
    std::array<SpinnerField, kParameters> parameters_;
    SpinnerField rateFilter_;
    std::array<SpinnerField, kMaxSensors> tooling_;
    std::array<ModeField, kSystemModes> modes_;
};

} // namespace drx9
