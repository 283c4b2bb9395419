#pragma once

#include "jet/PageStore.h"

#include <span>
#include <string>
#include <string_view>

namespace drx9::jet {

/// What an index page says of itself before its entries.
struct IndexHead {
    bool leaf = true;
    std::uint32_t owner = 0; ///< definition page of the table
    PageNo previous = 0, next = 0;
    PageNo tail = 0; ///< nodes: the last child, which has no entry
    std::size_t height = 0;
};

/// One page of an index tree, a view into the store: valid until the store's next appendPage(). An entry is
/// named by its offset among the bytes of the entries: the first has offset 0, used() is the offset of the
/// end.
class IndexPage : public IndexHead {
public:
    /// Throws JetError(Damaged) for a page that is no index page; entries are checked when they are read.
    IndexPage(const PageStore& store, PageNo number);

    [[nodiscard]] const IndexHead& head() const { return *this; }
    [[nodiscard]] std::size_t used() const { return used_; }
    [[nodiscard]] bool empty() const { return used_ == 0; }
    [[nodiscard]] std::size_t freeBytes() const { return room_ - used_; }
    [[nodiscard]] std::size_t statedFreeBytes() const { return page_.u16(kFreeBytesAt); }
    /// True when entries can be added and taken out where they lie: they share no prefix.
    [[nodiscard]] bool plain() const { return prefix_.empty(); }

    /// The entry behind one; used() behind the last.
    [[nodiscard]] std::size_t after(std::size_t at) const;
    /// The entry before one; 0 before the first.
    [[nodiscard]] std::size_t before(std::size_t at) const;
    /// Leaf: key, row pointer; node: the same and 4 bytes child. Valid until the next entry is read.
    [[nodiscard]] std::string_view entry(std::size_t at) const;
    /// The first entry that is not below `wanted`, in a node without regard to the child; used() if none.
    [[nodiscard]] std::size_t lowerBound(std::string_view wanted) const;

private:
    [[nodiscard]] std::size_t boundary(std::size_t at, std::size_t lowest) const;

    Bytes page_;
    std::string_view ends_;    ///< a bit for each offset at which an entry ends
    std::string_view entries_; ///< and what else the page holds behind them
    std::string_view prefix_;  ///< left out of all entries but the first
    std::size_t room_ = 0;
    std::size_t used_ = 0;
    mutable std::string joined_;
};

/// Writes a page again, with no shared prefix.
void writeIndexPage(PageStore& store, PageNo number, const IndexHead& head,
                    std::span<const std::string> entries);
/// Puts an entry into a plain page that has room for it, and takes one out.
void insertEntry(PageStore& store, PageNo number, std::size_t at, std::string_view entry);
void eraseEntry(PageStore& store, PageNo number, std::size_t at);

/// A whole leaf entry: key bytes, 3 bytes page, 1 byte row, both big-endian.
std::string indexEntry(const std::string& key, RowId row);
RowId entryRow(std::string_view entry);
std::string_view entryKey(std::string_view entry);
/// A node's entry: key and row pointer of the last entry below the child, and the child.
std::string nodeEntry(std::string_view separator, PageNo child);
std::string_view nodeSeparator(std::string_view entry);
PageNo nodeChild(std::string_view entry);

} // namespace drx9::jet
