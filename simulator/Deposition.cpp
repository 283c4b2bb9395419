#include "simulator/Deposition.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "simulator/Random.h"

namespace drx9::sim {

namespace {
constexpr double kNewFrequency = 5.9e6;
constexpr double kFailedFrequency = 4.2e6;
// A quartz plate of frequency f is N / f thick (N = 1.668e5 Hz cm) and weighs 2.649 g/cm³; 1 kÅ is 1e-5 cm.
constexpr double kLoadPerQuartz = 1e-5 / (1.668e5 * 2.649);
constexpr double kAngstromPerKilo = 1000;
constexpr double kTwoPi = 2 * std::numbers::pi;

/// Integral of exp(-x/tau) sin(angular x + phase) from 0 to `to`.
double dampedSine(double tau, double angular, double phase, double to) {
    const auto primitive = [&](double x) {
        return std::exp(-x / tau) *
               (-std::sin(angular * x + phase) / tau - angular * std::cos(angular * x + phase));
    };
    return (primitive(to) - primitive(0)) / (1 / (tau * tau) + angular * angular);
}

/// Integral of sin(angular x + phase) from 0 to `to`.
double sine(double angular, double phase, double to) {
    return (std::cos(phase) - std::cos(angular * to + phase)) / angular;
}
} // namespace

Deposition::Deposition(std::uint64_t seed) {
    std::uint64_t stream = 0;
    for (Crystal& one : crystals_) {
        ++stream;
        const auto draw = [&](std::uint64_t index) { return noise(seed, stream, index); };
        one.newFrequency = kNewFrequency + (draw(0) - 0.5) * 16e3;
        one.gain = 1 + (draw(1) - 0.5) * 0.08;
        one.waves = {Wave{0.015, kTwoPi / (6 + 6 * draw(2)), kTwoPi * draw(3)},
                     Wave{0.006, kTwoPi / (1 + draw(4)), kTwoPi * draw(5)}};
    }
}

double Deposition::envelope(double now) const {
    const double decay = std::exp(-(now - changedAt_) / source_.settleSeconds);
    return source_.level + (levelThen_ - source_.level) * decay;
}

/// Å at the crystal, tooling aside, since the last change.
double Deposition::grown(const Crystal& one, double now) const {
    const double until = one.failsAt ? std::min(now, *one.failsAt) : now;
    const double x = std::max(until - changedAt_, 0.0);
    const double tau = source_.settleSeconds;
    const double rest = levelThen_ - source_.level;
    double sum = source_.level * x + rest * tau * (1 - std::exp(-x / tau));
    for (const Wave& wave : one.waves) {
        const double phase = wave.phase + wave.angular * changedAt_;
        sum += wave.amplitude * (source_.level * sine(wave.angular, phase, x) +
                                 rest * dampedSine(tau, wave.angular, phase, x));
    }
    return one.gain * sum;
}

void Deposition::settle(double now) {
    for (std::size_t i = 0; i < crystals_.size(); ++i) {
        const double layer = grown(crystals_[i], now) / kAngstromPerKilo;
        crystals_[i].thickness += layer * source_.tooling[i];
        crystals_[i].load += layer * source_.density;
    }
    levelThen_ = envelope(now);
    changedAt_ = now;
}

void Deposition::change(double now, const Source& source) {
    settle(now);
    source_ = source;
}

void Deposition::zero(double now) {
    settle(now);
    for (Crystal& one : crystals_) {
        one.thickness = 0;
    }
}

void Deposition::fail(int sensor, double when, CrystalFailure kind) {
    Crystal& one = crystal(sensor);
    one.failsAt = one.failsAt ? std::min(when, *one.failsAt) : when;
    one.failure = kind;
}

void Deposition::mend(int sensor, double now) {
    settle(now);
    crystal(sensor).failsAt.reset();
}

bool Deposition::alive(int sensor, double now) const {
    const Crystal& one = crystal(sensor);
    return !one.failsAt || now < *one.failsAt;
}

double Deposition::rate(int sensor, double now) const {
    if (!alive(sensor, now)) {
        return 0;
    }
    const Crystal& one = crystal(sensor);
    double ripple = 1;
    for (const Wave& wave : one.waves) {
        ripple += wave.amplitude * std::sin(wave.angular * now + wave.phase);
    }
    return one.gain * envelope(now) * ripple * source_.tooling[static_cast<std::size_t>(sensor - 1)];
}

double Deposition::thickness(int sensor, double now) const {
    const Crystal& one = crystal(sensor);
    return one.thickness +
           grown(one, now) / kAngstromPerKilo * source_.tooling[static_cast<std::size_t>(sensor - 1)];
}

double Deposition::frequency(int sensor, double now) const {
    const Crystal& one = crystal(sensor);
    if (!alive(sensor, now)) {
        return one.failure == CrystalFailure::Stopped ? 0 : kFailedFrequency;
    }
    const double load = one.load + grown(one, now) / kAngstromPerKilo * source_.density;
    return one.newFrequency / (1 + load * kLoadPerQuartz * one.newFrequency);
}

} // namespace drx9::sim
