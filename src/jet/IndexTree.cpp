#include "jet/IndexTree.h"

#include <algorithm>

namespace drx9::jet {

namespace {

constexpr std::size_t kChildSize = 4;
constexpr std::size_t kDeepest = 16;
constexpr std::size_t kMostCompression =
    40; ///< by shared prefixes; keeps a hostile file from filling the memory

/// A page of more than one is filled to three quarters, so that the next inserts find room.
std::size_t fillTarget(const Layout& layout) {
    return (layout.pageSize - layout.entriesAt) / 4 * 3;
}

bool fits(const Layout& layout, std::size_t bytes) {
    return bytes <= layout.pageSize - layout.entriesAt;
}

void writeIndexPage(PageStore& store, PageNo number, const IndexPage& content) {
    const Layout& layout = store.layout();
    Patch page = store.edit(number);
    page.fill(0, layout.entriesAt, '\0');
    page.u16(0, content.leaf ? 0x0104 : 0x0103);
    page.u32(kOwnerAt, content.owner);
    page.u32(layout.previousAt, content.previous);
    page.u32(layout.nextAt, content.next);
    page.u32(layout.tailAt, content.tail);
    page.u8(layout.heightAt, static_cast<std::uint32_t>(content.height));
    std::string bitmap(layout.entriesAt - layout.bitmapAt, '\0');
    std::size_t used = 0;
    for (std::size_t i = 0; i < content.count(); ++i) {
        page.bytes(layout.entriesAt + used, content.entry(i));
        used += content.entry(i).size();
        auto& byte = bitmap[used / 8];
        byte = static_cast<char>(static_cast<unsigned char>(byte) | 1u << used % 8);
    }
    page.bytes(layout.bitmapAt, bitmap);
    page.u16(kFreeBytesAt, static_cast<std::uint32_t>(layout.pageSize - layout.entriesAt - used));
}

/// Cuts the entries of one level into pages, from left to right.
std::vector<IndexPage> cutIntoPages(const Layout& layout, const std::vector<std::string>& entries) {
    std::size_t bytes = 0;
    for (const auto& entry : entries) {
        bytes += entry.size();
    }
    const std::size_t most = fits(layout, bytes) ? bytes : fillTarget(layout);
    std::vector<IndexPage> pages(1);
    for (const auto& entry : entries) {
        if (pages.back().size() + entry.size() > most && pages.back().count() > 0) {
            pages.emplace_back();
        }
        pages.back().append(entry);
    }
    // A node must not be left with a tail alone.
    if (pages.size() > 1 && pages.back().count() == 1) {
        IndexPage& previous = pages[pages.size() - 2];
        if (fits(layout, previous.size() + pages.back().size())) {
            previous.append(pages.back().entry(0));
            pages.pop_back();
        } else {
            pages.back().insert(0, previous.back());
            previous.erase(previous.count() - 1);
        }
    }
    return pages;
}

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

std::string_view nodeSeparator(std::string_view entry) {
    return entry.substr(0, entry.size() - kChildSize);
}

PageNo nodeChild(std::string_view entry) {
    return Bytes(entry).bigEndian(entry.size() - kChildSize, kChildSize);
}

std::size_t IndexPage::lowerBound(std::string_view wanted) const {
    std::size_t low = 0;
    for (std::size_t high = count(); low < high;) {
        const std::size_t middle = (low + high) / 2;
        const auto probe = leaf ? entry(middle) : nodeSeparator(entry(middle));
        if (probe < wanted) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low;
}

void IndexPage::append(std::string_view prefix, std::string_view rest) {
    bytes_ += prefix;
    bytes_ += rest;
    ends_.push_back(bytes_.size());
}

void IndexPage::insert(std::size_t position, std::string_view added) {
    const std::size_t start = position == 0 ? 0 : ends_[position - 1];
    bytes_.insert(start, added);
    ends_.insert(ends_.begin() + static_cast<std::ptrdiff_t>(position), start);
    for (std::size_t i = position; i < ends_.size(); ++i) {
        ends_[i] += added.size();
    }
}

void IndexPage::erase(std::size_t position) {
    const std::size_t length = entry(position).size();
    bytes_.erase(ends_[position] - length, length);
    ends_.erase(ends_.begin() + static_cast<std::ptrdiff_t>(position));
    for (std::size_t i = position; i < ends_.size(); ++i) {
        ends_[i] -= length;
    }
}

IndexPage readIndexPage(const PageStore& store, PageNo number) {
    const Layout& layout = store.layout();
    const Bytes page = store.page(number);
    const auto type = static_cast<PageType>(page.u8(0));
    if (type != PageType::IndexLeaf && type != PageType::IndexNode) {
        damaged("page " + std::to_string(number) + " is no index page");
    }
    IndexPage content;
    content.leaf = type == PageType::IndexLeaf;
    content.owner = page.u32(kOwnerAt);
    content.previous = page.u32(layout.previousAt);
    content.next = page.u32(layout.nextAt);
    content.tail = page.u32(layout.tailAt);
    content.height = page.u8(layout.heightAt);
    content.statedFree = page.u16(kFreeBytesAt);
    const std::size_t prefixSize = page.number(layout.prefixAt, layout.prefixWidth);
    const std::size_t shortest = kRowPointerSize + (content.leaf ? 0 : kChildSize);
    if (prefixSize > kLongestEntry) {
        damaged("an index entry on page " + std::to_string(number) + " is too long");
    }
    const auto bitmap = page.part(layout.bitmapAt, layout.entriesAt - layout.bitmapAt);
    std::string prefix;
    std::size_t start = 0;
    for (std::size_t i = 0; i < bitmap.size(); ++i) {
        const unsigned bits = static_cast<unsigned char>(bitmap[i]);
        for (unsigned bit = 0; bits >> bit != 0; ++bit) {
            const std::size_t end = 8 * i + bit;
            if ((bits >> bit & 1) == 0) {
                continue;
            }
            const auto bytes = page.part(layout.entriesAt + start, end - start);
            content.append(prefix, bytes);
            if (content.back().size() < shortest) {
                damaged("an index entry on page " + std::to_string(number) + " is too short");
            }
            if (start == 0) {
                prefix = Bytes(bytes).part(0, prefixSize);
            }
            start = end;
        }
    }
    const std::size_t room = layout.pageSize - layout.entriesAt;
    content.actualFree = room - std::min(start, room);
    return content;
}

/// The leaf where an entry belongs: at each node the first child whose separator is not below it, else the
/// tail.
PageNo IndexTree::leafFor(std::string_view entry) const {
    PageNo number = root_;
    for (std::size_t depth = 0; depth < kDeepest; ++depth) {
        const IndexPage page = readIndexPage(store_, number);
        if (page.leaf) {
            return number;
        }
        const std::size_t at = page.lowerBound(entry);
        number = at == page.count() ? page.tail : nodeChild(page.entry(at));
    }
    damaged("an index has no leaves");
}

void IndexTree::walk(const std::function<bool(std::string_view entry)>& visitor) const {
    std::size_t visited = 0;
    for (PageNo number = firstLeaf(); number != 0;) {
        const IndexPage page = readIndexPage(store_, number);
        if (!page.leaf || ++visited > store_.pageCount()) {
            damaged("the leaves of an index have no end");
        }
        for (std::size_t i = 0; i < page.count(); ++i) {
            if (!visitor(page.entry(i))) {
                return;
            }
        }
        number = page.next;
    }
}

std::vector<RowId> IndexTree::rows() const {
    std::vector<RowId> rows;
    walk([&](std::string_view entry) {
        rows.push_back(entryRow(entry));
        return true;
    });
    return rows;
}

std::vector<std::string> IndexTree::allEntries() const {
    std::vector<std::string> entries;
    std::size_t bytes = 0;
    walk([&](std::string_view entry) {
        bytes += entry.size();
        if (bytes / kMostCompression > store_.image().size()) {
            damaged("an index is larger than it can be");
        }
        entries.emplace_back(entry);
        return true;
    });
    return entries;
}

bool IndexTree::containsKey(const std::string& key) const {
    const std::string lowest = key + std::string(kRowPointerSize, '\0');
    // The first entry that is not below stands in this leaf, or starts the next one.
    std::size_t visited = 0;
    for (PageNo number = leafFor(lowest); number != 0;) {
        const IndexPage page = readIndexPage(store_, number);
        if (const std::size_t at = page.lowerBound(lowest); at < page.count()) {
            return entryKey(page.entry(at)) == key;
        }
        number = page.leaf && ++visited < store_.pageCount() ? page.next : 0;
    }
    return false;
}

/// A page of this tree that is about to be written: it must be this table's.
IndexPage IndexTree::ownPage(PageNo number) const {
    IndexPage page = readIndexPage(store_, number);
    if (page.owner != definitionPage_) {
        damaged("an index reaches into another table");
    }
    return page;
}

void IndexTree::insert(const std::string& entry) {
    const PageNo number = leafFor(entry);
    IndexPage page = ownPage(number);
    page.insert(page.lowerBound(entry), entry);
    if (fits(store_.layout(), page.size())) {
        writeIndexPage(store_, number, page);
        return;
    }
    std::vector<std::string> entries = allEntries();
    entries.insert(std::upper_bound(entries.begin(), entries.end(), entry), entry);
    layOut(entries);
}

bool IndexTree::eraseNear(RowId row, const std::string& key) {
    const std::string entry = indexEntry(key, row);
    const PageNo number = leafFor(entry);
    const IndexPage page = readIndexPage(store_, number);
    const std::size_t at = page.lowerBound(entry);
    if (at == page.count() || page.entry(at) != entry) {
        return false;
    }
    eraseAt(number, at);
    return true;
}

void IndexTree::erase(RowId row, const std::optional<std::string>& key) {
    if (key && eraseNear(row, *key)) {
        return;
    }
    std::size_t visited = 0;
    for (PageNo number = firstLeaf(); number != 0 && visited++ <= store_.pageCount();) {
        const IndexPage page = readIndexPage(store_, number);
        for (std::size_t i = 0; i < page.count(); ++i) {
            if (entryRow(page.entry(i)) == row) {
                eraseAt(number, i);
                return;
            }
        }
        number = page.next;
    }
    damaged("an index lacks a row of its table");
}

void IndexTree::eraseAt(PageNo leaf, std::size_t position) {
    IndexPage page = ownPage(leaf);
    const bool last = position + 1 == page.count();
    const std::string entry(page.entry(position));
    page.erase(position);
    const bool fitsWithoutPrefix = fits(store_.layout(), page.size());
    if (fitsWithoutPrefix && (leaf == root_ || !last)) {
        writeIndexPage(store_, leaf, page);
        return;
    }
    std::vector<std::string> entries = allEntries();
    entries.erase(std::find(entries.begin(), entries.end(), entry));
    layOut(entries);
}

void IndexTree::initRoot() {
    IndexPage page;
    page.owner = definitionPage_;
    writeIndexPage(store_, root_, page);
}

void IndexTree::freePages() {
    for (const PageNo page : map_.pages()) {
        ownPage(page);
        freePage(store_, page);
    }
    map_.clear();
}

/// Lays the tree out anew from the leaves up, over the pages it has, taking more or giving back what is left.
void IndexTree::layOut(const std::vector<std::string>& entries) {
    const Layout& layout = store_.layout();
    std::vector<PageNo> spare = map_.pages();
    std::erase(spare, root_);
    for (const PageNo page : spare) {
        ownPage(page);
    }
    std::reverse(spare.begin(), spare.end());
    const auto takePage = [&] {
        if (spare.empty()) {
            const PageNo page = allocatePage(store_);
            map_.add(page);
            return page;
        }
        const PageNo page = spare.back();
        spare.pop_back();
        return page;
    };

    std::vector<std::string> level = entries;
    for (std::size_t height = 0;; ++height) {
        auto pages = cutIntoPages(layout, level);
        std::vector<PageNo> numbers;
        for (std::size_t i = 0; i < pages.size(); ++i) {
            numbers.push_back(pages.size() == 1 ? root_ : takePage());
        }
        level.clear();
        for (std::size_t i = 0; i < pages.size(); ++i) {
            IndexPage& page = pages[i];
            page.leaf = height == 0;
            page.owner = definitionPage_;
            page.previous = i > 0 ? numbers[i - 1] : 0;
            page.next = i + 1 < pages.size() ? numbers[i + 1] : 0;
            page.height = height;
            const std::string last(page.count() > 0 ? page.back() : std::string_view());
            if (!page.leaf) {
                // The last child has no entry: it is the tail.
                page.tail = nodeChild(last);
                page.erase(page.count() - 1);
            }
            writeIndexPage(store_, numbers[i], page);
            std::string parent(page.leaf ? std::string_view(last) : nodeSeparator(last));
            appendBigEndian(parent, kChildSize, numbers[i]);
            level.push_back(std::move(parent));
        }
        if (pages.size() == 1) {
            break;
        }
    }
    for (const PageNo page : spare) {
        map_.remove(page);
        freePage(store_, page);
    }
}

} // namespace drx9::jet
