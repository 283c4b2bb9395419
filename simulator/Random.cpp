#include "simulator/Random.h"

namespace drx9::sim {

namespace {
constexpr std::uint64_t kGolden = 0x9E3779B97F4A7C15ULL;

double unitOf(std::uint64_t bits) {
    return static_cast<double>(bits >> 11U) * 0x1.0p-53;
}
} // namespace

std::uint64_t mixed(std::uint64_t value) {
    value = (value ^ (value >> 30U)) * 0xBF58476D1CE4E5B9ULL;
    value = (value ^ (value >> 27U)) * 0x94D049BB133111EBULL;
    return value ^ (value >> 31U);
}

double noise(std::uint64_t seed, std::uint64_t stream, std::uint64_t index) {
    return unitOf(mixed(mixed(mixed(seed + kGolden) + stream * kGolden) + index * kGolden));
}

std::uint64_t Random::next() {
    state_ += kGolden;
    return mixed(state_);
}

unsigned Random::below(unsigned limit) {
    return static_cast<unsigned>(next() % limit);
}

double Random::unit() {
    return unitOf(next());
}

} // namespace drx9::sim
