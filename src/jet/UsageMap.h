#pragma once

#include "jet/DataPage.h"

#include <vector>

namespace drx9::jet {

/// A set of page numbers, stored as one record on a data page: either a bitmap over a window of pages, or a
/// list of bitmap pages. Reading is bounded by the file's size. In the global map a page in the set is free;
/// in all others it is owned.
class UsageMap {
public:
    UsageMap(PageStore& store, RowId record)
        : store_(store)
        , record_(record) {}

    /// The pages in the set that the file has, ascending.
    [[nodiscard]] std::vector<PageNo> pages() const;
    [[nodiscard]] bool contains(PageNo page) const;
    /// The lowest page in the set, also one beyond the file's end.
    [[nodiscard]] std::optional<PageNo> lowest() const;
    /// True when it holds a page that the file does not have: only the global map may.
    [[nodiscard]] bool reachesBeyondEnd() const;
    /// Bitmap pages that the record names and the file has.
    [[nodiscard]] std::vector<PageNo> bitmapPages() const;

    /// Adds a page; moves or lengthens the record, or turns it into a list of bitmap pages, when it does not
    /// reach.
    void add(PageNo page);
    void remove(PageNo page);
    /// Makes it an empty set.
    void clear();

private:
    /// A run of bits: `base` is the page of the first one.
    struct Bits {
        PageNo base = 0;
        std::string_view bytes;
    };
    [[nodiscard]] Bytes record() const { return Bytes(rowBytes(store_, record_)); }
    [[nodiscard]] bool isList() const { return record().u8(0) == 1; }
    [[nodiscard]] PageNo bitmapPageFor(PageNo page) const;
    [[nodiscard]] std::vector<Bits> bits() const;
    template<class Visitor>
    void visit(const Visitor& visitor) const;
    bool addInline(PageNo page);
    void addToList(PageNo page);
    void becomeList();
    void writeInline(PageNo base, std::size_t bitmapSize, const std::vector<PageNo>& members);
    PageNo newBitmapPage();
    void writeBit(PageNo page, bool value);

    PageStore& store_;
    RowId record_;
};

/// The global map's record.
inline constexpr RowId kGlobalMap = {kGlobalMapPage, 0};

/// Takes a page out of the global map, growing the file when none is free. Its contents are stale.
PageNo allocatePage(PageStore& store);
/// Gives a page back to the global map.
void freePage(PageStore& store, PageNo page);
/// Appends an empty map record to `mapPage`, or to a new map page when that is 0 or full; `mapPage` follows.
RowId newMapRecord(PageStore& store, PageNo& mapPage);

} // namespace drx9::jet
