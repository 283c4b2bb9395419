#pragma once

#include "jet/UsageMap.h"

namespace drx9::jet {

/// The pages on which a table keeps its rows, or a memo column its values: all of them in one map, those with
/// room left in another.
class RowSpace {
public:
    /// `owner` is what the pages name as theirs.
    RowSpace(PageStore& store, RowId owned, RowId free, std::uint32_t owner)
        : store_(store)
        , owned_(store, owned)
        , free_(store, free)
        , owner_(owner) {}

    /// Stores a row on a page that has room, else on a fresh one.
    RowId add(std::string_view bytes, SlotKind kind);
    /// Empties a slot. A page on which nothing is left goes back to the file.
    void drop(RowId id);
    /// Takes note that a page has room again.
    void noteRoom(PageNo page) { free_.add(page); }
    [[nodiscard]] bool owns(PageNo page) const;

private:
    PageStore& store_;
    UsageMap owned_;
    UsageMap free_;
    std::uint32_t owner_;
};

} // namespace drx9::jet
