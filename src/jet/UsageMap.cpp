#include "jet/UsageMap.h"

#include <algorithm>

namespace drx9::jet {

namespace {

constexpr std::size_t kBaseAt = 1;     ///< inline record: first page
constexpr std::size_t kBitmapAt = 5;   ///< inline record
constexpr std::size_t kListAt = 1;     ///< list record
constexpr std::size_t kRecordStep = 4; ///< records grow by this many bytes
constexpr PageNo kGrowthStep = 32;     ///< pages the global map learns of at once
constexpr std::uint8_t kBitmapPage[] = {5, 1, 0, 0};

} // namespace

/// The page that holds the bits around `page` in a list record; 0 when there is none.
PageNo UsageMap::bitmapPageFor(PageNo page) const {
    const Bytes bytes = record();
    const std::size_t at = kListAt + 4 * (page / store_.layout().pagesPerBitmap());
    const PageNo number = at + 4 <= bytes.size() ? bytes.u32(at) : 0;
    // Meaningless pointers beyond the end occur in whole files: they stand for nothing.
    return number < store_.pageCount() ? number : 0;
}

std::vector<PageNo> UsageMap::bitmapPages() const {
    std::vector<PageNo> pages;
    if (isList()) {
        const std::size_t entries = (record().size() - kListAt) / 4;
        for (std::size_t i = 0; i < entries; ++i) {
            const PageNo number = bitmapPageFor(static_cast<PageNo>(i * store_.layout().pagesPerBitmap()));
            if (number != 0) {
                pages.push_back(number);
            }
        }
    }
    return pages;
}

std::vector<UsageMap::Bits> UsageMap::bits() const {
    const Bytes bytes = record();
    if (bytes.u8(0) == 0) {
        return {{bytes.u32(kBaseAt), bytes.all().substr(kBitmapAt)}};
    }
    if (bytes.u8(0) != 1) {
        damaged("a usage map is of a kind that is not known");
    }
    std::vector<Bits> runs;
    const auto covered = static_cast<PageNo>(store_.layout().pagesPerBitmap());
    for (PageNo base = 0; base <= store_.pageCount() && base / covered < bytes.size() / 4; base += covered) {
        if (const PageNo number = bitmapPageFor(base); number != 0) {
            runs.push_back({base, store_.page(number, PageType::MapBits).all().substr(kMapBitsAt)});
        }
    }
    return runs;
}

/// Calls visitor(page) for each member in ascending order until it returns false.
template<class Visitor>
void UsageMap::visit(const Visitor& visitor) const {
    for (const auto& run : bits()) {
        for (std::size_t i = 0; i < run.bytes.size(); ++i) {
            const auto byte = static_cast<unsigned char>(run.bytes[i]);
            for (unsigned bit = 0; byte >> bit != 0; ++bit) {
                const auto page = static_cast<PageNo>(run.base + i * 8 + bit);
                if ((byte >> bit & 1) != 0 && !visitor(page)) {
                    return;
                }
            }
        }
    }
}

std::vector<PageNo> UsageMap::pages() const {
    std::vector<PageNo> pages;
    visit([&](PageNo page) {
        if (page < store_.pageCount()) {
            pages.push_back(page);
        }
        return true;
    });
    return pages;
}

bool UsageMap::reachesBeyondEnd() const {
    bool beyond = false;
    visit([&](PageNo page) {
        beyond = page >= store_.pageCount();
        return !beyond;
    });
    return beyond;
}

std::optional<PageNo> UsageMap::lowest() const {
    std::optional<PageNo> first;
    visit([&](PageNo page) {
        first = page;
        return false;
    });
    return first;
}

bool UsageMap::contains(PageNo page) const {
    for (const auto& run : bits()) {
        if (page >= run.base && (page - run.base) / 8 < run.bytes.size()) {
            return (static_cast<unsigned char>(run.bytes[(page - run.base) / 8]) >> ((page - run.base) % 8) &
                    1) != 0;
        }
    }
    return false;
}

/// Sets one bit that the record reaches.
void UsageMap::writeBit(PageNo page, bool value) {
    RowId at = record_;
    std::size_t offset = 0;
    unsigned bit = page % 8;
    const Bytes bytes = record();
    if (isList()) {
        at.page = bitmapPageFor(page);
        offset = kMapBitsAt + page % store_.layout().pagesPerBitmap() / 8;
    } else {
        const PageNo within = page - bytes.u32(kBaseAt);
        bit = within % 8;
        offset = static_cast<std::size_t>(bytes.all().data() - store_.page(at.page).all().data()) +
                 kBitmapAt + within / 8;
    }
    const unsigned mask = 1u << bit;
    const unsigned old = store_.page(at.page).u8(offset);
    store_.edit(at.page).u8(offset, value ? old | mask : old & ~mask);
}

void UsageMap::remove(PageNo page) {
    if (contains(page)) {
        writeBit(page, false);
    }
}

void UsageMap::add(PageNo page) {
    if (contains(page)) {
        return;
    }
    if (!isList()) {
        if (addInline(page)) {
            return;
        }
        becomeList();
    }
    addToList(page);
}

/// True when the inline record could take the page, perhaps after its window was moved or lengthened.
bool UsageMap::addInline(PageNo page) {
    const Bytes bytes = record();
    const PageNo base = bytes.u32(kBaseAt);
    std::size_t bitmapSize = bytes.size() - kBitmapAt;
    if (page >= base && (page - base) / 8 < bitmapSize) {
        writeBit(page, true);
        return true;
    }
    std::vector<PageNo> members;
    visit([&](PageNo member) {
        members.push_back(member);
        return true;
    });
    members.insert(std::upper_bound(members.begin(), members.end(), page), page);
    const PageNo newBase = members.front() / 8 * 8;
    const std::size_t needed = (members.back() - newBase) / 8 + 1;
    if (needed > bitmapSize) {
        bitmapSize += (needed - bitmapSize + kRecordStep - 1) / kRecordStep * kRecordStep;
    }
    if (kBitmapAt + bitmapSize > bytes.size() + DataPage(store_, record_.page).freeBytes()) {
        return false;
    }
    writeInline(newBase, bitmapSize, members);
    return true;
}

void UsageMap::writeInline(PageNo base, std::size_t bitmapSize, const std::vector<PageNo>& members) {
    std::string bytes(1, '\0');
    append(bytes, 4, base);
    bytes.resize(kBitmapAt + bitmapSize, '\0');
    for (const PageNo member : members) {
        auto& byte = bytes[kBitmapAt + (member - base) / 8];
        byte = static_cast<char>(static_cast<unsigned char>(byte) | 1u << (member - base) % 8);
    }
    if (!setRow(store_, record_, bytes, SlotKind::Row)) {
        damaged("a usage map does not fit its page");
    }
}

void UsageMap::becomeList() {
    std::vector<PageNo> members;
    visit([&](PageNo member) {
        members.push_back(member);
        return true;
    });
    std::string bytes(record().size(), '\0');
    bytes[0] = 1;
    setRow(store_, record_, bytes, SlotKind::Row);
    for (const PageNo member : members) {
        addToList(member);
    }
}

void UsageMap::addToList(PageNo page) {
    const auto entry = page / store_.layout().pagesPerBitmap();
    const std::size_t at = kListAt + 4 * entry;
    if (at + 4 > record().size()) {
        rejected("the file cannot grow: one of its page lists is full");
    }
    if (bitmapPageFor(page) == 0) {
        const PageNo number = newBitmapPage();
        std::string bytes(record().all());
        Patch(std::span(bytes)).u32(at, number);
        setRow(store_, record_, bytes, SlotKind::Row);
    }
    writeBit(page, true);
}

PageNo UsageMap::newBitmapPage() {
    // The global map cannot ask itself for a page.
    const PageNo number = record_ == kGlobalMap ? store_.appendPage() : allocatePage(store_);
    Patch page = store_.edit(number);
    page.fill(0, store_.layout().pageSize, '\0');
    for (std::size_t i = 0; i < sizeof kBitmapPage; ++i) {
        page.u8(i, kBitmapPage[i]);
    }
    return number;
}

void UsageMap::clear() {
    std::string bytes(std::max(record().size(), kBitmapAt), '\0');
    setRow(store_, record_, bytes, SlotKind::Row);
}

PageNo allocatePage(PageStore& store) {
    UsageMap global(store, kGlobalMap);
    const auto free = global.lowest();
    if (free && *free <= kGlobalMapPage) {
        damaged("its list of free pages holds the first pages");
    }
    if (free && *free <= store.pageCount()) {
        global.remove(*free);
        return *free == store.pageCount() ? store.appendPage() : *free;
    }
    if (free) {
        return store.appendPage();
    }
    // Every page the map knows of is taken: the file grows, and the map learns of the pages behind the new
    // end.
    global.add(store.pageCount() + 1);
    const PageNo next = store.appendPage();
    global.remove(next);
    for (PageNo page = next + 1; page < next + kGrowthStep; ++page) {
        global.add(page);
    }
    return next;
}

void freePage(PageStore& store, PageNo page) {
    UsageMap(store, kGlobalMap).add(page);
}

RowId newMapRecord(PageStore& store, PageNo& mapPage) {
    const std::string bytes(store.layout().mapRecordSize, '\0');
    if (mapPage == 0 || !roomOn(store, mapPage).takes(bytes.size())) {
        mapPage = allocatePage(store);
        initDataPage(store, mapPage, kOwnerOfMaps);
    }
    return addRow(store, mapPage, bytes, SlotKind::Row);
}

} // namespace drx9::jet
