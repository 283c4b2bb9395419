#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace drx9::sim {

/// The longest reply data that a packet carries.
constexpr std::size_t kMaxReplyData = 219;

/// The words of `text`, split at any run of blanks.
std::vector<std::string_view> wordsOf(std::string_view text);

/// The finite number that is the whole of `word` ("." is the decimal separator; ".25" and "+1" are numbers,
/// "1,5" and "" are not).
std::optional<double> numberIn(std::string_view word);

/// The whole number that is the whole of `word`, if it lies in low..high.
std::optional<int> integerIn(std::string_view word, int low, int high);

/// Exactly `count` numbers of at most 1e9 either way, separated by blanks, or nothing.
std::optional<std::vector<double>> numbersIn(std::string_view text, std::size_t count);

/// Seconds of "1500ms", "30s", "2m" or "30" (seconds); never negative.
std::optional<double> secondsIn(std::string_view text);

/// `value` with `decimals` digits after the point; never "-0.00".
std::string fixedText(double value, int decimals);

/// The shortest text that reads back as `value`, without an exponent.
std::string plainText(double value);

/// Control bytes and bytes above 126 as \xNN, the backslash doubled: one line whatever the bytes.
std::string escaped(std::string_view bytes);

} // namespace drx9::sim
