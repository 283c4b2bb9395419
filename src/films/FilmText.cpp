#include "films/FilmText.h"

#include "util/Numbers.h"
#include "util/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace drx9 {

namespace {

/// A single-precision value as the double with the same shortest decimal text: 0.1f is shown as 0.1.
double shortest(float value) {
    std::array<char, 32> text{};
    const auto written = std::to_chars(text.data(), text.data() + text.size(), value);
    double result = value;
    std::from_chars(text.data(), written.ptr, result);
    return result;
}

} // namespace

std::size_t characterCount(std::string_view text) {
    return utf16FromUtf8(text).size() / 2;
}

std::string firstCharacters(std::string_view text, std::size_t count) {
    std::string units = utf16FromUtf8(text); // two bytes each, the low one first
    units.resize(std::min(units.size(), count * 2));
    const auto last = units.empty() ? 0 : static_cast<unsigned char>(units.back());
    const bool cutInTwo = last >= 0xD8 && last <= 0xDB;
    units.resize(units.size() - (cutInTwo ? 2 : 0));
    return utf8FromUtf16(units);
}

std::string fixedText(std::string_view text, std::size_t count) {
    const std::string cut = firstCharacters(text, count);
    return cut + std::string(count - characterCount(cut), ' ');
}

std::string wireFilmName(std::string_view name) {
    std::string sent = upperAnsi(name);
    sent.resize(kFilmNameLength, ' ');
    std::replace(sent.begin(), sent.end(), '!', '_');
    return sent;
}

std::string trimmedRight(std::string_view text) {
    return std::string(text.substr(0, text.find_last_not_of(' ') + 1));
}

std::string textOf(const jet::Value& value) {
    const auto* text = std::get_if<std::string>(&value);
    return text != nullptr ? *text : std::string();
}

std::optional<double> numberOf(const jet::Value& value) {
    const auto* single = std::get_if<float>(&value);
    return single != nullptr ? shortest(*single) : jet::asNumber(value);
}

std::string shownText(const jet::Value& value, const NumberLocale& locale) {
    const auto number = numberOf(value);
    return number ? generalNumber(*number, locale) : textOf(value);
}

bool storesSame(const jet::Value& stored, const jet::Value& wanted) {
    if (jet::isNull(stored) || jet::isNull(wanted)) {
        return jet::isNull(stored) && jet::isNull(wanted);
    }
    const auto number = jet::asNumber(wanted);
    const auto old = jet::asNumber(stored);
    if (!number || !old) {
        return stored == wanted;
    }
    if (std::holds_alternative<float>(stored)) {
        return std::get<float>(stored) == static_cast<float>(*number);
    }
    if (std::holds_alternative<std::int64_t>(stored)) {
        return *old == std::nearbyint(*number);
    }
    return *old == *number;
}

} // namespace drx9
