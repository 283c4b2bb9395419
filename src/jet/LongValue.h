#pragma once

#include "jet/Definition.h"

#include <string>

namespace drx9::jet {

/// Reads a memo or OLE value from its field: inside the row, on one row of a long-value page, or along a
/// chain of them. `budget` bounds the bytes read from long-value pages and is lowered by them: in a whole
/// file no two values share a page's bytes, so the file's size is enough for any number of values. Throws
/// JetError(Damaged).
std::string readLongValue(const PageStore& store, std::string_view field, std::size_t& budget);

/// Stores a value: short ones in the row, others on the column's long-value pages. Returns the field.
std::string storeLongValue(PageStore& store, const LongValueMaps* maps, std::string_view value);

/// Gives the rows of a stored value back to the column's pages. A value that does not lie on them is left
/// alone: that leaks its space and harms nothing.
void freeLongValue(PageStore& store, const LongValueMaps* maps, std::string_view field);

} // namespace drx9::jet
