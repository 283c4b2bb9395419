#include "jet/Definition.h"

#include "jet/UsageMap.h"

#include <algorithm>

namespace drx9::jet {

namespace {

constexpr std::uint8_t kUserTable = 0x4E;
constexpr std::uint16_t kGeneralLanguage = 0x0409;
constexpr std::uint16_t kListEnd = 0xFFFF;
constexpr std::uint16_t kNoColumn = 0xFFFF;
constexpr std::uint8_t kPrimaryKind = 1;
constexpr std::size_t kLongValueEntry = 10;
constexpr std::size_t kLongestChain = 64; ///< pages; 255 columns with the longest names take 24

/// Reads one list entry after the other from the joined text.
class Cursor {
public:
    Cursor(std::string_view text, std::size_t at)
        : text_(text)
        , at_(at) {}
    std::string take(std::size_t length) {
        const auto bytes = text_.part(at_, length);
        at_ += length;
        return std::string(bytes);
    }
    std::uint32_t number(std::size_t width) {
        const auto value = text_.number(at_, width);
        at_ += width;
        return value;
    }
    [[nodiscard]] std::size_t at() const { return at_; }

private:
    Bytes text_;
    std::size_t at_;
};

std::string joinPages(const PageStore& store, PageNo page, std::vector<PageNo>& pages) {
    std::string text;
    for (PageNo next = page; next != 0;) {
        // The bound also ends a chain that runs in a circle.
        if (pages.size() >= kLongestChain) {
            damaged("a table definition has no end");
        }
        const Bytes bytes = store.page(next, PageType::Definition);
        text += pages.empty() ? bytes.all() : bytes.all().substr(kContinuationAt);
        pages.push_back(next);
        next = bytes.u32(kNextPageAt);
    }
    return text;
}

Column readColumn(const Layout& layout, std::string descriptor) {
    const Bytes bytes(descriptor);
    Column column;
    column.type = static_cast<ColumnType>(bytes.u8(0));
    column.number = bytes.u16(layout.columnNumberAt);
    column.slot = bytes.u16(layout.slotAt);
    column.flags = bytes.u8(layout.flagsAt);
    column.fixedOffset = bytes.u16(layout.fixedOffsetAt);
    column.length = bytes.u16(layout.lengthAt);
    column.compress = layout.extendedFlagsAt != 0 && (bytes.u8(layout.extendedFlagsAt) & 1) != 0;
    column.precision = bytes.u8(layout.precisionAt);
    column.scale = bytes.u8(layout.precisionAt + 1);
    const bool plainSort = layout.sortIdAt == 0 || bytes.u16(layout.sortIdAt) == 0;
    const bool plainPage = layout.codePageAt == 0 || bytes.u16(layout.codePageAt) == 1252;
    column.generalOrder = bytes.u16(layout.languageAt) == kGeneralLanguage && plainSort && plainPage;
    column.descriptor = std::move(descriptor);
    return column;
}

RealIndex readRealIndex(const Layout& layout, std::string block) {
    const Bytes bytes(block);
    RealIndex index;
    for (std::size_t i = 0; i < kIndexColumns; ++i) {
        const std::size_t at = layout.indexColumnsAt + 3 * i;
        if (const auto number = bytes.u16(at); number != kNoColumn) {
            index.columns.push_back({number, (bytes.u8(at + 2) & 1) != 0});
        }
    }
    index.map = readPointer(bytes, layout.indexMapAt);
    index.root = bytes.u32(layout.indexRootAt);
    index.flags = bytes.u8(layout.indexFlagsAt);
    index.block = std::move(block);
    return index;
}

LogicalIndex readLogicalIndex(const Layout& layout, std::string block) {
    const Bytes bytes(block);
    LogicalIndex index;
    index.number = bytes.u32(layout.numberAt);
    index.real = bytes.u32(layout.realNumberAt);
    index.relation = static_cast<Relation>(bytes.u8(layout.relationAt));
    index.otherIndex = bytes.u32(layout.otherIndexAt);
    index.otherTable = bytes.u32(layout.otherTableAt);
    index.primary = bytes.u8(layout.kindAt) == kPrimaryKind;
    index.block = std::move(block);
    return index;
}

void readColumns(const PageStore& store, Cursor& lists, std::size_t count, Definition& definition) {
    const Layout& layout = store.layout();
    for (std::size_t i = 0; i < count; ++i) {
        definition.columns.push_back(readColumn(layout, lists.take(layout.columnSize)));
    }
    std::vector<bool> seen(kMostColumns + 1);
    for (auto& column : definition.columns) {
        column.storedName = lists.take(lists.number(layout.nameLengthWidth));
        column.name = store.text().decodeName(column.storedName);
        if (column.number >= kMostColumns || seen[column.number]) {
            damaged("two columns of a table have one number");
        }
        seen[column.number] = true;
    }
}

void readIndexes(const PageStore& store, Cursor& lists, std::size_t logicalCount, Definition& definition) {
    const Layout& layout = store.layout();
    for (auto& index : definition.realIndexes) {
        auto counters = std::move(index.counters);
        index = readRealIndex(layout, lists.take(layout.realIndexSize));
        index.counters = std::move(counters);
    }
    for (std::size_t i = 0; i < logicalCount; ++i) {
        definition.logicalIndexes.push_back(readLogicalIndex(layout, lists.take(layout.logicalIndexSize)));
    }
    for (auto& index : definition.logicalIndexes) {
        index.storedName = lists.take(lists.number(layout.nameLengthWidth));
        index.name = store.text().decodeName(index.storedName);
        if (index.real >= definition.realIndexes.size()) {
            damaged("the index \"" + index.name + "\" has no tree");
        }
        auto& real = definition.realIndexes[index.real];
        real.primary = real.primary || index.primary;
        if (real.name.empty()) {
            real.name = index.name;
        }
    }
}

void readLongValueList(Cursor& lists, Definition& definition) {
    for (auto number = lists.number(2); number != kListEnd; number = lists.number(2)) {
        const std::string entry = lists.take(kLongValueEntry - 2);
        definition.longValues.push_back(
            {static_cast<std::uint16_t>(number), readPointer(Bytes(entry), 0), readPointer(Bytes(entry), 4)});
    }
}

std::string joinLists(const Layout& layout, const Definition& definition) {
    std::string text = definition.head;
    for (const auto& index : definition.realIndexes) {
        text += index.counters;
    }
    for (const auto& column : definition.columns) {
        text += column.descriptor;
    }
    const auto addName = [&](const std::string& name) {
        append(text, layout.nameLengthWidth, name.size());
        text += name;
    };
    for (const auto& column : definition.columns) {
        addName(column.storedName);
    }
    for (const auto& index : definition.realIndexes) {
        text += index.block;
    }
    for (const auto& index : definition.logicalIndexes) {
        text += index.block;
    }
    for (const auto& index : definition.logicalIndexes) {
        addName(index.storedName);
    }
    for (const auto& maps : definition.longValues) {
        append(text, 2, maps.column);
        append(text, 4, pointerValue(maps.owned));
        append(text, 4, pointerValue(maps.free));
    }
    append(text, 2, kListEnd);
    return text;
}

/// Sets the counts of the head from the lists.
void updateHead(const Layout& layout, Definition& definition) {
    Patch head{std::span(definition.head)};
    head.u16(layout.nextColumnAt, definition.nextColumn);
    head.u16(layout.variableColumnsAt, definition.variableColumns);
    head.u16(layout.columnsAt, static_cast<std::uint32_t>(definition.columns.size()));
    head.u32(layout.logicalIndexesAt, static_cast<std::uint32_t>(definition.logicalIndexes.size()));
    head.u32(layout.realIndexesAt, static_cast<std::uint32_t>(definition.realIndexes.size()));
}

} // namespace

bool Column::isKnown() const {
    const auto code = static_cast<unsigned>(type);
    return (code >= 1 && code <= 12) || (code >= 15 && code <= 17);
}

std::optional<std::size_t> Definition::find(std::string_view name) const {
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (sameName(columns[i].name, name)) {
            return i;
        }
    }
    return std::nullopt;
}

std::size_t Definition::position(std::string_view name) const {
    const auto at = find(name);
    if (!at) {
        rejected("there is no column \"" + std::string(name) + "\"");
    }
    return *at;
}

std::size_t Definition::positionOf(std::uint16_t number) const {
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (columns[i].number == number) {
            return i;
        }
    }
    damaged("an index uses a column that does not exist");
}

const LogicalIndex* Definition::findIndex(std::string_view name) const {
    const auto at = std::find_if(logicalIndexes.begin(), logicalIndexes.end(),
                                 [&](const LogicalIndex& index) { return sameName(index.name, name); });
    return at == logicalIndexes.end() ? nullptr : &*at;
}

const LongValueMaps* Definition::longValueMaps(std::uint16_t number) const {
    const auto at = std::find_if(longValues.begin(), longValues.end(),
                                 [&](const LongValueMaps& maps) { return maps.column == number; });
    return at == longValues.end() ? nullptr : &*at;
}

std::size_t Definition::rowColumns() const {
    std::size_t count = 0;
    for (const auto& column : columns) {
        count = std::max<std::size_t>(count, column.number + 1u);
    }
    return count;
}

std::size_t Definition::fixedArea() const {
    std::size_t end = 0;
    for (const auto& column : columns) {
        if (column.isFixed() && !column.isBoolean()) {
            end = std::max<std::size_t>(end, column.fixedOffset + std::size_t{column.length});
        }
    }
    return end;
}

Definition readDefinition(const PageStore& store, PageNo page) {
    const Layout& layout = store.layout();
    Definition definition;
    std::string text = joinPages(store, page, definition.pages);
    const std::size_t length = Bytes(text).u32(kDefinitionLengthAt);
    if (length > text.size()) {
        damaged("a table definition is cut short");
    }
    text.resize(length);
    const Bytes head(text);
    definition.head = head.part(0, layout.listsAt);
    definition.userTable = head.u8(layout.tableTypeAt) == kUserTable;
    definition.nextColumn = head.u16(layout.nextColumnAt);
    definition.variableColumns = head.u16(layout.variableColumnsAt);
    definition.ownedMap = readPointer(head, layout.ownedMapAt);
    definition.freeMap = readPointer(head, layout.freeMapAt);
    const std::size_t columns = head.u16(layout.columnsAt);
    const std::size_t logical = head.u32(layout.logicalIndexesAt);
    const std::size_t real = head.u32(layout.realIndexesAt);
    if (columns > kMostColumns || logical > kMostIndexes || real > kMostIndexes ||
        definition.variableColumns > kMostColumns || definition.nextColumn > kMostColumns + 1) {
        damaged("a table definition has too many columns or indexes");
    }
    Cursor lists(text, layout.listsAt);
    definition.realIndexes.resize(real);
    for (auto& index : definition.realIndexes) {
        index.counters = lists.take(layout.countersSize);
    }
    readColumns(store, lists, columns, definition);
    readIndexes(store, lists, logical, definition);
    readLongValueList(lists, definition);
    return definition;
}

void writeDefinition(PageStore& store, Definition& definition) {
    const Layout& layout = store.layout();
    updateHead(layout, definition);
    std::string text = joinLists(layout, definition);
    Patch{std::span(text)}.u32(kDefinitionLengthAt, static_cast<std::uint32_t>(text.size()));
    const std::size_t later = layout.pageSize - kContinuationAt;
    const std::size_t whole = text.size() + layout.definitionReserve;
    const std::size_t needed =
        whole <= layout.pageSize ? 1 : 1 + (whole - layout.pageSize + later - 1) / later;
    while (definition.pages.size() < needed) {
        definition.pages.push_back(allocatePage(store));
    }
    for (; definition.pages.size() > needed; definition.pages.pop_back()) {
        freePage(store, definition.pages.back());
    }
    std::size_t at = 0;
    for (std::size_t i = 0; i < needed; ++i) {
        const std::size_t start = i == 0 ? 0 : kContinuationAt;
        const std::size_t room = layout.pageSize - start;
        const std::size_t part = std::min(room, text.size() - std::min(at, text.size()));
        const std::size_t used = part + layout.definitionReserve;
        Patch page = store.edit(definition.pages[i]);
        page.bytes(start, std::string_view(text).substr(std::min(at, text.size()), part));
        page.u16(0, 0x0102);
        page.u16(2, layout.generation == Generation::Jet3
                        ? 0x4356
                        : static_cast<std::uint32_t>(room > used ? room - used : 0));
        page.u32(kNextPageAt, i + 1 < needed ? definition.pages[i + 1] : 0);
        at += part;
    }
    store.invalidate();
}

void describeColumn(const Layout& layout, Column& column) {
    column.descriptor.assign(layout.columnSize, '\0');
    Patch bytes{std::span(column.descriptor)};
    bytes.u8(0, static_cast<std::uint8_t>(column.type));
    bytes.bytes(1, layout.columnMark);
    bytes.u16(layout.columnNumberAt, column.number);
    bytes.u16(layout.slotAt, column.slot);
    bytes.u16(layout.numberAgainAt, (column.flags & columnFlag::kSystem) != 0 ? 0 : column.number);
    bytes.u16(layout.languageAt, kGeneralLanguage);
    if (layout.codePageAt != 0) {
        bytes.u16(layout.codePageAt, 1252);
    }
    bytes.u8(layout.flagsAt, column.flags);
    if (layout.extendedFlagsAt != 0 && column.compress) {
        bytes.u8(layout.extendedFlagsAt, 1);
    }
    bytes.u16(layout.fixedOffsetAt, column.isFixed() ? column.fixedOffset : 0);
    bytes.u16(layout.lengthAt, column.length);
}

} // namespace drx9::jet
