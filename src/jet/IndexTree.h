#pragma once

#include "jet/IndexPage.h"
#include "jet/UsageMap.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace drx9::jet {

/// One index tree. A change is made in the page where it belongs. A page that overflows is split, its new
/// neighbours on its left, so that the node above goes on naming it by the same entry; a leaf that loses its
/// last entry changes the one entry above that repeats it. The root page stays the root.
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

    void insert(const std::string& entry) { put(entry, 0); }
    /// Removes the entry of a row; `key` shortens the search when it is known. Throws JetError(Damaged) when
    /// there is none.
    void erase(RowId row, const std::optional<std::string>& key);
    /// Makes the root page an empty leaf.
    void initRoot();
    /// Gives all pages of the tree back.
    void freePages();

private:
    [[nodiscard]] std::vector<PageNo> pathTo(std::string_view entry) const;
    IndexPage ownPage(PageNo number) const;
    [[nodiscard]] PageNo newPage();
    void put(std::string_view entry, std::size_t height);
    void fill(PageNo number, std::size_t height, const std::vector<std::string>& entries, bool atEnd);
    PageNo pushRootDown(std::size_t height);
    void eraseAt(PageNo leaf, std::size_t at);
    void takeOut(PageNo number, std::size_t height, std::size_t place);
    void replaceSeparator(const std::string& old, const std::string& replacement);
    bool dropLeaf(PageNo leaf, const std::string& entry);
    void rebuildWithout(const std::string& entry);

    PageStore& store_;
    PageNo definitionPage_;
    PageNo root_;
    UsageMap map_;
};

} // namespace drx9::jet
