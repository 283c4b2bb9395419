#pragma once

#include "jet/Table.h"

namespace drx9::jet {

/// Throws JetError(Rejected) unless the other table has the row that `record` would refer to through `index`.
void requireReferenced(const Table& table, const LogicalIndex& index, const Record& record);

/// Throws JetError(Rejected) when the other table has a row that refers to `record` through `index`. Cascades
/// are not carried out: such a change is refused too.
void requireUnreferenced(const Table& table, const LogicalIndex& index, const Record& record);

} // namespace drx9::jet
