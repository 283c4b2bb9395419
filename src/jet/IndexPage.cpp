#include "jet/IndexPage.h"

#include <algorithm>
#include <array>
#include <bit>

namespace drx9::jet {

namespace {

constexpr std::size_t kChildSize = 4;

std::size_t roomOf(const Layout& layout) {
    return layout.pageSize - layout.entriesAt;
}

unsigned bitsAt(std::string_view bitmap, std::size_t byte) {
    return static_cast<unsigned char>(bitmap[byte]);
}

/// The number of leading bytes up to the last one that is not zero.
std::size_t sizeWithoutZeros(std::string_view bytes) {
    constexpr std::array<char, 16> kZeros{};
    std::size_t size = bytes.size();
    while (size >= kZeros.size() &&
           std::memcmp(&bytes[size - kZeros.size()], kZeros.data(), kZeros.size()) == 0) {
        size -= kZeros.size();
    }
    while (size > 0 && bytes[size - 1] == '\0') {
        --size;
    }
    return size;
}

/// Marks offsets of a page under change as an entry's end.
class EndMarks {
public:
    EndMarks(const Layout& layout, Patch page)
        : bits_(page.part(layout.bitmapAt, layout.entriesAt - layout.bitmapAt)) {}
    void flip(std::size_t end) {
        auto& byte = bits_[end / 8];
        byte = static_cast<char>(static_cast<unsigned char>(byte) ^ 1u << end % 8);
    }
    void move(std::size_t from, std::size_t to) {
        flip(from);
        flip(to);
    }

private:
    std::span<char> bits_;
};

} // namespace

std::string indexEntry(const std::string& key, RowId row) {
    std::string entry = key;
    appendBigEndian(entry, 3, row.page);
    appendBigEndian(entry, 1, row.row);
    return entry;
}

RowId entryRow(std::string_view entry) {
    const Bytes bytes(entry);
    const std::size_t at = entry.size() - kRowPointerSize;
    return {bytes.bigEndian(at, 3), bytes.u8(at + 3)};
}

std::string_view entryKey(std::string_view entry) {
    return entry.substr(0, entry.size() - kRowPointerSize);
}

std::string nodeEntry(std::string_view separator, PageNo child) {
    std::string entry(separator);
    appendBigEndian(entry, kChildSize, child);
    return entry;
}

std::string_view nodeSeparator(std::string_view entry) {
    return entry.substr(0, entry.size() - kChildSize);
}

PageNo nodeChild(std::string_view entry) {
    return Bytes(entry).bigEndian(entry.size() - kChildSize, kChildSize);
}

IndexPage::IndexPage(const PageStore& store, PageNo number)
    : page_(store.page(number)) {
    const Layout& layout = store.layout();
    const auto type = static_cast<PageType>(page_.u8(0));
    if (type != PageType::IndexLeaf && type != PageType::IndexNode) {
        damaged("page " + std::to_string(number) + " is no index page");
    }
    leaf = type == PageType::IndexLeaf;
    owner = page_.u32(kOwnerAt);
    previous = page_.u32(layout.previousAt);
    next = page_.u32(layout.nextAt);
    tail = page_.u32(layout.tailAt);
    height = page_.u8(layout.heightAt);
    room_ = roomOf(layout);
    entries_ = page_.part(layout.entriesAt, room_);
    ends_ = page_.part(layout.bitmapAt, layout.entriesAt - layout.bitmapAt);
    ends_ = ends_.substr(0, sizeWithoutZeros(ends_));
    used_ = ends_.empty() ? 0 : 8 * ends_.size() - 8 + std::bit_width(bitsAt(ends_, ends_.size() - 1)) - 1;
    const std::size_t prefixSize = page_.number(layout.prefixAt, layout.prefixWidth);
    if (used_ > room_ || prefixSize > kLongestEntry) {
        damaged("the entries of index page " + std::to_string(number) + " are longer than they can be");
    }
    if (prefixSize > 0 && used_ > 0) {
        prefix_ = Bytes(entries_.substr(0, after(0))).part(0, prefixSize);
    }
}

std::size_t IndexPage::after(std::size_t at) const {
    std::size_t byte = ++at / 8;
    for (unsigned bits = bitsAt(ends_, byte) >> at % 8 << at % 8;; bits = bitsAt(ends_, byte)) {
        if (bits != 0) {
            return 8 * byte + static_cast<std::size_t>(std::countr_zero(bits));
        }
        ++byte;
    }
}

/// The highest offset up to `at` where an entry begins, but `lowest` at least.
std::size_t IndexPage::boundary(std::size_t at, std::size_t lowest) const {
    std::size_t byte = at / 8;
    for (unsigned bits = bitsAt(ends_, byte) & ((2u << at % 8) - 1);; bits = bitsAt(ends_, byte)) {
        if (bits != 0) {
            return std::max(lowest, 8 * byte + std::bit_width(bits) - 1);
        }
        if (byte-- <= lowest / 8) {
            return lowest;
        }
    }
}

std::size_t IndexPage::before(std::size_t at) const {
    return at == 0 ? 0 : boundary(at - 1, 0);
}

std::string_view IndexPage::entry(std::size_t at) const {
    std::string_view bytes = entries_.substr(at, after(at) - at);
    if (at > 0 && !prefix_.empty()) {
        joined_ = prefix_;
        joined_ += bytes;
        bytes = joined_;
    }
    if (bytes.size() < kRowPointerSize + (leaf ? 0 : kChildSize)) {
        damaged("an index entry is too short");
    }
    return bytes;
}

std::size_t IndexPage::lowerBound(std::string_view wanted) const {
    std::size_t low = 0;
    for (std::size_t high = used_; low < high;) {
        const std::size_t middle = boundary((low + high) / 2, low);
        const auto probe = leaf ? entry(middle) : nodeSeparator(entry(middle));
        if (probe < wanted) {
            low = after(middle);
        } else {
            high = middle;
        }
    }
    return low;
}

void writeIndexPage(PageStore& store, PageNo number, const IndexHead& head,
                    std::span<const std::string> entries) {
    const Layout& layout = store.layout();
    Patch page = store.edit(number);
    page.fill(0, layout.entriesAt, '\0');
    page.u16(0, head.leaf ? 0x0104 : 0x0103);
    page.u32(kOwnerAt, head.owner);
    page.u32(layout.previousAt, head.previous);
    page.u32(layout.nextAt, head.next);
    page.u32(layout.tailAt, head.tail);
    page.u8(layout.heightAt, static_cast<std::uint32_t>(head.height));
    EndMarks marks(layout, page);
    std::size_t used = 0;
    for (const auto& entry : entries) {
        page.bytes(layout.entriesAt + used, entry);
        used += entry.size();
        marks.flip(used);
    }
    page.u16(kFreeBytesAt, static_cast<std::uint32_t>(roomOf(layout) - used));
}

void insertEntry(PageStore& store, PageNo number, std::size_t at, std::string_view entry) {
    const Layout& layout = store.layout();
    const IndexPage old(store, number);
    Patch page = store.edit(number);
    const auto entries = page.part(layout.entriesAt, roomOf(layout)).subspan(at);
    std::memmove(entries.data() + entry.size(), entries.data(), old.used() - at);
    page.bytes(layout.entriesAt + at, entry);
    EndMarks marks(layout, page);
    for (std::size_t end = old.used(); end > at; end = old.before(end)) {
        marks.move(end, end + entry.size());
    }
    marks.flip(at + entry.size());
    page.number(layout.prefixAt, layout.prefixWidth, 0); // an empty page may have kept its last one
    page.u16(kFreeBytesAt, static_cast<std::uint32_t>(old.freeBytes() - entry.size()));
}

void eraseEntry(PageStore& store, PageNo number, std::size_t at) {
    const Layout& layout = store.layout();
    const IndexPage old(store, number);
    const std::size_t end = old.after(at);
    Patch page = store.edit(number);
    const auto entries = page.part(layout.entriesAt, old.used());
    std::copy(entries.begin() + static_cast<std::ptrdiff_t>(end), entries.end(),
              entries.begin() + static_cast<std::ptrdiff_t>(at));
    EndMarks marks(layout, page);
    marks.flip(end);
    for (std::size_t each = end; each < old.used();) {
        each = old.after(each);
        marks.move(each, each - (end - at));
    }
    page.u16(kFreeBytesAt, static_cast<std::uint32_t>(old.freeBytes() + (end - at)));
}

} // namespace drx9::jet
