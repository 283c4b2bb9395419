#include "jet/Table.h"

#include "jet/LongValue.h"
#include "jet/Relations.h"

#include <algorithm>

namespace drx9::jet {

namespace {

constexpr std::size_t kMostHops = 8;       ///< from a stub to its row; whole files have one
constexpr std::size_t kDistinctKeysAt = 4; ///< in an index's counters
constexpr std::size_t kStubSize = 4;

std::string stubFor(RowId body) {
    std::string bytes;
    append(bytes, kStubSize, pointerValue(body));
    return bytes;
}

} // namespace

Value Record::value(std::size_t position) const {
    const Column& column = definition_->columns[position];
    const auto bytes = stored(position);
    return bytes ? decodeValue(store_->text(), column, *bytes) : Value(Null{});
}

std::optional<std::string> Record::stored(std::size_t position) const {
    std::size_t budget = store_->size();
    return stored(position, budget);
}

std::optional<std::string> Record::stored(std::size_t position, std::size_t& budget) const {
    const auto& field = fields_[position];
    if (field && definition_->columns[position].isLong()) {
        return readLongValue(*store_, *field, budget);
    }
    return field;
}

std::optional<std::string> storedIn(const PageStore& store, const Definition& definition,
                                    const RowReader& row, std::size_t position, std::size_t& budget) {
    const Column& column = definition.columns[position];
    if (column.isBoolean()) {
        return std::string(1, row.bit(column) ? '\1' : '\0');
    }
    const auto field = row.field(column);
    if (!field) {
        return std::nullopt;
    }
    return column.isLong() ? readLongValue(store, *field, budget) : std::string(*field);
}

Value valueOf(const PageStore& store, const Definition& definition, const RowReader& row,
              std::size_t position, std::size_t& budget) {
    const Column& column = definition.columns[position];
    if (column.isBoolean()) {
        return row.bit(column);
    }
    const auto field = row.field(column);
    if (!field) {
        return Null{};
    }
    return column.isLong() ? decodeValue(store.text(), column, readLongValue(store, *field, budget))
                           : decodeValue(store.text(), column, *field);
}

Table::Table(PageStore& store, PageNo definitionPage)
    : store_(store)
    , definition_(readDefinition(store, definitionPage)) {}

std::uint32_t Table::rowCount() const {
    return store_.page(definition_.page()).u32(store_.layout().rowCountAt);
}

std::vector<RowId> Table::rows() const {
    std::vector<RowId> rows;
    scan([&](RowId id, const RowReader&) { rows.push_back(id); });
    return rows;
}

std::vector<RowId> Table::rowsBy(const LogicalIndex& index) const {
    return tree(definition_.realIndexes[index.real]).rows();
}

/// Where the row's bytes are: the place itself, or what its stub leads to.
RowId Table::body(RowId id) const {
    RowId at = id;
    for (std::size_t hop = 0; hop < kMostHops; ++hop) {
        const Slot slot = slotAt(store_, at);
        const SlotKind expected = hop == 0 ? SlotKind::Row : SlotKind::Body;
        if (store_.page(at.page).u32(kOwnerAt) != definition_.page()) {
            damaged("a row lies in another table");
        }
        if (slot.kind == expected) {
            return at;
        }
        if (slot.kind != SlotKind::Stub) {
            break;
        }
        at = readPointer(Bytes(slot.bytes), 0);
    }
    damaged("it refers to a row that does not exist");
}

bool Table::contains(RowId id) const {
    if (id.page == 0 || id.page >= store_.pageCount() ||
        store_.page(id.page).u8(0) != static_cast<std::uint8_t>(PageType::Data)) {
        return false;
    }
    const DataPage page(store_, id.page);
    return isOwnPage(page) && id.row < page.slots().size() &&
           (page.slot(id.row).kind == SlotKind::Row || page.slot(id.row).kind == SlotKind::Stub);
}

RowReader Table::reader(RowId id) const {
    return {store_.layout(), definition_, rowBytes(store_, body(id))};
}

Record Table::read(RowId id) const {
    return {store_, definition_, reader(id).fields()};
}

std::size_t Table::fixedArea() const {
    if (!fixedArea_) {
        std::size_t area = definition_.fixedArea();
        if (definition_.nextColumn > definition_.columns.size()) { // columns were dropped
            scan([&](RowId, const RowReader& row) { area = std::max(area, row.fixedArea()); });
        }
        fixedArea_ = area;
    }
    return *fixedArea_;
}

IndexKey Table::key(const RealIndex& index, const Record& record) const {
    return rowKey(store_.text(), definition_, index,
                  [&](std::size_t position) { return record.stored(position); });
}

IndexKey Table::key(const RealIndex& index, const RowReader& row, std::size_t& budget) const {
    return rowKey(store_.text(), definition_, index,
                  [&](std::size_t position) { return storedIn(store_, definition_, row, position, budget); });
}

void Table::requireKnownColumns(const std::vector<Assignment>& values) const {
    for (const auto& [position, value] : values) {
        if (!definition_.columns[position].isKnown()) {
            rejected("the column \"" + definition_.columns[position].name +
                     "\" is of a type that cannot be written");
        }
    }
}

/// Puts new values into the fields; long values go to their pages, and those they replace are given back.
void Table::assign(Fields& fields, const std::vector<Assignment>& values, const Fields& old) {
    for (const auto& [position, value] : values) {
        const Column& column = definition_.columns[position];
        auto& field = fields[position];
        const auto* maps = definition_.longValueMaps(column.number);
        if (column.isLong() && position < old.size() && old[position] && field == old[position]) {
            freeLongValue(store_, maps, *old[position]);
        }
        if (isNull(value)) {
            field = column.isBoolean() ? std::optional<std::string>(std::string(1, '\0')) : std::nullopt;
            continue;
        }
        const std::string bytes = encodeValue(store_.text(), column, value);
        field = column.isLong() ? storeLongValue(store_, maps, bytes) : bytes;
    }
}

void Table::fillAutonumbers(Fields& fields) {
    const Layout& layout = store_.layout();
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const Column& column = definition_.columns[i];
        if (!column.isAutonumber() || column.type != ColumnType::Long) {
            continue;
        }
        const Bytes head = store_.page(definition_.page());
        const std::uint32_t last = head.u32(layout.autonumberAt);
        if (!fields[i]) {
            const std::uint32_t step = layout.autonumberStepAt == 0 ? 1 : head.u32(layout.autonumberStepAt);
            fields[i].emplace();
            append(*fields[i], 4, last + step);
        }
        const std::uint32_t given = Bytes(*fields[i]).u32(0);
        if (static_cast<std::int32_t>(given) > static_cast<std::int32_t>(last)) {
            patchHead(layout.autonumberAt, given);
        }
    }
}

RowId Table::insert(const std::vector<Assignment>& values) {
    requireKnownColumns(values);
    Fields fields(definition_.columns.size());
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (definition_.columns[i].isBoolean()) {
            fields[i].emplace(1, '\0'); // never null: what is not said is false, for the index too
        }
    }
    assign(fields, values, {});
    fillAutonumbers(fields);
    const std::string bytes = encodeRow(store_.layout(), definition_, fields, fixedArea());
    const Record record(store_, definition_, std::move(fields));
    std::vector<KeyChange> none;
    const auto keys = keysToAdd(record, nullptr, none);
    const RowId id = space().add(bytes, SlotKind::Row);
    addKeys(id, keys);
    checkRelations(nullptr, &record);
    patchHead(store_.layout().rowCountAt, rowCount() + 1);
    return id;
}

void Table::update(RowId id, const std::vector<Assignment>& values) {
    requireKnownColumns(values);
    const RowId at = body(id);
    const RowReader row = reader(id);
    const Record old(store_, definition_, row.fields());
    const std::size_t oldFixedArea = row.fixedArea();
    const std::size_t oldSize = rowBytes(store_, at).size();
    // Keys of the old row are taken first: its long values may be given back below.
    std::vector<KeyChange> oldKeys = keysOf(old);
    Fields fields = old.fields();
    assign(fields, values, old.fields());
    const std::string bytes = encodeRow(store_.layout(), definition_, fields, oldFixedArea);
    const Record changed(store_, definition_, std::move(fields));
    const auto keys = keysToAdd(changed, &old, oldKeys);
    if (!setRow(store_, at, bytes, at == id ? SlotKind::Row : SlotKind::Body)) {
        moveBody(id, at, bytes);
    } else if (bytes.size() < oldSize) {
        space().noteRoom(at.page);
    }
    removeKeys(id, oldKeys);
    addKeys(id, keys);
    checkRelations(&old, &changed);
}

void Table::erase(RowId id) {
    const Record old = read(id);
    removeKeys(id, keysOf(old));
    checkRelations(&old, nullptr);
    for (std::size_t i = 0; i < old.fields().size(); ++i) {
        if (definition_.columns[i].isLong() && old.fields()[i]) {
            freeLongValue(store_, definition_.longValueMaps(definition_.columns[i].number), *old.fields()[i]);
        }
    }
    if (const RowId at = body(id); at != id) {
        space().drop(at);
    }
    space().drop(id);
    patchHead(store_.layout().rowCountAt, rowCount() - std::min(rowCount(), 1u));
}

/// The entries that a new or changed row needs, all checked: known weights, required values, uniqueness. What
/// an index holds already, and keeps, is taken out of `oldKeys`.
std::vector<Table::KeyChange> Table::keysToAdd(const Record& record, const Record* old,
                                               std::vector<KeyChange>& oldKeys) const {
    std::vector<KeyChange> keys;
    keys.reserve(definition_.realIndexes.size());
    for (const auto& index : definition_.realIndexes) {
        const auto isThis = [&](const KeyChange& change) { return change.index == &index; };
        if (old != nullptr && sameKeyColumns(index, *old, record)) {
            std::erase_if(oldKeys, isThis);
            continue;
        }
        const IndexKey rowsKey = key(index, record);
        if (rowsKey.hasNull && index.isRequired()) {
            rejected("the index \"" + index.name + "\" does not take an empty value");
        }
        if (rowsKey.allNull && index.ignoresNulls()) {
            continue;
        }
        const auto held = std::find_if(oldKeys.begin(), oldKeys.end(), isThis);
        if (held != oldKeys.end() && held->key == rowsKey.bytes) {
            oldKeys.erase(held); // another spelling of the same key
            continue;
        }
        const bool isNew = !tree(index).containsKey(rowsKey.bytes);
        if (index.isUnique() && !rowsKey.hasNull && !isNew) {
            rejected("the index \"" + index.name + "\" has this value already, and takes it only once");
        }
        keys.push_back({&index, rowsKey.bytes, isNew});
    }
    return keys;
}

/// The entries that a row has.
std::vector<Table::KeyChange> Table::keysOf(const Record& record) const {
    std::vector<KeyChange> keys;
    for (const auto& index : definition_.realIndexes) {
        const bool allNull =
            std::all_of(index.columns.begin(), index.columns.end(), [&](const IndexColumn& part) {
                return !record.fields()[definition_.positionOf(part.number)];
            });
        if (allNull && index.ignoresNulls()) {
            continue;
        }
        try {
            keys.push_back({&index, key(index, record).bytes, false});
        } catch (const JetError& error) {
            if (error.fault() != Fault::NoSortKey) {
                throw;
            }
            keys.push_back({&index, std::nullopt, false}); // found by its row pointer
        }
    }
    return keys;
}

bool Table::sameKeyColumns(const RealIndex& index, const Record& a, const Record& b) const {
    return std::all_of(index.columns.begin(), index.columns.end(), [&](const IndexColumn& part) {
        const std::size_t position = definition_.positionOf(part.number);
        return a.fields()[position] == b.fields()[position];
    });
}

/// Asked when the indexes have changed already, so that a row may refer to itself.
void Table::checkRelations(const Record* old, const Record* changed) const {
    for (const auto& index : definition_.logicalIndexes) {
        if (index.relation == Relation::None) {
            continue;
        }
        const RealIndex& real = definition_.realIndexes[index.real];
        if (old != nullptr && changed != nullptr && sameKeyColumns(real, *old, *changed)) {
            continue;
        }
        if (index.relation == Relation::Refers && changed != nullptr) {
            requireReferenced(*this, index, *changed);
        }
        if (index.relation == Relation::Referenced && old != nullptr) {
            requireUnreferenced(*this, index, *old);
        }
    }
}

void Table::addKeys(RowId id, const std::vector<KeyChange>& keys) {
    for (const auto& change : keys) {
        if (change.isNew) {
            countKey(*change.index);
        }
        tree(*change.index).insert(indexEntry(*change.key, id));
    }
}

void Table::removeKeys(RowId id, const std::vector<KeyChange>& keys) const {
    for (const auto& change : keys) {
        tree(*change.index).erase(id, change.key);
    }
}

/// Counts a key that its index did not have yet.
void Table::countKey(const RealIndex& index) {
    const Layout& layout = store_.layout();
    const auto at = layout.listsAt +
                    static_cast<std::size_t>(&index - definition_.realIndexes.data()) * layout.countersSize +
                    kDistinctKeysAt;
    patchHead(at, store_.page(definition_.page()).u32(at) + 1);
}

void Table::patchHead(std::size_t at, std::uint32_t value) {
    store_.edit(definition_.page()).u32(at, value);
    if (at + 4 <= definition_.head.size()) {
        Patch{std::span(definition_.head)}.u32(at, value);
    } else {
        auto& counters =
            definition_.realIndexes[(at - store_.layout().listsAt) / store_.layout().countersSize].counters;
        Patch{std::span(counters)}.u32(kDistinctKeysAt, value);
    }
}

RowSpace Table::space() const {
    return {store_, definition_.ownedMap, definition_.freeMap, definition_.page()};
}

/// Gives a row that outgrew its page a new body elsewhere. Its home slot stays the row's name: it becomes, or
/// stays, the stub, so the indexes do not notice.
void Table::moveBody(RowId home, RowId old, const std::string& bytes) {
    if (old != home) {
        space().drop(old);
    }
    const RowId body = space().add(bytes, SlotKind::Body);
    if (!setRow(store_, home, stubFor(body), SlotKind::Stub)) {
        rejected("the row's page has no room left to move it");
    }
}

} // namespace drx9::jet
