#pragma once

#include "util/NumberLocale.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace drx9 {

/// The leading number of a text, "." as decimal point, blanks skipped; 0 for a text without one. "12abc" is
/// 12, "-.5e2x" is -50, "1,5" is 1. Never fails; out of range gives the nearest infinity's largest finite
/// value.
double Val(std::string_view text);

/// Whole text as a number of the locale (group separators are accepted and skipped); nothing when it is not
/// one. With "," as group separator "2,5" is 25, where it is the decimal separator 2.5.
std::optional<double> parseLocaleNumber(std::string_view text, const NumberLocale& locale);

/// A number as typed: a single "." or "," is the decimal sign in any locale ("1,250" is 1.25). Of both signs
/// the last is the decimal sign and the other one groups thousands; so does a sign that comes several times.
/// The locale's group separator is taken where there is neither. Nothing for anything else, an empty text
/// included.
std::optional<double> typedNumber(std::string_view text, const NumberLocale& locale);

/// Rounds half to even, as whole numbers are taken everywhere; clamped to the type's range.
std::int16_t toInt16(double value);
std::int32_t toInt32(double value);
/// The value rounded to 0.001 as the stored points of a run are: half of a thousandth goes to the even one.
double toThousandths(double value);

/// Plain number-to-text conversion: at most 15 significant digits, no trailing zeros, "." as decimal point,
/// no zero before it (0.25 gives ".25"), "E" notation outside 1E-15 .. 1E+15 as the shortest form needs it.
/// No sign blank.
std::string plainNumber(double value);

/// The same with a blank in the place of the sign for zero and positive numbers: " .25", "-3".
std::string Str(double value);

/// General form of a locale: up to 15 significant digits, no trailing zeros, a zero before the decimal
/// separator.
std::string generalNumber(double value, const NumberLocale& locale);

/// Fixed decimals, rounded half away from zero on the 15-significant-digit decimal text of the value (2.675
/// gives "2.68" with two decimals). `leadingZero` false drops the zero before the separator (".5"): the
/// formats "#.0" and the like; true is "0.0", "#0.00". A value that rounds to zero shows no sign.
std::string fixedNumber(double value, int decimals, const NumberLocale& locale, bool leadingZero = true);

} // namespace drx9
