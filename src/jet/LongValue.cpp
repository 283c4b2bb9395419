#include "jet/LongValue.h"

#include "jet/RowSpace.h"

#include <vector>

namespace drx9::jet {

namespace {

constexpr std::size_t kDescriptorSize = 12;
constexpr std::uint32_t kLengthMask = 0x3FFFFFFF;
constexpr std::uint32_t kInRow = 0x80000000;
constexpr std::uint32_t kOneRow = 0x40000000;
constexpr std::uint32_t kKindMask = 0xC0000000;
constexpr std::size_t kPointerSize = 4;
constexpr std::size_t kLongestInRow = 64;

std::size_t rowRoom(const Layout& layout) {
    return layout.pageSize - layout.slotsAt - 2;
}

/// The rows of a chained value in order.
std::vector<RowId> chainRows(const PageStore& store, RowId first) {
    std::vector<RowId> rows;
    for (RowId at = first; at.page != 0; at = readPointer(Bytes(rowBytes(store, at)), 0)) {
        rows.push_back(at);
        if (rows.size() * kPointerSize > store.size()) {
            damaged("a long value runs in a circle");
        }
    }
    return rows;
}

RowSpace spaceOf(PageStore& store, const LongValueMaps& maps) {
    return {store, maps.owned, maps.free, kOwnerOfLongValues};
}

std::string descriptor(std::size_t length, std::uint32_t kind, RowId place) {
    std::string bytes;
    append(bytes, 4, static_cast<std::uint32_t>(length) | kind);
    append(bytes, 4, pointerValue(place));
    append(bytes, 4, 0);
    return bytes;
}

std::string storeChain(const Layout& layout, RowSpace space, std::string_view value) {
    const std::size_t part = rowRoom(layout) - kPointerSize;
    RowId next;
    // From the end, so that each row knows the next one's place.
    for (std::size_t start = (value.size() - 1) / part * part;; start -= part) {
        std::string row;
        append(row, kPointerSize, pointerValue(next));
        next = space.add(row += value.substr(start, part), SlotKind::Row);
        if (start == 0) {
            return descriptor(value.size(), 0, next);
        }
    }
}

} // namespace

std::string readLongValue(const PageStore& store, std::string_view field, std::size_t& budget) {
    if (field.empty()) {
        return {};
    }
    const Bytes bytes(field);
    const std::uint32_t head = bytes.u32(0);
    const std::size_t length = head & kLengthMask;
    const std::uint32_t kind = head & kKindMask;
    if (kind == kInRow || length == 0) {
        return std::string(bytes.part(kDescriptorSize, length));
    }
    if (length > budget) {
        damaged("a long value is longer than the file");
    }
    budget -= length;
    const RowId first = readPointer(bytes, 4);
    if (kind == kOneRow) {
        return std::string(Bytes(rowBytes(store, first)).part(0, length));
    }
    std::string value;
    for (RowId at = first; at.page != 0 && value.size() < length;) {
        const Bytes row(rowBytes(store, at));
        const auto part = row.part(kPointerSize, row.size() - kPointerSize);
        if (part.empty()) {
            damaged("a long value has an empty link");
        }
        value += part;
        at = readPointer(row, 0);
    }
    if (value.size() < length) {
        damaged("a long value is cut short");
    }
    value.resize(length);
    return value;
}

std::string storeLongValue(PageStore& store, const LongValueMaps* maps, std::string_view value) {
    if (value.size() <= kLongestInRow) {
        return descriptor(value.size(), kInRow, {}) + std::string(value);
    }
    if (maps == nullptr) {
        damaged("a long-value column has no pages of its own");
    }
    if (value.size() > kLengthMask) {
        rejected("the value is too long");
    }
    RowSpace space = spaceOf(store, *maps);
    if (value.size() <= rowRoom(store.layout())) {
        return descriptor(value.size(), kOneRow, space.add(value, SlotKind::Row));
    }
    return storeChain(store.layout(), space, value);
}

void freeLongValue(PageStore& store, const LongValueMaps* maps, std::string_view field) {
    if (maps == nullptr || field.size() < kDescriptorSize) {
        return;
    }
    const Bytes bytes(field);
    const std::uint32_t kind = bytes.u32(0) & kKindMask;
    const RowId first = readPointer(bytes, 4);
    const auto rows = kind == kOneRow ? std::vector{first}
                      : kind == 0     ? chainRows(store, first)
                                      : std::vector<RowId>();
    RowSpace space = spaceOf(store, *maps);
    for (const RowId id : rows) {
        if (space.owns(id.page)) {
            space.drop(id);
        }
    }
}

} // namespace drx9::jet
