#include "jet/Check.h"

#include "jet/Catalog.h"

#include <algorithm>
#include <map>
#include <set>

namespace drx9::jet {

namespace {

constexpr std::size_t kMostFaults = 200;

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
        std::map<RowId, Record> rows;
        std::set<PageNo> pages;
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
        TableCheck check{entry, table, {}, {}};
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
                        guarded(check.entry.name, [&] { check.rows.emplace(id, check.table.read(id)); });
                    }
                }
            });
        }
        for (const RowId id : bodies) {
            if (reached.count(id) == 0) {
                fault(check.entry.name, "no row leads to the moved " + rowName(id));
            }
        }
        checkValues(check);
    }

    void checkValues(const TableCheck& check) {
        const auto& columns = check.table.definition().columns;
        std::size_t budget = store_.image().size();
        for (const auto& [id, record] : check.rows) {
            for (std::size_t i = 0; i < columns.size(); ++i) {
                try {
                    if (const auto bytes = record.stored(i, budget)) {
                        decodeValue(store_.text(), columns[i], *bytes);
                    }
                } catch (const JetError& error) {
                    fault(check.entry.name,
                          rowName(id) + ", column \"" + columns[i].name + "\": " + error.reason());
                    budget = 0; // no second long read of a damaged file
                }
            }
        }
    }

    // ---- Indexes ----

    struct TreeCheck {
        std::set<PageNo> pages;
        std::vector<PageNo> leaves; ///< from left to right as the nodes have them
        std::vector<std::string> entries;
    };

    void checkIndex(const TableCheck& check, const RealIndex& index) {
        ++result_.indexes;
        const std::string name = "index \"" + index.name + "\": ";
        claimMap(check.entry.name, index.map);
        TreeCheck tree;
        checkNode(check, index, index.root, std::nullopt, tree);
        checkLeafChain(check, index, tree);
        const auto mapped = UsageMap(store_, index.map).pages();
        if (std::set<PageNo>(mapped.begin(), mapped.end()) != tree.pages) {
            fault(check.entry.name, name + "its map does not hold exactly the pages of its tree");
        }
        for (std::size_t i = 1; i < tree.entries.size(); ++i) {
            if (tree.entries[i - 1] >= tree.entries[i]) {
                fault(check.entry.name, name + "its entries are out of order");
                break;
            }
        }
        checkEntries(check, index, tree);
    }

    /// Claims and reads a page and what hangs below it. Entries must not lie above `limit`, the separator
    /// that led here.
    void checkNode(const TableCheck& check, const RealIndex& index, PageNo number,
                   const std::optional<std::string>& limit, TreeCheck& tree,
                   std::optional<std::size_t> height = std::nullopt) {
        const std::string name = "index \"" + index.name + "\": ";
        if (!claim(check.entry.name, number, name + "tree")) {
            return;
        }
        tree.pages.insert(number);
        const IndexPage page = readIndexPage(store_, number);
        if (page.owner != check.table.definition().page()) {
            fault(check.entry.name, name + pageName(number) + " names another owner");
        }
        if (page.statedFree != page.actualFree) {
            fault(check.entry.name, name + pageName(number) + " has a wrong free count");
        }
        // Some writers leave the height 0 on nodes.
        if ((page.leaf && page.height != 0) || (height && page.height != 0 && page.height != *height)) {
            fault(check.entry.name, name + pageName(number) + " has a wrong height");
        }
        if (page.leaf) {
            if (limit && !page.entries.empty() && page.entries.back() > *limit) {
                fault(check.entry.name, name + pageName(number) + " has entries beyond its node's");
            }
            tree.leaves.push_back(number);
            tree.entries.insert(tree.entries.end(), page.entries.begin(), page.entries.end());
            return;
        }
        const auto below = page.height > 0 ? std::optional<std::size_t>(page.height - 1) : std::nullopt;
        for (const auto& entry : page.entries) {
            const std::string separator(nodeSeparator(entry));
            const std::size_t before = tree.entries.size();
            checkNode(check, index, nodeChild(entry), separator, tree, below);
            if (tree.entries.size() > before && tree.entries.back() != separator) {
                fault(check.entry.name, name + pageName(number) + " does not repeat the last entry below it");
            }
        }
        checkNode(check, index, page.tail, limit, tree, below);
    }

    void checkLeafChain(const TableCheck& check, const RealIndex& index, const TreeCheck& tree) {
        for (std::size_t i = 0; i < tree.leaves.size(); ++i) {
            const IndexPage page = readIndexPage(store_, tree.leaves[i]);
            const PageNo previous = i > 0 ? tree.leaves[i - 1] : 0;
            const PageNo next = i + 1 < tree.leaves.size() ? tree.leaves[i + 1] : 0;
            if (page.previous != previous || page.next != next) {
                fault(check.entry.name, "index \"" + index.name + "\": its leaves are not linked in order");
            }
        }
    }

    /// The key that an index should have for a row; nothing for a row that is left out.
    std::optional<std::string> expectedKey(const TableCheck& check, const RealIndex& index,
                                           const Record& record) {
        const IndexKey key = check.table.key(index, record);
        if (key.hasNull && index.isRequired() && check.entry.user) {
            fault(check.entry.name, "index \"" + index.name + "\": a row has no value for it");
        }
        return key.allNull && index.ignoresNulls() ? std::nullopt : std::optional(key.bytes);
    }

    void checkEntries(const TableCheck& check, const RealIndex& index, const TreeCheck& tree) {
        const std::string name = "index \"" + index.name + "\": ";
        std::map<RowId, std::string> keys;
        for (const auto& entry : tree.entries) {
            const RowId row = entryRow(entry);
            if (check.rows.count(row) == 0) {
                fault(check.entry.name, name + "it refers to " + rowName(row) + ", which does not exist");
            } else if (!keys.emplace(row, entryKey(entry)).second) {
                fault(check.entry.name, name + "it has " + rowName(row) + " twice");
            }
        }
        bool unkeyed = false;
        for (const auto& [id, record] : check.rows) {
            const auto entry = keys.find(id);
            try {
                const auto expected = expectedKey(check, index, record);
                if (expected.has_value() != (entry != keys.end())) {
                    fault(check.entry.name,
                          name + (expected ? "it lacks " : "it should not have ") + rowName(id));
                } else if (expected && entry->second != *expected) {
                    fault(check.entry.name,
                          name + "it has another key for " + rowName(id) + " than the row's values give");
                }
            } catch (const JetError& error) {
                if (error.fault() != Fault::NoSortKey) {
                    throw;
                }
                unkeyed = true;
                if (entry == keys.end() && !index.ignoresNulls()) {
                    fault(check.entry.name, name + "it lacks " + rowName(id));
                }
            }
        }
        result_.unkeyed += unkeyed ? 1 : 0;
        checkUnique(check, index, tree);
    }

    void checkUnique(const TableCheck& check, const RealIndex& index, const TreeCheck& tree) {
        for (std::size_t i = 1; index.isUnique() && i < tree.entries.size(); ++i) {
            if (entryKey(tree.entries[i - 1]) != entryKey(tree.entries[i])) {
                continue;
            }
            const auto row = check.rows.find(entryRow(tree.entries[i]));
            const bool hasNull =
                row != check.rows.end() &&
                std::any_of(index.columns.begin(), index.columns.end(), [&](const IndexColumn& part) {
                    return !row->second.fields()[check.table.definition().positionOf(part.number)];
                });
            if (!hasNull) {
                fault(check.entry.name,
                      "index \"" + index.name + "\": it has a value twice that must be unique");
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
