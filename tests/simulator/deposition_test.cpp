#include "simulator/Bench.h"

namespace drx9::sim {
namespace {

// The shown thickness is the integral of the shown rate, through openings and closings in mid-ramp and
// mid-ripple.
TEST(Deposition, ThicknessIntegratesRate) {
    Deposition chamber(3);
    double sum = 0;
    double last = 0;
    const auto integrateTo = [&](double end) {
        const double step = (end - last) / 4000;
        for (int i = 0; i < 4000; ++i) {
            sum += chamber.rate(2, last + (i + 0.5) * step) * step / 1000;
        }
        last = end;
        EXPECT_NEAR(chamber.thickness(2, end), sum, 1e-7) << end;
    };
    for (const auto& [until, level] : {std::pair{1.3, 9.0}, {2.9, 0.0}, {3.1, 11.0}, {20.0, 8.0}}) {
        chamber.change(last, {level, level > 0 ? 1.5 : 0.3, 2.7, {1, 0.7, 1, 1, 1, 1}});
        integrateTo(until);
    }
    EXPECT_GT(sum, 0.05);
}

TEST(Deposition, ACrystalFailsAndCanBeMended) {
    SimulatorOptions options = withFaults("crystal3=20s,crystal4=20s:out");
    options.speed = 10;
    Bench bench(options); // crystals fail after 20 simulated, 2 real seconds
    EXPECT_GT(bench.number("P3", 1.9), 5.8e6);
    EXPECT_EQ(bench.ask("P3", 3), "A0.0");
    EXPECT_NEAR(bench.number("P4", 3), 4.2e6, 10);
    bench.simulator.setFaults({}, 5);
    EXPECT_GT(bench.number("P3", 5), 5.8e6);
}

} // namespace
} // namespace drx9::sim
