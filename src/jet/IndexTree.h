#pragma once

#include "jet/UsageMap.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace drx9::jet {

/// One page of an index tree, taken apart; entries are joined with the prefix they share on the page.
class IndexPage {
public:
    bool leaf = true;
    std::uint32_t owner = 0;
    PageNo previous = 0, next = 0, tail = 0;
    std::size_t height = 0;
    std::size_t statedFree = 0, actualFree = 0;

    [[nodiscard]] std::size_t count() const { return ends_.size(); }
    /// All entries' bytes together.
    [[nodiscard]] std::size_t size() const { return bytes_.size(); }
    /// Leaf: key, row pointer; node: the same and 4 bytes child. Valid until the page changes.
    [[nodiscard]] std::string_view entry(std::size_t position) const {
        const std::size_t start = position == 0 ? 0 : ends_[position - 1];
        return std::string_view(bytes_).substr(start, ends_[position] - start);
    }
    [[nodiscard]] std::string_view back() const { return entry(count() - 1); }
    /// Position of the first entry that is not below `wanted`, in a node without regard to the child; count()
    /// if none.
    [[nodiscard]] std::size_t lowerBound(std::string_view wanted) const;
    void insert(std::size_t position, std::string_view added);
    void append(std::string_view prefix, std::string_view rest);
    void append(std::string_view entry) { append({}, entry); }
    void erase(std::size_t position);

private:
    std::string bytes_;
    std::vector<std::size_t> ends_;
};

/// Throws JetError(Damaged) for a page that is no index page or contradicts itself.
IndexPage readIndexPage(const PageStore& store, PageNo number);

/// A whole leaf entry: key bytes, 3 bytes page, 1 byte row, both big-endian.
std::string indexEntry(const std::string& key, RowId row);
RowId entryRow(std::string_view entry);
std::string_view entryKey(std::string_view entry);
/// Key and row pointer of a node's entry, and the child it leads to.
std::string_view nodeSeparator(std::string_view entry);
PageNo nodeChild(std::string_view entry);

/// One index tree. A change is made in the leaf where it belongs; when that does not do (the leaf is full, or
/// would lose its last entry, which its node repeats) the whole tree is laid out anew. The root page stays
/// the root.
class IndexTree {
public:
    IndexTree(PageStore& store, PageNo definitionPage, PageNo root, RowId map)
        : store_(store)
        , definitionPage_(definitionPage)
        , root_(root)
        , map_(store, map) {}

    /// Visits all entries in order until the visitor returns false.
    void walk(const std::function<bool(std::string_view entry)>& visitor) const;
    /// The rows in key order.
    [[nodiscard]] std::vector<RowId> rows() const;
    [[nodiscard]] bool containsKey(const std::string& key) const;

    void insert(const std::string& entry);
    /// Removes the entry of a row; `key` shortens the search when it is known. Throws JetError(Damaged) when
    /// there is none.
    void erase(RowId row, const std::optional<std::string>& key);
    /// Makes the root page an empty leaf.
    void initRoot();
    /// Gives all pages of the tree back.
    void freePages();

private:
    [[nodiscard]] PageNo leafFor(std::string_view entry) const;
    [[nodiscard]] PageNo firstLeaf() const { return leafFor({}); }
    IndexPage ownPage(PageNo number) const;
    bool eraseNear(RowId row, const std::string& key);
    void eraseAt(PageNo leaf, std::size_t position);
    void layOut(const std::vector<std::string>& entries);
    [[nodiscard]] std::vector<std::string> allEntries() const;

    PageStore& store_;
    PageNo definitionPage_;
    PageNo root_;
    UsageMap map_;
};

} // namespace drx9::jet
