#include "jet/Relations.h"

#include <algorithm>

namespace drx9::jet {

namespace {

/// Whether the other end of a relationship has an entry for the record's values.
bool otherTableHas(const Table& table, const LogicalIndex& index, const Record& record, bool& comparable) {
    const Definition& own = table.definition();
    const RealIndex& ownReal = own.realIndexes[index.real];
    const Table other(table.store(), index.otherTable);
    const auto& otherLogical = other.definition().logicalIndexes;
    const auto end = std::find_if(otherLogical.begin(), otherLogical.end(),
                                  [&](const LogicalIndex& each) { return each.number == index.otherIndex; });
    if (end == otherLogical.end()) {
        damaged("the index \"" + index.name + "\" is related to an index that does not exist");
    }
    const RealIndex& otherReal = other.definition().realIndexes[end->real];
    if (otherReal.columns.size() != ownReal.columns.size()) {
        damaged("the index \"" + index.name + "\" is related to one of other columns");
    }
    // The values of this row, coded as the other index codes them.
    IndexKey key;
    for (std::size_t i = 0; i < otherReal.columns.size(); ++i) {
        const auto value = record.stored(own.positionOf(ownReal.columns[i].number));
        const auto& column =
            other.definition().columns[other.definition().positionOf(otherReal.columns[i].number)];
        addKeyColumn(key, table.store().text(), column, otherReal.columns[i].ascending, value);
    }
    comparable = !key.hasNull;
    return other.tree(otherReal).containsKey(key.bytes);
}

} // namespace

void requireReferenced(const Table& table, const LogicalIndex& index, const Record& record) {
    bool comparable = true;
    if (!otherTableHas(table, index, record, comparable) && comparable) {
        rejected("a relationship forbids it: the related table has no row with this value (index \"" +
                 index.name + "\")");
    }
}

void requireUnreferenced(const Table& table, const LogicalIndex& index, const Record& record) {
    const RealIndex& real = table.definition().realIndexes[index.real];
    if (table.tree(real).containsKey(table.key(real, record).bytes)) {
        return; // only its spelling has changed
    }
    bool comparable = true;
    if (otherTableHas(table, index, record, comparable) && comparable) {
        rejected("a relationship forbids it: rows of the related table refer to this one (index \"" +
                 index.name + "\")");
    }
}

} // namespace drx9::jet
