#pragma once

#include "jet/Bytes.h"
#include "jet/Layout.h"
#include "jet/PageImage.h"
#include "jet/TextCodec.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace drx9::jet {

/// Names one row for its whole life: the page and slot where it was first stored.
struct RowId {
    PageNo page = 0;
    std::uint8_t row = 0;

    auto operator<=>(const RowId&) const = default; // NOLINT(modernize-use-nullptr): clang-tidy's own fault
};

/// How much of a file is read when it is opened.
enum class Reading {
    Whole,    ///< all of it: the store no longer depends on the file
    OnDemand, ///< what is asked for, when it is; the rest before the first change
};

/// The one page cache: the file in memory, every change to a page recorded so that it can be taken back.
///
/// Changes are made between begin() and either release() or rollback(); these nest, and the outermost
/// release() brings all changed pages to the file in one atomic step. The file is never touched otherwise.
class PageStore {
public:
    /// Throws JetError(CannotOpen) for what is no readable Jet 3 or 4 database. Read on demand, a page that
    /// cannot be read, or a file that another program writes meanwhile, shows itself by the same error later.
    static PageStore open(FilePort& files, const std::string& path, Reading reading = Reading::Whole);
    /// An empty image of the header page alone, which the first outermost release() writes to `path`.
    static PageStore create(FilePort& files, const std::string& path, Generation generation);

    [[nodiscard]] const Layout& layout() const { return *layout_; }
    [[nodiscard]] const TextCodec& text() const { return text_; }
    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] PageNo pageCount() const { return static_cast<PageNo>(image_.size() / layout_->pageSize); }
    /// Bytes of the file as it now is in memory.
    [[nodiscard]] std::size_t size() const { return image_.size(); }

    /// The page's bytes; valid until the next appendPage(). Throws JetError(Damaged) for a page beyond the
    /// end.
    [[nodiscard]] Bytes page(PageNo number) const;
    /// The same, refusing a page of another type.
    [[nodiscard]] Bytes page(PageNo number, PageType type) const;
    /// The page for writing; valid until the next appendPage(). Only inside begin().
    Patch edit(PageNo number);
    /// Adds a zeroed page at the end.
    PageNo appendPage();

    /// Appends page 0 of a new file: no password, General sort order, code page 1252.
    void initHeader();

    void begin();
    /// Ends the innermost begin(). The outermost one saves when anything changed; when that fails everything
    /// since it began is taken back and JetError(NotSaved or ReadOnly) thrown.
    void release();
    /// Ends the innermost begin() and takes its changes back.
    void rollback();
    [[nodiscard]] std::size_t depth() const { return undo_.size(); }
    /// Counts up whenever something that was parsed out of the pages may no longer hold.
    [[nodiscard]] std::uint64_t version() const { return version_; }
    void invalidate() { ++version_; }

    /// Counts up with every change of a page's bytes.
    [[nodiscard]] std::uint64_t changes() const { return changes_; }

    /// Why the file cannot be written, for people; empty when it can. A lock file of another program counts,
    /// beside any of the names that were used for the file.
    [[nodiscard]] std::string readOnlyReason() const;
    /// True when the file ended in mid-page: what is left of that page is not read, and nothing is written.
    [[nodiscard]] bool cutShort() const { return cutShort_; }
    /// Says under which other name (a link's) the file has been opened too.
    void addName(const std::string& path) { names_.insert(path); }
    /// True when the file on the disk is no longer the one this store was read from.
    [[nodiscard]] bool changedOnDisk() const;
    /// True when `path` leads to this store's file.
    [[nodiscard]] bool isFile(const std::string& path) const;

private:
    struct Undo {
        std::size_t imageSize = 0;
        std::map<PageNo, std::string> before;
    };

    PageStore(FilePort& files, const std::string& path);
    void save();
    void restore(Undo& undo);

    FilePort* files_;
    std::string path_;
    std::set<std::string> names_; ///< as given by those who opened the file
    const Layout* layout_ = &kJet4;
    TextCodec text_;
    PageImage image_;
    bool cutShort_ = false;
    /// Of the file as it was read or last written; nothing for a new one.
    std::optional<FileIdentity> identity_;
    std::vector<Undo> undo_;
    std::uint64_t version_ = 0;
    std::uint64_t changes_ = 0;
};

/// One change that is whole or not at all: begin() on construction, release() by commit(), else rollback().
class Change {
public:
    explicit Change(PageStore& store)
        : store_(store) {
        store_.begin();
    }
    Change(const Change&) = delete;
    Change& operator=(const Change&) = delete;
    ~Change() {
        if (open_) {
            store_.rollback();
        }
    }
    void commit() {
        open_ = false;
        store_.release();
    }

private:
    PageStore& store_;
    bool open_ = true;
};

} // namespace drx9::jet
