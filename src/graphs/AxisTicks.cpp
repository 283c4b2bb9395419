#include "graphs/AxisTicks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace drx9 {

namespace {
constexpr double kGridPixels = 12;
constexpr double kTickPixels = 4;
constexpr double kLeastLabels = 1.5; ///< spacings in view, below which round numbers are labelled
constexpr double kMostMultiple = 1e12;
constexpr double kMostDigits = 1e6;

/// Multiples that keep whole minutes and hours whole.
constexpr std::array<double, 14> kTimes{1, 2, 5, 10, 15, 30, 60, 120, 180, 240, 360, 720, 1440, 2880};
constexpr std::array<double, 3> kPlain{1, 2, 5};

/// The least round multiple of a spacing that is at least `least`.
double roundMultiple(double spacing, double least, bool time) {
    if (time) {
        for (const double factor : kTimes) {
            if (spacing * factor >= least) {
                return spacing * factor;
            }
        }
        spacing *= kTimes.back();
    }
    for (double power = 1; power < kMostMultiple; power *= 10) {
        for (const double factor : kPlain) {
            if (spacing * factor * power >= least) {
                return spacing * factor * power;
            }
        }
    }
    return least;
}

/// The least round number that is at least `least`; of seconds also round in minutes and hours.
double roundStep(double least, bool time) {
    if (time && least > 1) {
        for (const double step : {2.0, 5.0, 10.0, 15.0, 30.0, 60.0, 120.0, 300.0, 600.0, 900.0, 1800.0}) {
            if (step >= least) {
                return step;
            }
        }
        return roundMultiple(3600, least, false);
    }
    const double power = std::pow(10, std::floor(std::log10(least)));
    return roundMultiple(power, least, false);
}

double labelStep(const AxisLook& axis, const ValueSpan& view, double least, bool time) {
    const double step = roundMultiple(axis.labelSpacing, least, time);
    return view.size() / step < kLeastLabels ? roundStep(least, time) : step;
}

constexpr int kMostMultiples = 10000;

std::vector<double> multiples(double step, const ValueSpan& view) {
    std::vector<double> values;
    const double slack = view.size() * 1e-9;
    const double first = std::ceil((view.from - slack) / step);
    const double last = std::floor((view.to + slack) / step);
    // By a count: beyond 2^53 one more changes nothing.
    for (int i = 0; i < kMostMultiples && first + i <= last; ++i) {
        values.push_back((first + i) * step + 0.0); // -0 reads as 0
    }
    return values;
}

bool isWhole(double seconds) {
    return std::fabs(seconds - std::round(seconds)) < 1e-6 * seconds;
}

std::string labelText(double value, double step, const AxisLook& axis, const AxisRoom& room) {
    if (!room.time) {
        return axisValueText(value, axis.format, room.decimal);
    }
    if (isWhole(step)) {
        return elapsedText(value, axis.format);
    }
    return preciseElapsedText(value, axis.format, room.decimal);
}
} // namespace

std::string preciseElapsedText(double seconds, const std::string& format, char decimal) {
    const double millis = std::round(std::fabs(seconds) * 1000);
    std::array<char, 16> digits{};
    std::snprintf(digits.data(), digits.size(), "%c%03d", decimal, static_cast<int>(std::fmod(millis, 1000)));
    return (seconds < 0 && millis > 0 ? "-" : "") + elapsedText(std::floor(millis / 1000), format) +
           digits.data();
}

AxisTicks axisTicks(const AxisLook& axis, const ValueSpan& view, const AxisRoom& room) {
    AxisTicks ticks;
    const double perPixel = view.size() / std::max(1.0, room.pixels);
    double step = labelStep(axis, view, perPixel * room.labelPixels, room.time);
    if (room.time && !isWhole(step)) {
        step = labelStep(axis, view, perPixel * (room.labelPixels + room.fractionPixels), true);
    }
    for (const double value : multiples(step, view)) {
        ticks.labels.push_back({value, labelText(value, step, axis, room)});
    }
    if (axis.gridPattern == kGridOn) {
        ticks.grid = multiples(axis.gridSpacing >= perPixel * kGridPixels
                                   ? axis.gridSpacing
                                   : roundMultiple(axis.gridSpacing, step, room.time),
                               view);
    }
    const double small = std::min(axis.tickSpacing, step / 10);
    const double tick = small >= perPixel * kTickPixels ? small : step / 10;
    if (tick >= perPixel * kTickPixels) {
        ticks.ticks = multiples(tick, view);
    }
    return ticks;
}

std::string elapsedText(double seconds, const std::string& format) {
    const double whole = std::floor(std::min(std::fabs(seconds), 1e12) + 5e-4);
    const auto count = static_cast<long long>(whole);
    std::string text = seconds < 0 && count > 0 ? "-" : "";
    const auto two = [&text](long long number) {
        text += number < 10 ? "0" : "";
        text += std::to_string(number);
    };
    for (std::size_t i = 0; i < format.size(); ++i) {
        const char field = format[i] == '%' && i + 1 < format.size() ? format[++i] : '\0';
        switch (field) {
        case 'H':
            two(count / 3600);
            break;
        case 'M':
            two(count / 60 % 60);
            break;
        case 'S':
            two(count % 60);
            break;
        default:
            text += format[i];
        }
    }
    return text;
}

std::string axisValueText(double value, const std::string& format, char decimal) {
    std::array<char, 400> digits{};
    const bool fixed = format.size() == 4 && format[0] == '%' && format[1] == '.' && format[2] >= '0' &&
                       format[2] <= '6' && format[3] == 'f';
    const double rounded =
        std::fabs(value) < kMostDigits ? std::round(value * kMostDigits) / kMostDigits + 0.0 : value;
    if (fixed) {
        std::snprintf(digits.data(), digits.size(), "%.*f", format[2] - '0', rounded);
    } else {
        std::snprintf(digits.data(), digits.size(), "%.7g", rounded == 0 ? 0.0 : rounded);
    }
    std::string text = digits.data();
    std::replace(text.begin(), text.end(), '.', decimal);
    return text;
}

} // namespace drx9
