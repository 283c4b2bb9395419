#pragma once

#include "jet/PageStore.h"

#include <string>
#include <vector>

namespace drx9::jet {

struct CheckResult {
    std::vector<std::string> faults; ///< a sentence each; empty for a sound file
    std::size_t tables = 0;
    std::size_t rows = 0;
    std::size_t indexes = 0;
    /// Indexes whose keys are of a kind that cannot be recomputed; checked for structure only.
    std::size_t unkeyed = 0;
};

/// Looks through the whole file: every page owned once and not free, definitions, rows, long values, counts,
/// maps, and every index against its table with the keys recomputed. Changes nothing; damage is reported, not
/// thrown.
CheckResult checkDatabase(PageStore& store);

} // namespace drx9::jet
