#pragma once

#include "jet/PageStore.h"

#include <vector>

namespace drx9::jet {

/// What a row slot holds.
enum class SlotKind {
    Row,    ///< an ordinary row
    Stub,   ///< the row moved: its first four bytes tell where
    Body,   ///< a moved row's bytes, reached only through its stub
    Deleted ///< number taken, nothing there
};

struct Slot {
    SlotKind kind = SlotKind::Deleted;
    std::string_view bytes; ///< in the page; valid until the store's next appendPage()
};

/// A data page for reading: rows of a table, usage-map records or long values. Checks on construction that
/// the page is one and that its slots lie in it without overlapping.
class DataPage {
public:
    DataPage(const PageStore& store, PageNo number);

    [[nodiscard]] std::uint32_t owner() const { return page_.u32(kOwnerAt); }
    [[nodiscard]] const std::vector<Slot>& slots() const { return slots_; }
    [[nodiscard]] const Slot& slot(std::size_t row) const;
    [[nodiscard]] std::size_t freeBytes() const { return free_; }
    [[nodiscard]] std::size_t statedFreeBytes() const { return page_.u16(kFreeBytesAt); }
    [[nodiscard]] bool allDeleted() const;

private:
    Bytes page_;
    std::vector<Slot> slots_;
    std::size_t free_ = 0;
};

inline constexpr std::uint32_t kOwnerOfMaps = 0;
inline constexpr std::uint32_t kOwnerOfGlobalMap = 1;
inline constexpr std::uint32_t kOwnerOfLongValues = 0x4C41564C; ///< "LVAL"

/// Makes the page an empty data page of that owner.
void initDataPage(PageStore& store, PageNo number, std::uint32_t owner);
/// The room between a page's slot list and its lowest row, found without a look at the rows.
struct PageRoom {
    std::size_t slots = 0;
    std::size_t start = 0, end = 0; ///< offsets in the page
    [[nodiscard]] std::size_t bytes() const { return end - start; }
    /// A new row needs its bytes and two for its slot.
    [[nodiscard]] bool takes(std::size_t rowSize) const {
        return slots < kMostSlots && bytes() >= rowSize + 2;
    }
};
PageRoom roomOn(const PageStore& store, PageNo number);
/// Appends a row to a page that takes it.
RowId addRow(PageStore& store, PageNo number, std::string_view bytes, SlotKind kind);
/// Gives a slot other bytes and shifts the page's other rows so that no gap stays. False, with nothing
/// changed, when the page has no room for them.
bool setRow(PageStore& store, RowId id, std::string_view bytes, SlotKind kind);

/// A row number and page as maps, stubs and long values store it: 1 byte row, 3 bytes page.
RowId readPointer(const Bytes& bytes, std::size_t at);
std::uint32_t pointerValue(RowId id);
/// One slot, without a look at the page's others. Throws JetError(Damaged) when there is no such slot.
Slot slotAt(const PageStore& store, RowId id);
/// The bytes of one slot that must be there and not be deleted, else JetError(Damaged).
std::string_view rowBytes(const PageStore& store, RowId id);

} // namespace drx9::jet
