#include "jet/Schema.h"

#include "jet/Catalog.h"
#include <algorithm>

namespace drx9::jet {

namespace {

constexpr std::uint8_t kUserTable = 0x4E;
constexpr std::uint8_t kSystemTable = 0x53;
constexpr std::size_t kLongestName = 64; ///< characters
constexpr std::uint32_t kNoIndex = 0xFFFFFFFF;
constexpr std::uint8_t kNoCascade = 4;
constexpr std::size_t kJet3ColumnStyleAt = 7; ///< differs by the engine that made the table

void checkName(std::string_view name) {
    const auto text = toUtf16(name);
    const bool bad = std::any_of(text.begin(), text.end(), [](char16_t c) {
        return c < 0x20 || std::u16string_view(u".!`[]").find(c) != std::u16string_view::npos;
    });
    if (text.empty() || text.size() > kLongestName || text.front() == ' ' || bad) {
        rejected("\"" + std::string(name) + "\" cannot be a name");
    }
}

std::uint16_t lengthOf(const Layout& layout, const ColumnSpec& spec) {
    const std::size_t width = layout.generation == Generation::Jet4 ? 2 : 1;
    switch (spec.type) {
    case ColumnType::Boolean:
    case ColumnType::Byte:
        return 1;
    case ColumnType::Integer:
        return 2;
    case ColumnType::Long:
    case ColumnType::Single:
        return 4;
    case ColumnType::Currency:
    case ColumnType::Double:
    case ColumnType::Date:
        return 8;
    case ColumnType::Guid:
        return 16;
    case ColumnType::Memo:
    case ColumnType::Ole:
        return 0;
    case ColumnType::Text:
        if (spec.size == 0 || spec.size * width > layout.longestText) {
            rejected("the column \"" + spec.name + "\": a text has 1 to " +
                     std::to_string(layout.longestText / width) + " characters");
        }
        return static_cast<std::uint16_t>(spec.size * width);
    case ColumnType::Binary:
        if (spec.size == 0 || spec.size > layout.longestText) {
            rejected("the column \"" + spec.name + "\": a binary value has 1 to " +
                     std::to_string(layout.longestText) + " bytes");
        }
        return static_cast<std::uint16_t>(spec.size);
    default:
        rejected("the column \"" + spec.name + "\" is of a type that cannot be made");
    }
}

bool isVariable(ColumnType type) {
    return type == ColumnType::Text || type == ColumnType::Binary || type == ColumnType::Memo ||
           type == ColumnType::Ole;
}

/// The next column of a definition: number, slot or offset follow from those made before.
Column nextColumn(const PageStore& store, const Definition& definition, const ColumnSpec& spec,
                  std::size_t fixedArea) {
    checkName(spec.name);
    if (definition.nextColumn >= kMostColumns) {
        rejected("the table has had " + std::to_string(kMostColumns) + " columns; it takes no more");
    }
    if (definition.find(spec.name)) {
        rejected("there is a column \"" + spec.name + "\" already");
    }
    Column column;
    column.name = spec.name;
    column.storedName = store.text().encodeName(spec.name);
    column.type = spec.type;
    column.number = definition.nextColumn;
    column.slot = definition.variableColumns; // for a fixed column: the variable ones before it
    column.fixedOffset = static_cast<std::uint16_t>(fixedArea);
    column.length = lengthOf(store.layout(), spec);
    column.flags =
        static_cast<std::uint8_t>(columnFlag::kUpdatable | (isVariable(spec.type) ? 0 : columnFlag::kFixed) |
                                  (spec.autonumber ? columnFlag::kAutonumber : 0) | spec.extraFlags);
    column.compress = column.isText() && spec.compress && store.layout().extendedFlagsAt != 0;
    column.generalOrder = true;
    describeColumn(store.layout(), column);
    return column;
}

void appendColumn(const Layout& layout, Definition& definition, Column column) {
    ++definition.nextColumn;
    definition.variableColumns =
        static_cast<std::uint16_t>(definition.variableColumns + (column.isFixed() ? 0 : 1));
    definition.columns.push_back(std::move(column));
    encodeRow(layout, definition, Fields(definition.columns.size()),
              0); // throws when not even an empty row fits
}

void addLongValueMaps(PageStore& store, Definition& definition, PageNo& mapPage) {
    const Column& column = definition.columns.back();
    if (column.isLong()) {
        const RowId owned = newMapRecord(store, mapPage);
        definition.longValues.push_back({column.number, owned, newMapRecord(store, mapPage)});
    }
}

RealIndex newRealIndex(PageStore& store, const Definition& definition, const IndexSpec& spec, bool system,
                       PageNo& mapPage) {
    const Layout& layout = store.layout();
    RealIndex index;
    index.root = allocatePage(store);
    index.map = newMapRecord(store, mapPage);
    UsageMap(store, index.map).add(index.root);
    IndexTree(store, definition.page(), index.root, index.map).initRoot();
    const bool required = spec.required || (spec.primary && !system);
    index.flags = static_cast<std::uint8_t>((spec.unique || spec.primary ? indexFlag::kUnique : 0) |
                                            (spec.ignoreNulls ? indexFlag::kIgnoreNulls : 0) |
                                            (required ? indexFlag::kRequired : 0) | layout.indexFlagAlways);
    index.counters.assign(layout.countersSize, '\0');
    index.block.assign(layout.realIndexSize, '\0');
    Patch block{std::span(index.block)};
    block.bytes(0, layout.realIndexMark);
    for (std::size_t i = 0; i < kIndexColumns; ++i) {
        const std::size_t at = layout.indexColumnsAt + 3 * i;
        block.u16(at, 0xFFFF);
        if (i < spec.columns.size()) {
            block.u16(at, definition.columns[definition.position(spec.columns[i].first)].number);
            block.u8(at + 2, spec.columns[i].second ? 1 : 0);
        }
    }
    block.u32(layout.indexMapAt, pointerValue(index.map));
    block.u32(layout.indexRootAt, index.root);
    block.u8(layout.indexFlagsAt, index.flags);
    return index;
}

LogicalIndex newLogicalIndex(const PageStore& store, const IndexSpec& spec, std::uint32_t number) {
    const Layout& layout = store.layout();
    LogicalIndex index;
    index.name = spec.name;
    index.storedName = store.text().encodeName(spec.name);
    index.number = index.real = number;
    index.block.assign(layout.logicalIndexSize, '\0');
    Patch block{std::span(index.block)};
    block.bytes(0, layout.logicalIndexMark);
    block.u32(layout.numberAt, number);
    block.u32(layout.realNumberAt, number);
    block.u32(layout.otherIndexAt, kNoIndex);
    block.u8(layout.cascadeUpdateAt, kNoCascade);
    block.u8(layout.cascadeDeleteAt, kNoCascade);
    block.u8(layout.kindAt, spec.primary ? 1 : 0);
    return index;
}

void addIndexes(PageStore& store, Definition& definition, const TableSpec& spec, bool system,
                PageNo& mapPage) {
    for (const auto& index : spec.indexes) {
        checkName(index.name);
        if (index.columns.empty() || index.columns.size() > kIndexColumns ||
            definition.findIndex(index.name) != nullptr) {
            rejected("the index \"" + index.name + "\" cannot be made");
        }
        const auto number = static_cast<std::uint32_t>(definition.realIndexes.size());
        definition.realIndexes.push_back(newRealIndex(store, definition, index, system, mapPage));
        definition.logicalIndexes.push_back(newLogicalIndex(store, index, number));
    }
    std::sort(definition.logicalIndexes.begin(), definition.logicalIndexes.end(),
              [](const LogicalIndex& a, const LogicalIndex& b) { return nameLess(a.name, b.name); });
}

Definition emptyDefinition(const Layout& layout, PageNo page, bool system) {
    Definition definition;
    definition.pages = {page};
    definition.head.assign(layout.listsAt, '\0');
    Patch head{std::span(definition.head)};
    head.bytes(12, layout.definitionMark); // in Jet 3 the mark is empty
    if (layout.autonumberStepAt != 0) {
        head.u32(layout.autonumberStepAt, 1);
    }
    head.u8(layout.tableTypeAt, system ? kSystemTable : kUserTable);
    return definition;
}

void refuseRelated(const Definition& definition, const LogicalIndex& index) {
    for (const auto& other : definition.logicalIndexes) {
        if (other.real == index.real && other.relation != Relation::None) {
            rejected("the index \"" + index.name + "\" belongs to a relationship");
        }
    }
}

/// Takes a tree out of the definition and gives its pages back; its map record stays on its page as an empty
/// map.
void dropRealIndex(PageStore& store, Definition& definition, std::uint32_t number) {
    const auto at = definition.realIndexes.begin() + static_cast<std::ptrdiff_t>(number);
    IndexTree(store, definition.page(), at->root, at->map).freePages();
    definition.realIndexes.erase(at);
    for (auto& other : definition.logicalIndexes) {
        if (other.real > number) {
            --other.real;
            Patch{std::span(other.block)}.u32(store.layout().realNumberAt, other.real);
        }
    }
}

} // namespace

void writeNewDefinition(PageStore& store, PageNo page, const TableSpec& spec, bool system, PageNo& mapPage) {
    const Layout& layout = store.layout();
    Definition definition = emptyDefinition(layout, page, system);
    definition.ownedMap = newMapRecord(store, mapPage);
    definition.freeMap = newMapRecord(store, mapPage);
    Patch head{std::span(definition.head)};
    head.u32(layout.ownedMapAt, pointerValue(definition.ownedMap));
    head.u32(layout.freeMapAt, pointerValue(definition.freeMap));
    for (const auto& column : spec.columns) {
        appendColumn(layout, definition, nextColumn(store, definition, column, definition.fixedArea()));
        addLongValueMaps(store, definition, mapPage);
    }
    addIndexes(store, definition, spec, system, mapPage);
    if (system && layout.generation == Generation::Jet4) {
        // The engine lists the columns of its own tables by name.
        std::sort(definition.columns.begin(), definition.columns.end(),
                  [](const Column& a, const Column& b) { return nameLess(a.name, b.name); });
    }
    writeDefinition(store, definition);
}

PageNo createTable(PageStore& store, const TableSpec& spec, DateTime created) {
    checkName(spec.name);
    Catalog catalog(store);
    if (catalog.contains(spec.name)) {
        rejected("there is a table \"" + spec.name + "\" already");
    }
    if (spec.columns.empty()) {
        rejected("a table needs a column");
    }
    const PageNo page = allocatePage(store);
    PageNo mapPage = 0;
    writeNewDefinition(store, page, spec, false, mapPage);
    catalog.addTable(spec.name, page, created);
    return page;
}

void addColumn(PageStore& store, PageNo definitionPage, const ColumnSpec& spec) {
    const Layout& layout = store.layout();
    Table table(store, definitionPage);
    Definition definition = table.definition();
    Column column = nextColumn(store, definition, spec, table.fixedArea());
    // What differs by the file's maker or its language is taken from the table's other columns.
    const auto model = std::find_if(definition.columns.begin(), definition.columns.end(),
                                    [](const Column& each) { return each.type == ColumnType::Text; });
    Patch descriptor{std::span(column.descriptor)};
    if (model != definition.columns.end() && column.isText()) {
        const Bytes from(model->descriptor);
        descriptor.bytes(layout.languageAt, from.part(layout.languageAt, 4));
    }
    if (layout.generation == Generation::Jet3 && !definition.columns.empty()) {
        descriptor.u16(kJet3ColumnStyleAt,
                       Bytes(definition.columns.front().descriptor).u16(kJet3ColumnStyleAt));
    }
    appendColumn(layout, definition, std::move(column));
    PageNo mapPage = 0;
    addLongValueMaps(store, definition, mapPage);
    writeDefinition(store, definition);
}

void dropIndex(PageStore& store, PageNo definitionPage, std::string_view name) {
    Definition definition = readDefinition(store, definitionPage);
    const auto at = std::find_if(definition.logicalIndexes.begin(), definition.logicalIndexes.end(),
                                 [&](const LogicalIndex& index) { return sameName(index.name, name); });
    if (at == definition.logicalIndexes.end()) {
        rejected("there is no index \"" + std::string(name) + "\"");
    }
    refuseRelated(definition, *at);
    const std::uint32_t real = at->real;
    definition.logicalIndexes.erase(at);
    const bool shared = std::any_of(definition.logicalIndexes.begin(), definition.logicalIndexes.end(),
                                    [&](const LogicalIndex& index) { return index.real == real; });
    if (!shared) {
        dropRealIndex(store, definition, real);
    }
    writeDefinition(store, definition);
}

} // namespace drx9::jet
