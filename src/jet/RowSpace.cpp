#include "jet/RowSpace.h"

namespace drx9::jet {

namespace {

/// A page that cannot take a row and has less than this part left is not asked again.
constexpr std::size_t kHopelessShare = 4;

} // namespace

RowId RowSpace::add(std::string_view bytes, SlotKind kind) {
    const Layout& layout = store_.layout();
    for (const PageNo number : free_.pages()) {
        const PageRoom room = roomOn(store_, number);
        const bool own = store_.page(number).u32(kOwnerAt) == owner_;
        if (own && room.takes(bytes.size())) {
            return addRow(store_, number, bytes, kind);
        }
        if (!own || room.slots >= kMostSlots || room.bytes() < layout.pageSize / kHopelessShare) {
            free_.remove(number);
        }
    }
    const PageNo number = allocatePage(store_);
    initDataPage(store_, number, owner_);
    owned_.add(number);
    free_.add(number);
    return addRow(store_, number, bytes, kind);
}

void RowSpace::drop(RowId id) {
    setRow(store_, id, {}, SlotKind::Deleted);
    if (DataPage(store_, id.page).allDeleted()) {
        free_.remove(id.page);
        owned_.remove(id.page);
        freePage(store_, id.page);
    } else {
        free_.add(id.page);
    }
}

bool RowSpace::owns(PageNo page) const {
    return owned_.contains(page) && store_.page(page, PageType::Data).u32(kOwnerAt) == owner_;
}

} // namespace drx9::jet
