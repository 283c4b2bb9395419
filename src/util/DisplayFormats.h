#pragma once

#include "util/LocalTime.h"
#include "util/NumberLocale.h"

#include <string>

namespace drx9 {

/// The formats in which readings are shown and logged.
std::string rateText(double rate, const NumberLocale& locale);                 ///< "#0.00"
std::string sensorThicknessText(double thickness, const NumberLocale& locale); ///< "0.000"
std::string frequencyText(double frequency, const NumberLocale& locale);       ///< "0.0"

/// Three-figure format for thicknesses in kÅ: "#0.000" below 10 (negative values included), "#0.00" below
/// 100, "#0.0" below 1000, empty from 1000 up. The limits are tested on the unrounded value.
std::string threeFigureText(double thickness, const NumberLocale& locale);

inline constexpr double kClockLimit = 362400; ///< s (100 h 40 min)
/// Clock text of a number of seconds: "1:02:05"; "0:00:00" for 0, negative values, and kClockLimit and up.
std::string clockText(double seconds);

std::string shortDateText(const LocalTime& time, const NumberLocale& locale);
std::string timeOfDayText(const LocalTime& time); ///< "h:mm:ss"

} // namespace drx9
