#pragma once

#include "films/JetHeaders.h"
#include "util/NumberLocale.h"

#include <optional>
#include <string>
#include <string_view>

namespace drx9 {

inline constexpr std::size_t kFilmNameLength = 8;      ///< characters that reach the instrument
inline constexpr std::size_t kMaterialNameLength = 15; ///< characters that a new material's name keeps

/// Marks an entry that has no database film behind it; never written to the instrument.
inline constexpr const char* kNotAFilm = "NotAFilm";

/// Characters of a UTF-8 text as Access counts them (UTF-16 units).
std::size_t characterCount(std::string_view text);
/// The first characters of a UTF-8 text; none is cut in two.
std::string firstCharacters(std::string_view text, std::size_t count);
/// The same, padded with blanks to exactly that length.
std::string fixedText(std::string_view text, std::size_t count);
/// A film's name (Windows-1252) as it is sent: 8 characters in upper case, "_" for "!", which would begin a
/// packet.
std::string wireFilmName(std::string_view name);
/// Without blanks at the end.
std::string trimmedRight(std::string_view text);

/// A stored text; empty for null and for anything else.
std::string textOf(const jet::Value& value);
/// A stored number; a single-precision one as the decimal number that it was stored for: 0.1, not
/// 0.100000001490116. Nothing for null and for texts.
std::optional<double> numberOf(const jet::Value& value);
/// A stored number in its shortest form with the locale's decimal sign; a text as it is; empty for null.
std::string shownText(const jet::Value& value, const NumberLocale& locale);

/// True when storing `wanted` over `stored` would leave the same value, in the precision of what is stored.
bool storesSame(const jet::Value& stored, const jet::Value& wanted);

} // namespace drx9
