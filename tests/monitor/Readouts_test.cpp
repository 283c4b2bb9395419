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
    const struct {
        double thickness, rate, finalThickness;
        const char* remaining;
        bool reached;
    } cases[] = {
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
    for (const auto& c : cases) {
        readings.averageThickness = c.thickness;
        readings.averageRate = c.rate;
        film.EndThick = c.finalThickness;
        read(RunState::Running);
        EXPECT_EQ(text(Readouts::TimeRemaining), c.remaining) << c.thickness << " " << c.rate;
        EXPECT_EQ(readouts.finalReached(), c.reached) << c.thickness;
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

TEST_F(ReadoutsTest, SensorFieldsFollowTheCheckedItem) {
    readings.rate[1] = 1.2345;
    readings.thickness[1] = 1234.5;
    readings.frequency[1] = 5987654.25;
    locale.decimal = ',';
    const struct {
        std::int16_t display, checked;
        const char *label, *text;
    } steps[] = {
        {0, 0, "Rate 2", ""},
        {1, 1, "Rate 2 (A/s)", "1,23"},
        {2, 2, "Thick 2 (kA)", "1234,500"},
        {3, 3, "Freq 2 (Hz)", "5987654,3"},
        {0, 3, "Freq 2 (Hz)", "5987654,3"}, // stored, and nothing else
    };
    for (const auto& s : steps) {
        readouts.setDisplay(s.display);
        read(RunState::Idle);
        EXPECT_EQ(readouts.Display(), s.display);
        EXPECT_EQ(readouts.checkedSensorItem(), s.checked);
        EXPECT_EQ(readouts.labels()[4], s.label);
        EXPECT_EQ(text(4), s.text);
    }
    readouts.sensorItemClicked(3); // checked already
    EXPECT_EQ(readouts.Display(), 0);
}

TEST_F(ReadoutsTest, FailedExchangesMarkTheFieldsThatShowThem) {
    const struct {
        Value value;
        std::int16_t display;
        unsigned fields;
    } cases[] = {
        {Value::AverageRate, 1, 0b1000'0000'0010},
        {Value::AverageThickness, 1, 0b1000'0000'0100},
        {Value::Rate, 1, 0b1000},
        {Value::Rate, 2, 0},
        {Value::Thickness, 2, 0b1000},
        {Value::Frequency, 3, 0b1000},
    };
    for (const auto& c : cases) {
        readouts.setDisplay(c.display);
        readings.failed.reset();
        readings.failed.set(valueIndex(c.value));
        read(RunState::Running);
        EXPECT_EQ(readouts.failed(), c.fields);
    }
    read(RunState::Running, 0);
    EXPECT_EQ(readouts.failed()[3], false) << "OFF is no failure";
}

TEST_F(ReadoutsTest, CrystalsAreMarkedAfterTwoBadReadings) {
    const struct {
        double least, most, frequency;
        bool marked;
    } cases[] = {
        {5, 6, 5.5e6, false},  {5, 6, 5e6, false},    {5, 6, 6e6, false},
        {5, 6, 4999999, true}, {5, 6, 6000001, true}, {5, 6, 0, true},
        {0, 6, 7e6, false},    {6, 5, 7e6, false},    {0, 0, 0, true},
    };
    for (const auto& c : cases) {
        system.FreqMin = c.least;
        system.FreqMax = c.most;
        readings.frequency.fill(5.5e6);
        read(RunState::Idle);
        readings.frequency[2] = c.frequency;
        read(RunState::Idle);
        readouts.refresh(RunState::Idle, &readings, &film,
                         kMaxSensors); // the same reading, after a film change
        EXPECT_FALSE(readouts.crystalMarked(3)) << c.frequency;
        read(RunState::Idle);
        EXPECT_EQ(readouts.crystalMarked(3), c.marked) << c.frequency;
        EXPECT_FALSE(readouts.crystalMarked(1));
    }
    readings.failed.set(valueIndex(Value::Frequency, 2)); // says nothing about the crystal
    readings.frequency[2] = 0;
    read(RunState::Idle);
    EXPECT_TRUE(readouts.crystalMarked(3));
}

} // namespace
} // namespace drx9
