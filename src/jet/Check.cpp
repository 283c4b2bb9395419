#include "jet/Check.h"

#include "jet/Catalog.h"

#include <algorithm>
#include <set>

namespace drx9::jet {

namespace {

constexpr std::size_t kMostFaults = 200;
constexpr std::size_t kMostTreeFaults = 10;

std::string pageName(PageNo page) {
    return "page " + std::to_string(page);
}

std::string rowName(RowId id) {
    return "row " + std::to_string(id.row) + " of " + pageName(id.page);
}

/// One run over a file. Each page is claimed by whatever uses it; what is claimed twice is a fault and not
/// looked into again, so that the work stays within the file's size whatever the file says.
class Checker {
public:
    explicit Checker(PageStore& store)
        : store_(store)
        , claims_(store.pageCount()) {}

    CheckResult run() {
        if (store_.cutShort()) {
            fault("", "the file is cut short: its last page is not whole");
        }
        guarded("", [this] { checkGlobalMap(); });
        guarded("", [this] {
            for (const auto& entry : Catalog(store_).tables()) {
                if (!entry.link) {
                    guarded(entry.name, [&] { checkTable(entry); });
                }
            }
        });
        guarded("", [this] { checkFreePages(); });
        return std::move(result_);
    }

private:
    struct TableCheck {
        const CatalogEntry& entry;
        const Table& table;
        std::vector<RowId> rows; ///< in order
        std::set<PageNo> pages;
        std::size_t budget; ///< for long values
    };

    template<class Work>
    void guarded(const std::string& where, const Work& work) {
        try {
            work();
        } catch (const JetError& error) {
            fault(where, error.reason());
        }
    }

    void fault(const std::string& where, const std::string& what) {
        if (result_.faults.size() < kMostFaults) {
            result_.faults.push_back(where.empty() ? what : "table \"" + where + "\": " + what);
        }
    }

    /// False when the page is something else's already.
    bool claim(const std::string& where, PageNo page, const std::string& use) {
        if (page >= claims_.size()) {
            fault(where, pageName(page) + " (" + use + ") lies beyond the end of the file");
            return false;
        }
        if (!claims_[page].empty()) {
            fault(where, pageName(page) + " is used twice: " + claims_[page] + ", " + use);
            return false;
        }
        claims_[page] = use;
        return true;
    }

    /// Map records share their pages, so these may be claimed again.
    void claimMap(const std::string& where, RowId record) {
        const UsageMap map(store_, record);
        if (mapPages_.insert(record.page).second && record.page != kGlobalMapPage) {
            claim(where, record.page, "map records");
        }
        for (const PageNo page : map.bitmapPages()) {
            claim(where, page, "map bits");
        }
        if (record.page != kGlobalMapPage && map.reachesBeyondEnd()) {
            fault(where, "a map holds pages beyond the end of the file");
        }
    }

    void checkGlobalMap() {
        claim("", 0, "header");
        claim("", kGlobalMapPage, "global map");
        claimMap("", kGlobalMap);
        const DataPage page(store_, kGlobalMapPage);
        if (page.slots().size() > 1) {
            guarded("", [this] { claimMap("", {kGlobalMapPage, 1}); });
        }
    }

    void checkFreePages() {
        for (const PageNo page : UsageMap(store_, kGlobalMap).pages()) {
            if (!claims_[page].empty()) {
                fault("", pageName(page) + " (" + claims_[page] + ") is marked free");
            }
        }
    }

    void checkTable(const CatalogEntry& entry) {
        if (entry.page >= claims_.size() || !claims_[entry.page].empty()) {
            claim(entry.name, entry.page, "definition");
            return;
        }
        const Table table(store_, entry.page);
        for (const PageNo page : table.definition().pages) {
            claim(entry.name, page, "definition");
        }
        ++result_.tables;
        TableCheck check{entry, table, {}, {}, store_.size()};
        checkDataPages(check);
        checkLongValuePages(check);
        checkRows(check);
        const bool counted = table.definition().userTable && entry.user;
        if (counted && table.rowCount() != check.rows.size()) {
            fault(entry.name, "the row count says " + std::to_string(table.rowCount()) + ", there are " +
                                  std::to_string(check.rows.size()));
        }
        result_.rows += check.rows.size();
        for (const auto& index : table.definition().realIndexes) {
            guarded(entry.name, [&] { checkIndex(check, index); });
        }
    }

    void checkDataPages(TableCheck& check) {
        const Definition& definition = check.table.definition();
        claimMap(check.entry.name, definition.ownedMap);
        claimMap(check.entry.name, definition.freeMap);
        for (const PageNo page : UsageMap(store_, definition.ownedMap).pages()) {
            if (claim(check.entry.name, page, "rows of " + check.entry.name)) {
                check.pages.insert(page);
                guarded(check.entry.name, [&] { checkDataPage(check.entry.name, page, definition.page()); });
            }
        }
        for (const PageNo page : UsageMap(store_, definition.freeMap).pages()) {
            if (check.pages.count(page) == 0) {
                fault(check.entry.name, pageName(page) + " is in the free-space map but not owned");
            }
        }
    }

    void checkDataPage(const std::string& where, PageNo number, std::uint32_t owner) {
        const DataPage page(store_, number);
        if (page.owner() != owner) {
            fault(where, pageName(number) + " names another owner");
        }
        if (page.freeBytes() != page.statedFreeBytes()) {
            fault(where, pageName(number) + " says " + std::to_string(page.statedFreeBytes()) +
                             " bytes are free, " + std::to_string(page.freeBytes()) + " are");
        }
    }

    /// Access's own hidden tables may name maps that do not exist.
    void checkLongValuePages(TableCheck& check) {
        if (!check.entry.user) {
            return;
        }
        for (const auto& maps : check.table.definition().longValues) {
            guarded(check.entry.name, [&] {
                claimMap(check.entry.name, maps.owned);
                claimMap(check.entry.name, maps.free);
                for (const PageNo page : UsageMap(store_, maps.owned).pages()) {
                    if (claim(check.entry.name, page, "long values")) {
                        checkDataPage(check.entry.name, page, kOwnerOfLongValues);
                    }
                }
            });
        }
    }

    void checkRows(TableCheck& check) {
        std::set<RowId> bodies;
        std::set<RowId> reached;
        for (const PageNo number : check.pages) {
            guarded(check.entry.name, [&] {
                const DataPage page(store_, number);
                for (std::size_t row = 0; row < std::min(page.slots().size(), kMostSlots); ++row) {
                    const RowId id{number, static_cast<std::uint8_t>(row)};
                    const Slot slot = page.slot(row);
                    if (slot.kind == SlotKind::Body) {
                        bodies.insert(id);
                    } else if (slot.kind == SlotKind::Stub &&
                               !reached.insert(readPointer(Bytes(slot.bytes), 0)).second) {
                        fault(check.entry.name, rowName(id) + " leads to the bytes of another row");
                    } else if (slot.kind != SlotKind::Deleted) {
                        guarded(check.entry.name, [&] { checkValues(check, id); });
                        check.rows.push_back(id);
                    }
                }
            });
        }
        for (const RowId id : bodies) {
            if (reached.count(id) == 0) {
                fault(check.entry.name, "no row leads to the moved " + rowName(id));
            }
        }
    }

    void checkValues(TableCheck& check, RowId id) {
        const Definition& definition = check.table.definition();
        const RowReader row = check.table.reader(id);
        for (std::size_t i = 0; i < definition.columns.size(); ++i) {
            try {
                valueOf(store_, definition, row, i, check.budget);
            } catch (const JetError& error) {
                fault(check.entry.name,
                      rowName(id) + ", column \"" + definition.columns[i].name + "\": " + error.reason());
                check.budget = 0; // no second long read of a damaged file
            }
        }
    }

    // ---- Indexes ----

    /// A walk over one tree, entry by entry: a page's entries may be a hundred times as long as the page.
    struct TreeCheck {
        const TableCheck& table;
        const RealIndex& index;
        std::set<PageNo> pages;
        PageNo lastLeaf = 0;
        PageNo linkedLeaf = 0;  ///< what the last leaf calls the next one
        std::string last;       ///< entry
        std::vector<bool> seen; ///< by position in TableCheck::rows
        std::size_t budget = 0;
        std::size_t faults = 0;
        bool unkeyed = false;
    };

    /// False when a tree has so many faults that the rest is not worth looking at.
    bool treeFault(TreeCheck& tree, const std::string& what) {
        fault(tree.table.entry.name, "index \"" + tree.index.name + "\": " + what);
        return ++tree.faults < kMostTreeFaults;
    }

    void checkIndex(const TableCheck& check, const RealIndex& index) {
        ++result_.indexes;
        claimMap(check.entry.name, index.map);
        TreeCheck tree{check,         index, {},   0, 0, {}, std::vector<bool>(check.rows.size()),
                       store_.size(), 0,     false};
        checkNode(tree, index.root, std::nullopt, std::nullopt);
        if (tree.linkedLeaf != 0) {
            treeFault(tree, "its last leaf has a next one");
        }
        const auto mapped = UsageMap(store_, index.map).pages();
        if (std::set<PageNo>(mapped.begin(), mapped.end()) != tree.pages) {
            treeFault(tree, "its map does not hold exactly the pages of its tree");
        }
        checkMissing(tree);
        result_.unkeyed += tree.unkeyed ? 1 : 0;
    }

    /// Claims and reads a page and what hangs below it. Entries must not lie above `limit`, the separator
    /// that led here.
    void checkNode(TreeCheck& tree, PageNo number, const std::optional<std::string>& limit,
                   std::optional<std::size_t> height) {
        if (tree.faults >= kMostTreeFaults ||
            !claim(tree.table.entry.name, number, "index \"" + tree.index.name + "\"")) {
            return;
        }
        tree.pages.insert(number);
        const IndexPage page(store_, number);
        if (page.owner != tree.table.table.definition().page()) {
            treeFault(tree, pageName(number) + " names another owner");
        }
        if (page.statedFreeBytes() != page.freeBytes()) {
            treeFault(tree, pageName(number) + " has a wrong free count");
        }
        // Some writers leave the height 0 on nodes.
        if ((page.leaf && page.height != 0) || (height && page.height != 0 && page.height != *height)) {
            treeFault(tree, pageName(number) + " has a wrong height");
        }
        if (page.leaf) {
            checkLeaf(tree, number, page);
            if (limit && !page.empty() && page.entry(page.before(page.used())) != *limit) {
                treeFault(tree, "the node above " + pageName(number) + " does not repeat its last entry");
            }
            return;
        }
        const auto below = page.height > 0 ? std::optional<std::size_t>(page.height - 1) : std::nullopt;
        for (std::size_t at = 0; at < page.used(); at = page.after(at)) {
            const auto entry = page.entry(at);
            checkNode(tree, nodeChild(entry), std::string(nodeSeparator(entry)), below);
        }
        checkNode(tree, page.tail, limit, below);
    }

    void checkLeaf(TreeCheck& tree, PageNo number, const IndexPage& page) {
        if (page.previous != tree.lastLeaf || (tree.lastLeaf != 0 && tree.linkedLeaf != number)) {
            treeFault(tree, "its leaves are not linked in order at " + pageName(number));
        }
        tree.lastLeaf = number;
        tree.linkedLeaf = page.next;
        for (std::size_t at = 0; at < page.used(); at = page.after(at)) {
            const auto entry = page.entry(at);
            if (!checkEntry(tree, entry)) {
                return;
            }
            tree.last = entry;
        }
    }

    bool checkEntry(TreeCheck& tree, std::string_view entry) {
        const auto& rows = tree.table.rows;
        const RowId id = entryRow(entry);
        const auto at = std::lower_bound(rows.begin(), rows.end(), id);
        if (!tree.last.empty() && tree.last >= entry && !treeFault(tree, "its entries are out of order")) {
            return false;
        }
        if (at == rows.end() || *at != id) {
            return treeFault(tree, "it refers to " + rowName(id) + ", which does not exist");
        }
        const auto position = static_cast<std::size_t>(at - rows.begin());
        if (tree.seen[position]) {
            return treeFault(tree, "it has " + rowName(id) + " twice");
        }
        tree.seen[position] = true;
        const auto key = keyOf(tree, id);
        if (key && key->bytes != entryKey(entry)) {
            return treeFault(tree, "it has another key for " + rowName(id) + " than the row's values give");
        }
        if (key && key->allNull && tree.index.ignoresNulls()) {
            return treeFault(tree, "it should not have " + rowName(id));
        }
        const bool twice =
            tree.index.isUnique() && !tree.last.empty() && entryKey(tree.last) == entryKey(entry);
        return !twice || !key || key->hasNull || treeFault(tree, "it has a value twice that must be unique");
    }

    /// The key that a row should have; nothing when it cannot be computed.
    std::optional<IndexKey> keyOf(TreeCheck& tree, RowId id) {
        try {
            IndexKey key = tree.table.table.key(tree.index, tree.table.table.reader(id), tree.budget);
            if (key.hasNull && tree.index.isRequired() && tree.table.entry.user) {
                treeFault(tree, rowName(id) + " has no value for it");
            }
            return key;
        } catch (const JetError& error) {
            if (error.fault() != Fault::NoSortKey) {
                throw;
            }
            tree.unkeyed = true;
            return std::nullopt;
        }
    }

    void checkMissing(TreeCheck& tree) {
        for (std::size_t i = 0; i < tree.seen.size(); ++i) {
            if (tree.seen[i]) {
                continue;
            }
            const auto key = keyOf(tree, tree.table.rows[i]);
            const bool leftOut = tree.index.ignoresNulls() && (!key || key->allNull);
            if (!leftOut && !treeFault(tree, "it lacks " + rowName(tree.table.rows[i]))) {
                return;
            }
        }
    }

    PageStore& store_;
    CheckResult result_;
    std::vector<std::string> claims_; ///< by page: what it is used for
    std::set<PageNo> mapPages_;
};

} // namespace

CheckResult checkDatabase(PageStore& store) {
    return Checker(store).run();
}

} // namespace drx9::jet
