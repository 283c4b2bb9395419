#include "util/DisplayFormats.h"

#include "util/Numbers.h"

#include <algorithm>

namespace drx9 {

namespace {

std::string twoDigits(int number) {
    return (number < 10 ? "0" : "") + std::to_string(number);
}

/// Text of one run of the same letter in a date pattern; anything but a field stands for itself.
std::string dateField(const LocalTime& time, const std::string& field) {
    if (field == "d" || field == "M") {
        return std::to_string(field == "d" ? time.day : time.month);
    }
    if (field == "dd" || field == "MM") {
        return twoDigits(field == "dd" ? time.day : time.month);
    }
    return field == "yyyy" ? std::to_string(time.year) : field;
}

} // namespace

std::string rateText(double rate, const NumberLocale& locale) {
    return fixedNumber(rate, 2, locale);
}

std::string sensorThicknessText(double thickness, const NumberLocale& locale) {
    return fixedNumber(thickness, 3, locale);
}

std::string frequencyText(double frequency, const NumberLocale& locale) {
    return fixedNumber(frequency, 1, locale);
}

std::string threeFigureText(double thickness, const NumberLocale& locale) {
    if (thickness < 10) {
        return fixedNumber(thickness, 3, locale);
    }
    if (thickness < 100) {
        return fixedNumber(thickness, 2, locale);
    }
    return thickness < 1000 ? fixedNumber(thickness, 1, locale) : std::string();
}

std::string clockText(double seconds) {
    if (!(seconds > 0 && seconds < kClockLimit)) {
        return "0:00:00";
    }
    const int whole = static_cast<int>(seconds);
    return std::to_string(whole / 3600) + ":" + twoDigits(whole % 3600 / 60) + ":" + twoDigits(whole % 60);
}

std::string shortDateText(const LocalTime& time, const NumberLocale& locale) {
    std::string out;
    const std::string& pattern = locale.shortDate;
    for (std::size_t at = 0; at < pattern.size();) {
        const std::size_t end = std::min(pattern.find_first_not_of(pattern[at], at), pattern.size());
        out += dateField(time, pattern.substr(at, end - at));
        at = end;
    }
    return out;
}

std::string timeOfDayText(const LocalTime& time) {
    return std::to_string(time.hour) + ":" + twoDigits(time.minute) + ":" + twoDigits(time.second);
}

} // namespace drx9
