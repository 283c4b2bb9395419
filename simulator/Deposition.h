#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace drx9::sim {

constexpr int kMaxSensors = 6;

/// How a crystal can fail: it stops oscillating (frequency 0), or leaps far below any sensible limit.
enum class CrystalFailure { Stopped, OutOfLimits };

/// What the source does from some moment on.
struct Source {
    double level = 0;           ///< Å/s that the rate settles at; 0 with the shutter closed
    double settleSeconds = 0.3; ///< time constant of the way there
    double density = 1;         ///< g/cm³ of what is deposited
    std::array<double, kMaxSensors> tooling{1, 1, 1,
                                            1, 1, 1}; ///< indicated rate per rate at the crystal; 1 = 100 %
};

/// The vacuum chamber: rates that settle and ripple, and what has grown on each crystal. Everything is a
/// closed formula of the time, so a value depends on the seed and on the moments of change, never on how
/// often it was looked at. Times are simulated seconds and never run backwards from one change to the next; a
/// value may be asked for any time from the last change on. Sensors are 1 to 6.
class Deposition {
public:
    explicit Deposition(std::uint64_t seed);

    void change(double now, const Source& source);
    /// Thickness starts again at 0; what weighs on the crystals stays.
    void zero(double now);
    /// From `when` on, or from an earlier failure that was told before.
    void fail(int sensor, double when, CrystalFailure kind);
    void mend(int sensor, double now);

    bool alive(int sensor, double now) const;
    double rate(int sensor, double now) const;      ///< Å/s, indicated
    double thickness(int sensor, double now) const; ///< kÅ, indicated
    double frequency(int sensor, double now) const; ///< Hz

private:
    static constexpr int kWaves = 2;
    struct Wave {
        double amplitude; ///< share of the rate
        double angular;   ///< radians a second
        double phase;
    };
    struct Crystal {
        double newFrequency = 0;
        double gain = 1; ///< how much of the source this crystal sees
        std::array<Wave, kWaves> waves{};
        double thickness = 0; ///< indicated kÅ at the last change
        double load = 0;      ///< kÅ times g/cm³ at the last change
        std::optional<double> failsAt;
        CrystalFailure failure = CrystalFailure::Stopped;
    };

    const Crystal& crystal(int sensor) const { return crystals_[static_cast<std::size_t>(sensor - 1)]; }
    Crystal& crystal(int sensor) { return crystals_[static_cast<std::size_t>(sensor - 1)]; }
    double envelope(double now) const;
    double grown(const Crystal& one, double now) const;
    void settle(double now);

    std::array<Crystal, kMaxSensors> crystals_;
    Source source_;
    double changedAt_ = 0;
    double levelThen_ = 0; ///< envelope at the last change
};

} // namespace drx9::sim
