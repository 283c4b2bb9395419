#pragma once

#include <cstdint>

namespace drx9::sim {

/// Well mixed 64 bits of `value`; the same on every system and compiler.
std::uint64_t mixed(std::uint64_t value);

/// A number in [0, 1) that depends on nothing but its three arguments.
double noise(std::uint64_t seed, std::uint64_t stream, std::uint64_t index);

/// Reproducible random numbers: the same seed gives the same sequence everywhere (the standard library's
/// distributions do not promise that).
class Random {
public:
    explicit Random(std::uint64_t seed)
        : state_(seed) {}

    std::uint64_t next();
    /// 0 .. limit-1; limit is at least 1.
    unsigned below(unsigned limit);
    /// [0, 1)
    double unit();

private:
    std::uint64_t state_;
};

} // namespace drx9::sim
