#include "system/SystemFields.h"

#include <algorithm>

namespace drx9 {

namespace {
constexpr SpinnerRange kTimebaseRange{{100, 1, 9999}, 25};   // s
constexpr SpinnerRange kMinFrequencyRange{{10, 1, 999}, 50}; // MHz
constexpr SpinnerRange kMaxFrequencyRange{{10, 1, 999}, 60}; // MHz
constexpr SpinnerRange kMinRateRange{{1, 0, 9999}, 0};       // Å/s
constexpr SpinnerRange kMaxRateRange{{1, 0, 9999}, 10};      // Å/s
constexpr SpinnerRange kThicknessRange{{}, 0, true};         // kÅ
constexpr SpinnerRange kRateFilterRange{{1, 0, 99}, 4};
constexpr SpinnerRange kToolingRange{{1, 1, 999}, 100}; // %

/// The record's numbers in the order of the parameters' indices.
template<class Record>
auto parametersOf(Record& r) {
    return std::array{&r.Timebase, &r.FreqMin, &r.FreqMax, &r.RateMin, &r.RateMax, &r.ThickMin, &r.ThickMax};
}

/// In the order of SystemMode.
template<class Record>
auto modesOf(Record& r) {
    return std::array{&r.Simulate, &r.FreqDisplay, &r.RateResolution, &r.EtchMode};
}

template<class Fields>
bool anyTouched(const Fields& fields) {
    return std::any_of(fields.begin(), fields.end(), [](const auto& field) { return field.touched(); });
}
} // namespace

SystemFields::SystemFields()
    : parameters_{SpinnerField(kTimebaseRange),     SpinnerField(kMinFrequencyRange),
                  SpinnerField(kMaxFrequencyRange), SpinnerField(kMinRateRange),
                  SpinnerField(kMaxRateRange),      SpinnerField(kThicknessRange),
                  SpinnerField(kThicknessRange)}
    , rateFilter_(kRateFilterRange)
    , tooling_{SpinnerField(kToolingRange), SpinnerField(kToolingRange), SpinnerField(kToolingRange),
               SpinnerField(kToolingRange), SpinnerField(kToolingRange), SpinnerField(kToolingRange)} {}

void SystemFields::fill(const SystemParameters& record) {
    const auto parameters = parametersOf(record);
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        parameters_[i].fill(*parameters[i]);
    }
    for (std::size_t i = 0; i < tooling_.size(); ++i) {
        tooling_[i].fill(record.Tooling[i]);
    }
    rateFilter_.fill(record.RateFilter);
    const auto modes = modesOf(record);
    for (std::size_t i = 0; i < modes.size(); ++i) {
        modes_[i].fill(*modes[i]);
    }
}

void SystemFields::store(SystemParameters& record) const {
    const auto parameters = parametersOf(record);
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        *parameters[i] = parameters_[i].value();
    }
    for (std::size_t i = 0; i < tooling_.size(); ++i) {
        record.Tooling[i] = tooling_[i].value();
    }
    record.RateFilter = rateFilter_.value();
    const auto modes = modesOf(record);
    for (std::size_t i = 0; i < modes.size(); ++i) {
        *modes[i] = modes_[i].value();
    }
}

bool SystemFields::touched() const {
    return anyTouched(parameters_) || rateFilter_.touched() || anyTouched(tooling_) || anyTouched(modes_);
}

bool SystemFields::keepFrequenciesApart(int index) {
    if (index != kMinFrequency && index != kMaxFrequency) {
        return false;
    }
    SpinnerField& moved = parameter(index);
    const SpinnerField& other = parameter(index == kMinFrequency ? kMaxFrequency : kMinFrequency);
    if (moved.position() != other.position()) {
        return false;
    }
    const int away = index == kMinFrequency ? -1 : 1;
    const bool room = away < 0 ? moved.position() > moved.minimum() : moved.position() < moved.maximum();
    moved.step(room ? away : -away); // at the range's end only the other side is left
    return true;
}

} // namespace drx9
