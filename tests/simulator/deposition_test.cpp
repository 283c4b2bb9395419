#include <cmath>
#include <set>

#include "simulator/Bench.h"

namespace drx9::sim {
namespace {

/// All readings every 250 ms of a run of `seconds`, with the shutter opened at once.
std::vector<std::string> run(std::uint64_t seed, double seconds) {
    SimulatorOptions options;
    options.instrument.seed = seed;
    Bench bench(options);
    bench.ask("U1");
    std::vector<std::string> readings;
    for (double t = 0; t <= seconds; t += 0.25) {
        for (const char* command : {"P1", "L1", "N1", "P6", "L6", "N6", "M", "O"}) {
            readings.push_back(bench.ask(command, t));
        }
    }
    return readings;
}

TEST(Deposition, IsTheSameForTheSameSeedOnly) {
    EXPECT_EQ(run(7, 20), run(7, 20));
    EXPECT_NE(run(7, 20), run(8, 20));
}

TEST(Deposition, RampsToALevelOfTheFilmAndFallsWhenShut) {
    std::set<std::string> levels;
    for (const int film : {1, 2, 3, 50, 99}) {
        Bench bench;
        bench.ask("D" + std::to_string(film));
        bench.ask("U1", 10);
        EXPECT_LT(bench.number("M", 10), 0.1);
        EXPECT_NEAR(bench.number("M", 11), 5, 3) << "half way";
        EXPECT_NEAR(bench.number("M", 30), 9.5, 2) << film;
        levels.insert(bench.ask("M", 30));
        bench.ask("U0", 30);
        EXPECT_LT(std::abs(bench.number("M", 33)), 0.1);
    }
    EXPECT_EQ(levels.size(), 5U);
}

TEST(Deposition, SensorsDifferAndRipple) {
    Bench bench;
    bench.ask("U1");
    std::set<double> rates;
    for (double t = 30; t < 60; t += 0.5) {
        rates.insert(bench.number("L1", t));
    }
    EXPECT_NEAR(*rates.rbegin() - *rates.begin(), 0.8, 0.7);
    std::set<std::string> sensors;
    for (const char* sensor : {"L1", "L2", "L3", "L4", "L5", "L6"}) {
        sensors.insert(bench.ask(sensor, 60));
    }
    EXPECT_GE(sensors.size(), 5U);
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

TEST(Deposition, ToolingOfFilmAndCrystalScalesThickness) {
    struct {
        const char* film; ///< per cent
        const char* crystals;
        double factor; ///< of sensor 2 against 100 % everywhere
    } const cases[] = {{"100", "100 100", 1},
                       {"150", "100 100", 1.5},
                       {"100", "99 80", 0.8},
                       {"50", "99 80", 0.4},
                       {"0", "99 99", 0}};
    double plain = 0;
    for (const auto& one : cases) {
        Bench bench;
        bench.ask(std::string("A1TOOLED__ 2.700 ") + one.film + " 1.080 0.000 0.000  0  63");
        bench.ask(std::string("B 0.25 0 0 1 4 ") + one.crystals + " 100 100 100 100");
        bench.ask("U1", 5);
        const double thickness = bench.number("N2", 25);
        plain = one.factor == 1 ? thickness : plain;
        EXPECT_NEAR(thickness, plain * one.factor, 0.0002) << one.film << ' ' << one.crystals;
    }
    EXPECT_GT(plain, 0.1);
}

TEST(Deposition, FrequencyFallsWithMassAndNeverRepeats) {
    Bench bench;
    EXPECT_NEAR(bench.number("P1", 0), 5.9e6, 1e4);
    std::string last;
    for (int i = 0; i < 2000; ++i) {
        const std::string text = bench.ask("P1", 0);
        ASSERT_NE(text, last) << i;
        last = text;
    }
    const double fresh = bench.number("P1", 0);
    bench.ask("U1", 0);
    const double thickness = bench.number("N1", 60);
    // 2.7 g/cm³ on quartz of 2.649 g/cm³ and 1.668e5 Hz cm: f0² ρ d / (ρq N)
    EXPECT_NEAR(fresh - bench.number("P1", 60), fresh * fresh * 2.7e-5 * thickness / (2.649 * 1.668e5), 15);
    bench.ask("S", 60);
    EXPECT_NEAR(bench.number("N1", 60), 0, 1e-9);
    EXPECT_LT(bench.number("P1", 60), fresh - 500) << "zeroing does not wash the crystal";
}

TEST(Deposition, ZeroAndTimerStartAgain) {
    for (const char* command : {"S", "T"}) {
        Bench bench;
        bench.ask("U1", 0);
        EXPECT_GT(bench.number("O", 20), 0.1);
        bench.ask(command, 20);
        EXPECT_NEAR(bench.number("O", 20), 0, 1e-9) << command;
        EXPECT_NEAR(bench.number("O", 21), 0.0098, 0.002) << "and goes on growing";
        EXPECT_NEAR(bench.simulator.instrument().timer(21), *command == 'T' ? 1 : 21, 1e-9);
    }
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
    for (Bench* bench : {&seldom, &often}) {
        EXPECT_EQ(bench->ask("U?", 100), "A0");
        EXPECT_NEAR(bench->number("O", 100), 0.203, 0.002); // what is under way still lands
    }
    EXPECT_EQ(seldom.ask("O", 100), often.ask("O", 100));
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
    EXPECT_GT(bench.number("L3", 1.9), 7);
    const double thickness = bench.number("N3", 2);
    EXPECT_EQ(bench.ask("P3", 3), "A0.0");
    EXPECT_NEAR(bench.number("P4", 3), 4.2e6, 10);
    EXPECT_EQ(bench.ask("L3", 3), "A0.00");
    EXPECT_NEAR(bench.number("N3", 4), thickness, 1e-4);
    bench.simulator.setFaults({}, 5);
    EXPECT_GT(bench.number("P3", 5), 5.8e6);
    EXPECT_NEAR(bench.number("N3", 5), thickness, 1e-4) << "what it missed is not made up for";
    EXPECT_GT(bench.number("N3", 6), thickness + 0.05);
    bench.simulator.setFaults(withFaults("crystal3=20s").faults, 7);
    EXPECT_GT(bench.number("P3", 8.9), 5.8e6);
    EXPECT_EQ(bench.ask("P3", 9.1), "A0.0") << "counted from when it was set";
}

TEST(Deposition, FrozenRepeatsEveryReading) {
    SimulatorOptions options;
    options.instrument.frozen = true;
    Bench bench(options);
    bench.ask("U1", 1);
    for (const char* command : {"P1", "L1", "N1", "M", "O"}) {
        const std::string early = bench.ask(command, 2);
        EXPECT_EQ(bench.ask(command, 50), early) << command;
    }
}

TEST(Deposition, EtchModeAndResolutionChangeWhatIsShown) {
    Bench bench;
    bench.ask("U1", 0);
    const double rate = bench.number("L1", 30);
    bench.ask("C 5 6 0 20 0 5 1", 30);
    EXPECT_NEAR(bench.number("L1", 30), -rate, 0.1);
    EXPECT_LT(bench.number("O", 30), 0);
    bench.ask("B 0.25 0 0 0 4 100 100 100 100 100 100", 30);
    const std::string coarse = bench.ask("M", 30);
    EXPECT_EQ(coarse.size() - coarse.find('.'), 2U) << coarse;
}

} // namespace
} // namespace drx9::sim
