#pragma once

#include "jet/IndexKey.h"
#include "jet/IndexTree.h"
#include "jet/Row.h"
#include "jet/RowSpace.h"
#include "jet/Value.h"

#include <string>
#include <utility>
#include <vector>

namespace drx9::jet {

/// A new value for the column at a position of Definition::columns.
using Assignment = std::pair<std::size_t, Value>;

/// One row as read: a copy of its fields, in which values are decoded on demand.
class Record {
public:
    Record(const PageStore& store, const Definition& definition, Fields fields)
        : store_(&store)
        , definition_(&definition)
        , fields_(std::move(fields)) {}

    [[nodiscard]] const Fields& fields() const { return fields_; }
    /// The value at a column position; Null for columns of types that are not known.
    [[nodiscard]] Value value(std::size_t position) const;
    /// The stored bytes, for memo and OLE the value itself.
    [[nodiscard]] std::optional<std::string> stored(std::size_t position) const;
    /// The same for many records: `budget` bounds the long values read in all, see readLongValue.
    [[nodiscard]] std::optional<std::string> stored(std::size_t position, std::size_t& budget) const;

private:
    const PageStore* store_;
    const Definition* definition_;
    Fields fields_;
};

/// The stored bytes at a column position straight from a row, for memo and OLE the value itself; a boolean is
/// one byte.
std::optional<std::string> storedIn(const PageStore& store, const Definition& definition,
                                    const RowReader& row, std::size_t position, std::size_t& budget);
/// The value at a column position straight from a row's bytes, for scans; `budget` as for readLongValue.
Value valueOf(const PageStore& store, const Definition& definition, const RowReader& row,
              std::size_t position, std::size_t& budget);

/// The rows of one table with their indexes. Changes are made inside a Change of the store and keep indexes,
/// maps and counts right; what cannot be done throws JetError(Rejected) or (NoSortKey), and the caller's
/// Change takes back what was begun. Holds the definition: drop the object when PageStore::version() has
/// moved.
class Table {
public:
    Table(PageStore& store, PageNo definitionPage);

    [[nodiscard]] const Definition& definition() const { return definition_; }
    [[nodiscard]] PageStore& store() const { return store_; }
    /// The count that the definition states.
    [[nodiscard]] std::uint32_t rowCount() const;

    /// All rows' home places in stored order.
    [[nodiscard]] std::vector<RowId> rows() const;
    /// All rows' home places in the order of an index.
    [[nodiscard]] std::vector<RowId> rowsBy(const LogicalIndex& index) const;
    /// Calls visitor(RowId, RowReader) for each row in stored order: the fast way through a table.
    template<class Visitor>
    void scan(const Visitor& visitor) const;

    /// True when a row is at this place.
    [[nodiscard]] bool contains(RowId id) const;
    [[nodiscard]] Record read(RowId id) const;

    RowId insert(const std::vector<Assignment>& values);
    void update(RowId id, const std::vector<Assignment>& values);
    void erase(RowId id);

    [[nodiscard]] IndexTree tree(const RealIndex& index) const {
        return {store_, definition_.page(), index.root, index.map};
    }
    [[nodiscard]] IndexKey key(const RealIndex& index, const Record& record) const;
    /// The same straight from the row; `budget` as for readLongValue.
    [[nodiscard]] IndexKey key(const RealIndex& index, const RowReader& row, std::size_t& budget) const;
    /// A row's bytes, to be taken apart; valid until something is stored.
    [[nodiscard]] RowReader reader(RowId id) const;
    /// Bytes of the fixed part that a new row must have: dropped columns leave holes that existing rows show.
    [[nodiscard]] std::size_t fixedArea() const;

private:
    /// An index entry to add or take out.
    struct KeyChange {
        const RealIndex* index;
        std::optional<std::string> key; ///< nothing when it is not known (only for removals)
        bool isNew = false;             ///< the index had no such key
    };

    [[nodiscard]] bool isOwnPage(const DataPage& page) const { return page.owner() == definition_.page(); }
    [[nodiscard]] RowId body(RowId id) const;
    void requireKnownColumns(const std::vector<Assignment>& values) const;
    void assign(Fields& fields, const std::vector<Assignment>& values, const Fields& old);
    void fillAutonumbers(Fields& fields);
    [[nodiscard]] std::vector<KeyChange> keysToAdd(const Record& record, const Record* old,
                                                   std::vector<KeyChange>& oldKeys) const;
    [[nodiscard]] std::vector<KeyChange> keysOf(const Record& record) const;
    [[nodiscard]] bool sameKeyColumns(const RealIndex& index, const Record& a, const Record& b) const;
    void checkRelations(const Record* old, const Record* changed) const;
    void addKeys(RowId id, const std::vector<KeyChange>& keys);
    void removeKeys(RowId id, const std::vector<KeyChange>& keys) const;
    [[nodiscard]] RowSpace space() const;
    void moveBody(RowId home, RowId old, const std::string& bytes);
    void patchHead(std::size_t at, std::uint32_t value);
    void countKey(const RealIndex& index);

    PageStore& store_;
    Definition definition_;
    mutable std::optional<std::size_t> fixedArea_;
};

template<class Visitor>
void Table::scan(const Visitor& visitor) const {
    for (const PageNo number : UsageMap(store_, definition_.ownedMap).pages()) {
        const DataPage page(store_, number);
        if (!isOwnPage(page)) {
            damaged("page " + std::to_string(number) + " belongs to another table");
        }
        for (std::size_t row = 0; row < std::min(page.slots().size(), kMostSlots); ++row) {
            const Slot& slot = page.slots()[row];
            const RowId id{number, static_cast<std::uint8_t>(row)};
            if (slot.kind == SlotKind::Row) {
                visitor(id, RowReader(store_.layout(), definition_, slot.bytes));
            } else if (slot.kind == SlotKind::Stub) {
                visitor(id, RowReader(store_.layout(), definition_, rowBytes(store_, body(id))));
            }
        }
    }
}

} // namespace drx9::jet
