#include "jet/DataPage.h"

namespace drx9::jet {

namespace {

constexpr std::size_t kStubFlag = 0x4000;
constexpr std::size_t kBodyFlag = 0x8000;

SlotKind kindOf(std::size_t entry) {
    const bool stub = (entry & kStubFlag) != 0;
    const bool body = (entry & kBodyFlag) != 0;
    return stub && body ? SlotKind::Deleted : stub ? SlotKind::Stub : body ? SlotKind::Body : SlotKind::Row;
}

std::size_t flagsOf(SlotKind kind) {
    switch (kind) {
    case SlotKind::Row:
        return 0;
    case SlotKind::Stub:
        return kStubFlag;
    case SlotKind::Body:
        return kBodyFlag;
    case SlotKind::Deleted:
        break;
    }
    return kStubFlag | kBodyFlag;
}

struct NewSlot {
    SlotKind kind;
    std::string bytes;
};

/// Lays all rows of a page out again, from its end downward.
void layOut(PageStore& store, PageNo number, const std::vector<NewSlot>& slots) {
    const Layout& layout = store.layout();
    Patch page = store.edit(number);
    std::size_t end = layout.pageSize;
    for (std::size_t row = 0; row < slots.size(); ++row) {
        end -= slots[row].bytes.size();
        page.bytes(end, slots[row].bytes);
        page.u16(layout.slotsAt + 2 * row, static_cast<std::uint32_t>(end | flagsOf(slots[row].kind)));
    }
    const std::size_t listEnd = layout.slotsAt + 2 * slots.size();
    page.u16(layout.slotCountAt, static_cast<std::uint32_t>(slots.size()));
    page.u16(kFreeBytesAt, static_cast<std::uint32_t>(end - listEnd));
}

} // namespace

DataPage::DataPage(const PageStore& store, PageNo number)
    : page_(store.page(number, PageType::Data)) {
    const Layout& layout = store.layout();
    const std::size_t count = page_.u16(layout.slotCountAt);
    const std::size_t listEnd = layout.slotsAt + 2 * count;
    std::size_t end = layout.pageSize;
    slots_.reserve(std::min(count, layout.pageSize / 2));
    for (std::size_t row = 0; row < count; ++row) {
        const std::size_t entry = page_.u16(layout.slotsAt + 2 * row);
        const std::size_t start = entry & kSlotOffsetMask;
        if (start < listEnd || start > end) {
            damaged("the rows of page " + std::to_string(number) + " overlap");
        }
        slots_.push_back({kindOf(entry), page_.part(start, end - start)});
        end = start;
    }
    if (end < listEnd) {
        damaged("the row list of page " + std::to_string(number) + " is longer than the page");
    }
    free_ = end - listEnd;
}

const Slot& DataPage::slot(std::size_t row) const {
    if (row >= slots_.size()) {
        damaged("it refers to a row that does not exist");
    }
    return slots_[row];
}

bool DataPage::allDeleted() const {
    for (const auto& slot : slots_) {
        if (slot.kind != SlotKind::Deleted) {
            return false;
        }
    }
    return true;
}

void initDataPage(PageStore& store, PageNo number, std::uint32_t owner) {
    const Layout& layout = store.layout();
    Patch page = store.edit(number);
    page.fill(0, layout.pageSize, '\0');
    page.u16(0, 0x0101);
    page.u16(kFreeBytesAt, static_cast<std::uint32_t>(layout.pageSize - layout.slotsAt));
    page.u32(kOwnerAt, owner);
}

PageRoom roomOn(const PageStore& store, PageNo number) {
    const Layout& layout = store.layout();
    const Bytes page = store.page(number, PageType::Data);
    PageRoom room;
    room.slots = page.u16(layout.slotCountAt);
    room.start = layout.slotsAt + 2 * room.slots;
    room.end = room.slots == 0 ? layout.pageSize : page.u16(room.start - 2) & kSlotOffsetMask;
    if (room.end < room.start || room.end > layout.pageSize) {
        damaged("the row list of page " + std::to_string(number) + " is longer than the page");
    }
    return room;
}

RowId addRow(PageStore& store, PageNo number, std::string_view bytes, SlotKind kind) {
    const PageRoom room = roomOn(store, number);
    if (!room.takes(bytes.size())) {
        damaged("a row does not fit its page");
    }
    const std::size_t start = room.end - bytes.size();
    Patch page = store.edit(number);
    page.bytes(start, bytes);
    page.u16(room.start, static_cast<std::uint32_t>(start | flagsOf(kind)));
    page.u16(store.layout().slotCountAt, static_cast<std::uint32_t>(room.slots + 1));
    page.u16(kFreeBytesAt, static_cast<std::uint32_t>(start - room.start - 2));
    return {number, static_cast<std::uint8_t>(room.slots)};
}

bool setRow(PageStore& store, RowId id, std::string_view bytes, SlotKind kind) {
    const DataPage old(store, id.page);
    if (bytes.size() > old.slot(id.row).bytes.size() + old.freeBytes()) {
        return false;
    }
    std::vector<NewSlot> slots;
    slots.reserve(old.slots().size());
    for (const auto& slot : old.slots()) {
        slots.push_back(
            {slot.kind, slot.kind == SlotKind::Deleted ? std::string() : std::string(slot.bytes)});
    }
    slots[id.row] = {kind, std::string(bytes)};
    layOut(store, id.page, slots);
    return true;
}

RowId readPointer(const Bytes& bytes, std::size_t at) {
    return {bytes.number(at + 1, 3), bytes.u8(at)};
}

std::uint32_t pointerValue(RowId id) {
    return id.page << 8 | id.row;
}

Slot slotAt(const PageStore& store, RowId id) {
    const Layout& layout = store.layout();
    const Bytes page = store.page(id.page, PageType::Data);
    const std::size_t at = layout.slotsAt + std::size_t{2} * id.row;
    if (id.row >= page.u16(layout.slotCountAt)) {
        damaged("it refers to a row that does not exist");
    }
    const std::size_t start = page.u16(at) & kSlotOffsetMask;
    const std::size_t end = id.row == 0 ? layout.pageSize : page.u16(at - 2) & kSlotOffsetMask;
    if (start > end) {
        damaged("the rows of page " + std::to_string(id.page) + " overlap");
    }
    return {kindOf(page.u16(at)), page.part(start, end - start)};
}

std::string_view rowBytes(const PageStore& store, RowId id) {
    const Slot slot = slotAt(store, id);
    if (slot.kind == SlotKind::Deleted) {
        damaged("it refers to a deleted row");
    }
    return slot.bytes;
}

} // namespace drx9::jet
