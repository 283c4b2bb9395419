#pragma once

#include "util/NumberLocale.h"

#include <string>
#include <string_view>

namespace drx9 {

/// Whole-number positions of a spinner; shown is position divided by multiplier.
struct SpinnerScale {
    int multiplier = 1;
    int least = 0;
    int most = 0;
};

/// What a spinner of the system parameters can hold.
struct SpinnerRange {
    SpinnerScale scale;
    int fallback = 0;     ///< position shown for a value that lies outside
    bool ranging = false; ///< switches between a fine and a coarse scale; the two above are then not used
};

/// Plain number-to-text conversion with the locale's decimal sign.
std::string plainText(double value, const NumberLocale& locale);

/// One number of the system parameters window: the value that the record holds and the spinner that shows it.
///
/// A spinner cannot show every value (out of range, more decimals than its step). Until the operator touches
/// the field, value() is the record's own number, digit for digit, whatever is shown; isExact() says whether
/// the two agree.
///
/// A ranging field has a fine scale (multiplier 1000, up to 10000) and a coarse one (multiplier 100, up to
/// 9999). The fine scale's last position is the coarse one's 1000, the same value, and is never kept.
class SpinnerField {
public:
    explicit SpinnerField(const SpinnerRange& range);

    /// Takes the record's value; the field is then untouched.
    void fill(double stored);
    /// The operator's steps, up or down; held at the scale's ends, where a ranging field changes its scale.
    void step(int steps);
    /// The spinner was put to a position of the present scale.
    void moveTo(int position);
    /// A number that the operator typed (typedNumber). False when it is no number or out of
    /// range: nothing changes then.
    bool type(std::string_view text);

    [[nodiscard]] int position() const { return position_; }
    [[nodiscard]] int multiplier() const { return scale_.multiplier; }
    [[nodiscard]] int minimum() const { return scale_.least; }
    [[nodiscard]] int maximum() const { return scale_.most; }
    [[nodiscard]] bool touched() const { return touched_; }
    /// What is shown is what value() gives.
    [[nodiscard]] bool isExact() const;
    /// What a save puts into the record.
    [[nodiscard]] double value() const { return touched_ ? shown() : stored_; }

    /// The shown value in plain form with the locale's decimal sign: ".25", "10".
    [[nodiscard]] std::string text(const NumberLocale& locale) const { return textOf(position_, locale); }
    /// Another position of the present scale.
    [[nodiscard]] std::string textOf(int position, const NumberLocale& locale) const;
    /// The record's value in the same form.
    [[nodiscard]] std::string storedText(const NumberLocale& locale) const;
    /// What may be typed: ".01 to 99.99".
    [[nodiscard]] std::string rangeText(const NumberLocale& locale) const;

private:
    [[nodiscard]] double shown() const { return static_cast<double>(position_) / scale_.multiplier; }
    [[nodiscard]] SpinnerScale scaleFor(double value) const;
    void put(int position);
    void changeScale();

    SpinnerRange range_;
    SpinnerScale scale_;
    int position_ = 0;
    double stored_ = 0;
    bool touched_ = false;
};

} // namespace drx9
