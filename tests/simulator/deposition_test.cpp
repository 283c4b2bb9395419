#include <cmath>

#include "simulator/Bench.h"

namespace drx9::sim {
namespace {

/// Some readings every 250 ms of a run with the shutter open.
std::vector<std::string> run(std::uint64_t seed, bool frozen) {
    SimulatorOptions options;
    options.instrument.seed = seed;
    options.instrument.frozen = frozen;
    Bench bench(options);
    bench.ask("U1");
    std::vector<std::string> readings;
    for (double t = 0; t <= 20; t += 0.25) {
        std::string all;
        for (const char* command : {"P1", "L1", "N6", "O"}) {
            all += bench.ask(command, t);
        }
        readings.push_back(all);
    }
    return readings;
}

TEST(Deposition, IsTheSameForTheSameSeedOnlyAndStandsStillWhenFrozen) {
    EXPECT_EQ(run(7, false), run(7, false));
    EXPECT_NE(run(7, false), run(8, false));
    const auto frozen = run(7, true);
    EXPECT_EQ(frozen.front(), frozen.back());
}

TEST(Deposition, RampsToALevelOfTheFilmAndFallsWhenShut) {
    for (const int film : {1, 99}) {
        Bench bench;
        bench.ask("D" + std::to_string(film));
        bench.ask("U1", 10);
        EXPECT_LT(bench.number("M", 10), 0.1);
        EXPECT_NEAR(bench.number("M", 30), 9.5, 2) << film;
        EXPECT_NE(bench.ask("L1", 30), bench.ask("L2", 30));
        bench.ask("U0", 30);
        EXPECT_LT(std::abs(bench.number("M", 33)), 0.1);
    }
}

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

TEST(Deposition, ToolingOfFilmAndCrystalScalesThicknessAndEtchTurnsIt) {
    const auto thickness = [](const std::string& film, const char* crystals, const char* etch) {
        Bench bench;
        bench.ask("A1TOOLED__ 2.700 " + film + " 1.080 0.000 0.000  0  63");
        bench.ask(std::string("B 0.25 0 0 1 4 ") + crystals + " 100 100 100 100");
        bench.ask(std::string("C 5 6 0 20 0 5 ") + etch);
        bench.ask("U1", 5);
        return bench.number("N2", 25);
    };
    const double plain = thickness("100", "100 100", "0");
    EXPECT_GT(plain, 0.1);
    EXPECT_NEAR(thickness("150", "100 100", "0"), 1.5 * plain, 0.0002);
    EXPECT_NEAR(thickness("50", "99 80", "0"), 0.4 * plain, 0.0002);
    EXPECT_NEAR(thickness("100", "100 100", "1"), -plain, 0.0002);
}

TEST(Deposition, FrequencyFallsWithMassAndNeverRepeats) {
    Bench bench;
    const double fresh = bench.number("P1", 0);
    EXPECT_NEAR(fresh, 5.9e6, 1e4);
    EXPECT_NE(bench.ask("P1", 0), bench.ask("P1", 0));
    bench.ask("U1", 0);
    const double thickness = bench.number("N1", 60);
    // 2.7 g/cm³ on quartz of 2.649 g/cm³ and 1.668e5 Hz cm: f0² ρ d / (ρq N)
    EXPECT_NEAR(fresh - bench.number("P1", 60), fresh * fresh * 2.7e-5 * thickness / (2.649 * 1.668e5), 15);
    bench.ask("S", 60);
    EXPECT_NEAR(bench.number("N1", 60), 0, 1e-9);
    EXPECT_NEAR(bench.simulator.instrument().timer(61), 61, 1e-9);
    EXPECT_LT(bench.number("P1", 60), fresh - 500) << "zeroing does not wash the crystal";
    bench.ask("T", 61);
    EXPECT_NEAR(bench.number("O", 62), 0.0098, 0.002) << "starts at zero again and goes on growing";
    EXPECT_NEAR(bench.simulator.instrument().timer(62), 1, 1e-9);
}

// How often it is looked at makes no difference.
TEST(Deposition, ShutsAtTheFinalThicknessAtTheRightMoment) {
    Bench seldom;
    Bench often;
    for (Bench* bench : {&seldom, &often}) {
        bench->ask("A1THIN____ 2.700 100 1.080 0.200 0.000  0  63");
        bench->ask("U1", 0);
    }
    for (double t = 0; t < 100; t += 0.01) {
        often.ask("N3", t);
    }
    EXPECT_EQ(seldom.ask("U?", 100), "A0");
    EXPECT_NEAR(seldom.number("O", 100), 0.203, 0.002); // what is under way still lands
    EXPECT_EQ(seldom.ask("N3", 100), often.ask("N3", 100));
    seldom.ask("U1", 100); // opened beyond the end: stays open
    EXPECT_EQ(seldom.ask("U?", 200), "A1");
}

TEST(Deposition, AveragesTheMaskedLivingSensors) {
    Bench bench;
    bench.ask("A1PAIR____ 2.700 100 1.080 0.000 0.000  0  5"); // sensors 1 and 3
    bench.ask("U1", 0);
    const double one = bench.number("N1", 40);
    const double three = bench.number("N3", 40);
    EXPECT_NEAR(bench.number("O", 40), (one + three) / 2, 1e-4);
    bench.simulator.failCrystal(3, CrystalFailure::Stopped, 40);
    EXPECT_NEAR(bench.number("O", 40), one, 1e-4);
    bench.simulator.failCrystal(1, CrystalFailure::Stopped, 40);
    EXPECT_EQ(bench.ask("O", 41), "A0.0000");
}

TEST(Deposition, ACrystalFailsStaysAndCanBeMended) {
    SimulatorOptions options = withFaults("crystal3=20s,crystal4=20s:out");
    options.speed = 10;
    Bench bench(options); // crystals fail after 20 simulated, 2 real seconds
    bench.ask("U1", 0);
    EXPECT_GT(bench.number("P3", 1.9), 5.8e6);
    const double thickness = bench.number("N3", 2);
    EXPECT_EQ(bench.ask("P3", 3), "A0.0");
    EXPECT_NEAR(bench.number("P4", 3), 4.2e6, 10);
    EXPECT_EQ(bench.ask("L3", 3), "A0.00");
    bench.simulator.setFaults({}, 5);
    EXPECT_GT(bench.number("P3", 5), 5.8e6);
    EXPECT_NEAR(bench.number("N3", 5), thickness, 1e-4) << "what it missed is not made up for";
    bench.simulator.setFaults(withFaults("crystal3=20s").faults, 7);
    EXPECT_GT(bench.number("P3", 8.9), 5.8e6);
    EXPECT_EQ(bench.ask("P3", 9.1), "A0.0") << "counted from when it was set";
}

} // namespace
} // namespace drx9::sim
