#include "monitor/Readouts.h"

#include <gtest/gtest.h>

#include <cmath>

namespace drx9 {
namespace {

class ReadoutsTest : public testing::Test {
protected:
    NumberLocale locale;
    SystemParameters system;
    Readouts readouts{locale, system};
    Readings readings;
    FilmRecord film;

    std::string text(std::size_t field) const { return readouts.texts()[field]; }
    /// One more reading, a quarter of a second after the last.
    void read(RunState mode, int sensors = kMaxSensors) {
        readings.elapsed += 0.25;
        readouts.refresh(mode, &readings, &film, sensors);
    }
};

TEST_F(ReadoutsTest, TimeRemaining) {
    const double oneBelow = std::nextafter(1.0, 0.0);
    // Thickness, rate, final thickness: the time remaining, and whether the end is reached.
    const std::tuple<double, double, double, const char*, bool> cases[] = {
        {0.25, 2.0, 1, "0:06:16", false}, // 375 s and the one added
        {1, 2, 1, "", true},
        {oneBelow, 2, 1, "", true}, // equal in single precision
        {1, 2, oneBelow, "", true},
        {1.5, 0, 1, "0:00:00", true},
        {0.25, 0, 1, "", false},
        {0.25, -2, 1, "0:00:00", false},
        {0, 0.001, 500, "0:00:00", false}, // beyond what the clock text shows
        {0, 0, 0, "", false},              // no final thickness set
    };
    for (const auto& [thickness, rate, finalThickness, remaining, reached] : cases) {
        readings.averageThickness = thickness;
        readings.averageRate = rate;
        film.EndThick = finalThickness;
        read(RunState::Running);
        EXPECT_EQ(text(Readouts::TimeRemaining), remaining) << thickness << " " << rate;
        EXPECT_EQ(readouts.finalReached(), reached) << thickness;
    }
}

TEST_F(ReadoutsTest, WhatEachRunModeRefreshes) {
    film.EndThick = 12.5;
    readings.elapsed = 3725;
    readings.averageRate = 9.905;
    readings.averageThickness = 1234.5;
    read(RunState::Starting);
    EXPECT_EQ(readouts.texts(), Readouts::Texts());
    read(RunState::Running, 4);
    Readouts::Texts expected{"", "9.91", "", "", "", "", "", "OFF", "OFF", "12.50", "1:02:05", "0:00:00"};
    EXPECT_EQ(readouts.texts(), expected);

    readings.elapsed = 5;
    readings.averageThickness = 0.5;
    readouts.refresh(RunState::Idle, &readings, nullptr, 4); // keeps the run's texts and the film's
    expected[Readouts::AverageThickness] = "0.500";
    EXPECT_EQ(readouts.texts(), expected);
    readouts.refresh(RunState::Running, &readings, nullptr, 4);
    expected[Readouts::ElapsedTime] = "0:00:05";
    EXPECT_EQ(readouts.texts(), expected);
}

TEST_F(ReadoutsTest, ADisplayThatIsNoItemIsStoredAndChangesNothing) {
    readouts.setDisplay(3);
    readouts.setDisplay(0);
    readouts.sensorItemClicked(3); // checked already
    EXPECT_EQ(std::to_string(readouts.Display()) + readouts.labels()[4], "0Freq 2 (Hz)");
}

TEST_F(ReadoutsTest, FailedExchangesMarkTheFieldsThatShowThem) {
    // A failed value, what the sensor fields show, and the fields that are marked.
    const std::tuple<Value, std::int16_t, unsigned> cases[] = {
        {Value::AverageRate, 1, 0b1000'0000'0010},
        {Value::Rate, 1, 0b1000},
        {Value::Rate, 2, 0},
        {Value::Frequency, 3, 0b1000},
    };
    for (const auto& [value, display, fields] : cases) {
        readouts.setDisplay(display);
        readings.failed.reset();
        readings.failed.set(valueIndex(value));
        read(RunState::Running);
        EXPECT_EQ(readouts.failed(), fields);
    }
    read(RunState::Running, 0);
    EXPECT_EQ(readouts.failed()[3], false) << "OFF is no failure";
}

TEST_F(ReadoutsTest, CrystalsAreMarkedAfterTwoBadReadings) {
    // Frequency limits, a frequency, and whether its crystal is marked.
    const std::tuple<double, double, double, bool> cases[] = {
        {5, 6, 5.5e6, false},  {5, 6, 5e6, false},    {5, 6, 6e6, false},
        {5, 6, 4999999, true}, {5, 6, 6000001, true}, {5, 6, 0, true},
        {0, 6, 7e6, false},    {6, 5, 7e6, false},    {0, 0, 0, true},
    };
    for (const auto& [least, most, frequency, marked] : cases) {
        system.FreqMin = least;
        system.FreqMax = most;
        readings.frequency.fill(5.5e6);
        read(RunState::Idle);
        readings.frequency[2] = frequency;
        read(RunState::Idle);
        readouts.refresh(RunState::Idle, &readings, &film,
                         kMaxSensors); // the same reading, after a film change
        EXPECT_FALSE(readouts.crystalMarked(3)) << frequency;
        read(RunState::Idle);
        EXPECT_EQ(readouts.crystalMarked(3), marked) << frequency;
        EXPECT_FALSE(readouts.crystalMarked(1));
    }
    readings.failed.set(valueIndex(Value::Frequency, 2)); // says nothing about the crystal
    readings.frequency[2] = 0;
    read(RunState::Idle);
    EXPECT_TRUE(readouts.crystalMarked(3));
}

} // namespace
} // namespace drx9
