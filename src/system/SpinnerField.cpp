#include "system/SpinnerField.h"

#include "system/Texts.h"
#include "util/Numbers.h"
#include "util/Text.h"

#include <algorithm>
#include <optional>

namespace drx9 {

namespace {
constexpr SpinnerScale kFine{1000, 0, 10000}; // 0.000 to 10.000
constexpr SpinnerScale kCoarse{100, 0, 9999}; // to 99.99
constexpr int kCoarseFoot = 1000;             // 10.00
constexpr double kSwitch = 10;

SpinnerScale rangingScale(double value) {
    return value >= kSwitch && value * kCoarse.multiplier <= kCoarse.most ? kCoarse : kFine;
}
} // namespace

std::string plainText(double value, const NumberLocale& locale) {
    std::string text = plainNumber(value);
    std::replace(text.begin(), text.end(), '.', locale.decimal);
    return text;
}

SpinnerField::SpinnerField(const SpinnerRange& range)
    : range_(range)
    , scale_(scaleFor(0))
    , position_(range.fallback) {}

SpinnerScale SpinnerField::scaleFor(double value) const {
    return range_.ranging ? rangingScale(value) : range_.scale;
}

void SpinnerField::fill(double stored) {
    stored_ = stored;
    touched_ = false;
    scale_ = scaleFor(stored);
    const double x = stored * scale_.multiplier;
    if (x >= scale_.least && x <= scale_.most) {
        put(toInt32(x));
    } else if (!range_.ranging) {
        position_ = range_.fallback;
    } else if (stored >= kSwitch) {
        scale_ = kCoarse;
        position_ = kCoarse.most;
    } else {
        position_ = 0;
    }
}

void SpinnerField::step(int steps) {
    moveTo(position_ + steps);
}

void SpinnerField::moveTo(int position) {
    const int held = std::clamp(position, scale_.least, scale_.most);
    if (held != position_) {
        touched_ = true;
        put(held);
    }
}

bool SpinnerField::type(std::string_view text) {
    const std::optional<double> number = typedNumber(text, NumberLocale{});
    if (!number) {
        return false;
    }
    const SpinnerScale scale = scaleFor(*number);
    const double x = *number * scale.multiplier;
    if (x < scale.least || x > scale.most) {
        return false;
    }
    touched_ = true;
    scale_ = scale;
    put(toInt32(x));
    return true;
}

void SpinnerField::put(int position) {
    position_ = position;
    if (range_.ranging) {
        changeScale();
    }
}

void SpinnerField::changeScale() {
    const bool coarse = scale_.multiplier == kCoarse.multiplier;
    if (!coarse && position_ >= kFine.most) {
        scale_ = kCoarse;
        position_ = kCoarseFoot;
    } else if (coarse && position_ < kCoarseFoot) {
        scale_ = kFine;
        position_ = kFine.most - 1;
    }
}

bool SpinnerField::isExact() const {
    return touched_ || plainNumber(shown()) == plainNumber(stored_);
}

std::string SpinnerField::textOf(int position, const NumberLocale& locale) const {
    return plainText(static_cast<double>(position) / scale_.multiplier, locale);
}

std::string SpinnerField::storedText(const NumberLocale& locale) const {
    return plainText(stored_, locale);
}

std::string SpinnerField::rangeText(const NumberLocale& locale) const {
    const SpinnerScale& top = range_.ranging ? kCoarse : range_.scale;
    return filled(systemText::kRange, {plainText(static_cast<double>(top.least) / top.multiplier, locale),
                                       plainText(static_cast<double>(top.most) / top.multiplier, locale)});
}

} // namespace drx9
