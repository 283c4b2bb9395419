#pragma once

#include "jet/TextCodec.h"

#include <string>
#include <string_view>

namespace drx9::jet {

/// The bytes by which the General order compares texts, without the start byte: equal keys are equal texts to
/// the engine (so without case and trailing blanks), and comparing the keys' bytes orders the texts.
/// `descending` gives the form that a descending index stores.
///
/// Only the first 255 characters count. Throws JetError(NoSortKey) for a character whose weight is not known.
std::string textSortKey(const TextCodec& codec, std::string_view stored, bool descending);

/// `a` = `b` as a query compares: by sort key where both have one, else without case of plain letters and
/// trailing blanks. Texts are compared to their ends, which no index key reaches.
bool sameText(const TextCodec& codec, std::string_view a, std::string_view b);

} // namespace drx9::jet
