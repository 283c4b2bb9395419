#include "jet/IndexTree.h"

#include <algorithm>

namespace drx9::jet {

namespace {

constexpr std::size_t kDeepest = 16;
/// What shared prefixes may save of a whole file; keeps a hostile one from filling the memory.
constexpr std::size_t kMostCompression = 10;

/// Cuts entries into pages and returns where each one's share ends. A node's share is two entries at least,
/// as the last one becomes its tail. What grows at its end fills its pages; else they share alike.
std::vector<std::size_t> cut(std::size_t room, const std::vector<std::string>& entries, bool leaf,
                             bool atEnd) {
    std::size_t total = 0;
    for (const auto& entry : entries) {
        total += entry.size();
    }
    std::vector<std::size_t> ends;
    if (total > room) {
        const std::size_t target = atEnd ? room : std::min(total / 2, room / 4 * 3);
        const std::size_t least = leaf ? 1 : 2;
        std::size_t size = 0;
        std::size_t start = 0;
        for (std::size_t i = 0; i < entries.size(); ++i) {
            if (i - start >= least && (size >= target || size + entries[i].size() > room)) {
                ends.push_back(start = i);
                size = 0;
            }
            size += entries[i].size();
        }
    }
    ends.push_back(entries.size());
    return ends;
}

} // namespace

/// The pages from the root to the leaf where an entry belongs: at each node the first child whose separator
/// is not below it, else the tail.
std::vector<PageNo> IndexTree::pathTo(std::string_view entry) const {
    std::vector<PageNo> path{root_};
    while (path.size() <= kDeepest) {
        const IndexPage page(store_, path.back());
        if (page.leaf) {
            return path;
        }
        const std::size_t at = page.lowerBound(entry);
        path.push_back(at == page.used() ? page.tail : nodeChild(page.entry(at)));
    }
    damaged("an index has no leaves");
}

void IndexTree::walk(const std::function<bool(std::string_view entry)>& visitor) const {
    std::size_t visited = 0;
    for (PageNo number = pathTo({}).back(); number != 0;) {
        const IndexPage page(store_, number);
        if (!page.leaf || ++visited > store_.pageCount()) {
            damaged("the leaves of an index have no end");
        }
        for (std::size_t at = 0; at < page.used(); at = page.after(at)) {
            if (!visitor(page.entry(at))) {
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

bool IndexTree::containsKey(const std::string& key) const {
    const std::string lowest = key + std::string(kRowPointerSize, '\0');
    // The first entry that is not below is in this leaf, or starts the next one.
    std::size_t visited = 0;
    for (PageNo number = pathTo(lowest).back(); number != 0;) {
        const IndexPage page(store_, number);
        if (const std::size_t at = page.lowerBound(lowest); at < page.used()) {
            return entryKey(page.entry(at)) == key;
        }
        number = page.leaf && ++visited < store_.pageCount() ? page.next : 0;
    }
    return false;
}

/// A page of this tree that is about to be written: it must be this table's.
IndexPage IndexTree::ownPage(PageNo number) const {
    IndexPage page(store_, number);
    if (page.owner != definitionPage_) {
        damaged("an index reaches into another table");
    }
    return page;
}

PageNo IndexTree::newPage() {
    const PageNo number = allocatePage(store_);
    map_.add(number);
    return number;
}

/// Adds an entry to the page where it belongs, `height` levels above the leaves.
void IndexTree::put(std::string_view entry, std::size_t height) {
    const std::string_view wanted = height == 0 ? entry : nodeSeparator(entry);
    const auto path = pathTo(wanted);
    if (path.size() <= height) {
        damaged("an index is not of the same height everywhere");
    }
    const PageNo number = path[path.size() - 1 - height];
    const IndexPage page = ownPage(number);
    const std::size_t place = page.lowerBound(wanted);
    if (page.plain() && entry.size() <= page.freeBytes()) {
        insertEntry(store_, number, place, entry);
        return;
    }
    std::vector<std::string> entries;
    for (std::size_t at = 0; at < page.used(); at = page.after(at)) {
        if (at == place) {
            entries.emplace_back(entry);
        }
        entries.emplace_back(page.entry(at));
    }
    const bool last = place == page.used();
    if (last) {
        entries.emplace_back(entry);
    }
    fill(number, height, entries, last && page.next == 0);
}

/// Gives a page other entries. Those that do not fit go to new pages before it.
void IndexTree::fill(PageNo number, std::size_t height, const std::vector<std::string>& entries, bool atEnd) {
    const Layout& layout = store_.layout();
    const auto ends = cut(layout.pageSize - layout.entriesAt, entries, height == 0, atEnd);
    if (ends.size() > 1 && number == root_) {
        number = pushRootDown(height);
    }
    std::vector<PageNo> numbers;
    while (numbers.size() + 1 < ends.size()) {
        numbers.push_back(newPage());
    }
    numbers.push_back(number);
    IndexHead head = IndexPage(store_, number).head();
    const PageNo next = head.next;
    if (numbers.size() > 1 && head.previous != 0) {
        ownPage(head.previous);
        store_.edit(head.previous).u32(layout.nextAt, numbers.front());
    }
    const std::span<const std::string> all(entries);
    std::vector<std::string> above;
    for (std::size_t i = 0, start = 0; i < ends.size(); start = ends[i++]) {
        auto share = all.subspan(start, ends[i] - start);
        IndexHead own = head;
        own.next = next;
        if (numbers[i] != number) {
            const std::string& last = share.back();
            own.next = numbers[i + 1];
            above.push_back(
                nodeEntry(height == 0 ? std::string_view(last) : nodeSeparator(last), numbers[i]));
            if (height > 0) {
                own.tail = nodeChild(last);
                share = share.first(share.size() - 1);
            }
        }
        writeIndexPage(store_, numbers[i], own, share);
        head.previous = numbers[i];
    }
    for (const auto& entry : above) {
        put(entry, height + 1);
    }
}

/// Moves the root's contents to a new page and makes the root the node above it.
PageNo IndexTree::pushRootDown(std::size_t height) {
    const PageNo child = newPage();
    store_.edit(child).bytes(0, store_.page(root_).all());
    writeIndexPage(store_, root_,
                   {.leaf = false, .owner = definitionPage_, .tail = child, .height = height + 1}, {});
    return child;
}

void IndexTree::erase(RowId row, const std::optional<std::string>& key) {
    if (key) {
        const std::string entry = indexEntry(*key, row);
        const PageNo leaf = pathTo(entry).back();
        const IndexPage page(store_, leaf);
        const std::size_t at = page.lowerBound(entry);
        if (at < page.used() && page.entry(at) == entry) {
            eraseAt(leaf, at);
            return;
        }
    }
    std::size_t visited = 0;
    for (PageNo number = pathTo({}).back(); number != 0 && visited++ <= store_.pageCount();) {
        const IndexPage page(store_, number);
        for (std::size_t at = 0; at < page.used(); at = page.after(at)) {
            if (entryRow(page.entry(at)) == row) {
                eraseAt(number, at);
                return;
            }
        }
        number = page.next;
    }
    damaged("an index lacks a row of its table");
}

void IndexTree::eraseAt(PageNo leaf, std::size_t at) {
    const IndexPage page = ownPage(leaf);
    const std::string entry(page.entry(at));
    const bool last = page.after(at) == page.used();
    if (leaf == root_ || !last) {
        takeOut(leaf, 0, at);
    } else if (at > 0) {
        const std::string replacement(page.entry(page.before(at)));
        takeOut(leaf, 0, at);
        replaceSeparator(entry, replacement);
    } else if (!dropLeaf(leaf, entry)) {
        rebuildWithout(entry);
    }
}

void IndexTree::takeOut(PageNo number, std::size_t height, std::size_t place) {
    const IndexPage page = ownPage(number);
    if (page.plain()) {
        eraseEntry(store_, number, place);
        return;
    }
    std::vector<std::string> entries;
    for (std::size_t at = 0; at < page.used(); at = page.after(at)) {
        if (at != place) {
            entries.emplace_back(page.entry(at));
        }
    }
    fill(number, height, entries, false);
}

/// The last entry below some node has changed: the lowest node of which it is not the tail repeats it.
void IndexTree::replaceSeparator(const std::string& old, const std::string& replacement) {
    const auto path = pathTo(old);
    for (std::size_t height = 1; height < path.size(); ++height) {
        const PageNo number = path[path.size() - 1 - height];
        const IndexPage page = ownPage(number);
        const std::size_t at = page.lowerBound(old);
        if (at == page.used()) {
            continue;
        }
        if (const std::string entry(page.entry(at)); nodeSeparator(entry) == old) {
            takeOut(number, height, at);
            put(nodeEntry(replacement, nodeChild(entry)), height);
        }
        return;
    }
}

/// Takes a leaf with one last entry out of the tree. False, with nothing changed, when the node above would
/// be left with a tail alone, or does not name the leaf.
bool IndexTree::dropLeaf(PageNo leaf, const std::string& entry) {
    const Layout& layout = store_.layout();
    const auto path = pathTo(entry);
    if (path.back() != leaf) {
        return false;
    }
    const PageNo above = path[path.size() - 2];
    const IndexPage node = ownPage(above);
    if (node.before(node.used()) == 0) {
        return false;
    }
    const IndexHead head = IndexPage(store_, leaf).head();
    const std::size_t at = node.lowerBound(entry);
    if (at < node.used()) {
        takeOut(above, 1, at);
    } else {
        const std::size_t last = node.before(at);
        const std::string promoted(node.entry(last));
        takeOut(above, 1, last);
        store_.edit(above).u32(layout.tailAt, nodeChild(promoted));
        replaceSeparator(entry, std::string(nodeSeparator(promoted)));
    }
    if (head.previous != 0) {
        ownPage(head.previous);
        store_.edit(head.previous).u32(layout.nextAt, head.next);
    }
    if (head.next != 0) {
        ownPage(head.next);
        store_.edit(head.next).u32(layout.previousAt, head.previous);
    }
    map_.remove(leaf);
    freePage(store_, leaf);
    return true;
}

/// Lays the tree out again from an empty root.
void IndexTree::rebuildWithout(const std::string& entry) {
    std::vector<std::string> entries;
    std::size_t bytes = 0;
    walk([&](std::string_view each) {
        bytes += each.size();
        if (bytes / kMostCompression > store_.size()) {
            damaged("an index is larger than it can be");
        }
        if (each != entry) {
            entries.emplace_back(each);
        }
        return true;
    });
    freePages();
    UsageMap(store_, kGlobalMap).remove(root_);
    map_.add(root_);
    initRoot();
    for (const auto& each : entries) {
        put(each, 0);
    }
}

void IndexTree::initRoot() {
    writeIndexPage(store_, root_, {.owner = definitionPage_}, {});
}

void IndexTree::freePages() {
    for (const PageNo page : map_.pages()) {
        ownPage(page);
        freePage(store_, page);
    }
    map_.clear();
}

} // namespace drx9::jet
