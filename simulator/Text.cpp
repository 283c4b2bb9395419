#include "simulator/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace drx9::sim {

namespace {
constexpr double kLargest = 1e9; // what the instrument's own memory holds
}

std::vector<std::string_view> wordsOf(std::string_view text) {
    std::vector<std::string_view> words;
    std::size_t at = 0;
    while ((at = text.find_first_not_of(' ', at)) != std::string_view::npos) {
        const std::size_t end = std::min(text.find(' ', at), text.size());
        words.push_back(text.substr(at, end - at));
        at = end;
    }
    return words;
}

std::optional<double> numberIn(std::string_view word) {
    if (word.starts_with('+')) {
        word.remove_prefix(1);
        if (word.starts_with('-')) {
            return std::nullopt;
        }
    }
    double value = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (error != std::errc() || end != word.data() + word.size() || !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

std::optional<int> integerIn(std::string_view word, int low, int high) {
    int value = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (error != std::errc() || end != word.data() + word.size() || value < low || value > high) {
        return std::nullopt;
    }
    return value;
}

std::optional<std::vector<double>> numbersIn(std::string_view text, std::size_t count) {
    std::vector<double> numbers;
    for (const std::string_view word : wordsOf(text)) {
        const std::optional<double> number = numberIn(word);
        if (!number || std::fabs(*number) > kLargest) {
            return std::nullopt;
        }
        numbers.push_back(*number);
    }
    return numbers.size() == count ? std::optional(numbers) : std::nullopt;
}

std::optional<double> secondsIn(std::string_view text) {
    struct Unit {
        std::string_view suffix;
        double seconds;
    };
    constexpr std::array<Unit, 3> units{{{"ms", 0.001}, {"s", 1}, {"m", 60}}};
    double factor = 1;
    for (const Unit& unit : units) {
        if (text.ends_with(unit.suffix)) {
            factor = unit.seconds;
            text.remove_suffix(unit.suffix.size());
            break;
        }
    }
    const std::optional<double> number = numberIn(text);
    return number && *number >= 0 ? std::optional(*number * factor) : std::nullopt;
}

std::string fixedText(double value, int decimals) {
    std::array<char, 400> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                      std::chars_format::fixed, decimals);
    std::string text(buffer.data(), result.ptr);
    if (text.starts_with('-') && text.find_first_not_of("-0.") == std::string::npos) {
        text.erase(0, 1);
    }
    return text;
}

std::string plainText(double value) {
    std::array<char, 400> buffer{};
    const auto result =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed);
    return {buffer.data(), result.ptr};
}

std::string escaped(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\\') {
            text += "\\\\";
        } else if (byte < 32 || byte > 126) {
            text += "\\x";
            text += digits[byte >> 4U];
            text += digits[byte & 15U];
        } else {
            text += c;
        }
    }
    return text;
}

} // namespace drx9::sim
