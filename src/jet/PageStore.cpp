#include "jet/PageStore.h"

#include "jet/FileHeader.h"
#include "jet/LockFile.h"
#include "jet/Texts.h"
#include "platform/AtomicReplace.h"
#include "util/Text.h"

namespace drx9::jet {

PageStore::PageStore(FilePort& files, const std::string& path)
    : files_(&files)
    , path_(files.resolveLinks(path))
    , names_{path, path_} {}

PageStore PageStore::open(FilePort& files, const std::string& path, Reading reading) {
    PageStore store(files, path);
    store.image_ = PageImage(files, store.path_, kJet4.largestFile);
    store.identity_ = store.image_.identity();
    if (reading == Reading::Whole) {
        store.image_.readAll();
    }
    const FileHeader header = FileHeader::read(store.image_);
    const std::size_t pageSize = header.layout->pageSize;
    store.layout_ = header.layout;
    store.text_ = TextCodec(header.layout->generation, header.codePage);
    store.cutShort_ = store.image_.size() % pageSize != 0;
    store.image_.resize(store.image_.size() / pageSize * pageSize);
    return store;
}

PageStore PageStore::create(FilePort& files, const std::string& path, Generation generation) {
    PageStore store(files, path);
    if (files.exists(store.path_)) {
        throw JetError(Fault::CannotOpen, jetText::kExists);
    }
    store.layout_ = &layoutOf(generation);
    store.text_ = TextCodec(generation, kUsualCodePage);
    return store;
}

Bytes PageStore::page(PageNo number) const {
    if (number >= pageCount()) {
        damaged("it refers to page " + std::to_string(number) + " of " + std::to_string(pageCount()));
    }
    return Bytes(image_.view(number * layout_->pageSize, layout_->pageSize));
}

Bytes PageStore::page(PageNo number, PageType type) const {
    const Bytes bytes = page(number);
    if (bytes.u8(0) != static_cast<std::uint8_t>(type)) {
        damaged("page " + std::to_string(number) + " is not of the type it should be");
    }
    return bytes;
}

Patch PageStore::edit(PageNo number) {
    const Bytes bytes = page(number);
    if (undo_.empty()) {
        throw std::logic_error("a page is edited outside a change");
    }
    ++changes_;
    auto& undo = undo_.back();
    if (number * layout_->pageSize < undo.imageSize && !undo.before.contains(number)) {
        undo.before.emplace(number, bytes.all());
    }
    return Patch(image_.part(number * layout_->pageSize, layout_->pageSize));
}

PageNo PageStore::appendPage() {
    const PageNo number = pageCount();
    if (image_.size() + layout_->pageSize > layout_->largestFile) {
        rejected(filled(jetText::kFull, {std::to_string(layout_->largestFile >> 30)}));
    }
    image_.resize(image_.size() + layout_->pageSize);
    return number;
}

void PageStore::initHeader() {
    const PageNo number = appendPage();
    edit(number);
    FileHeader::write(*layout_, image_.part(number * layout_->pageSize, layout_->pageSize));
}

void PageStore::begin() {
    image_.readAll();
    undo_.push_back({image_.size(), {}});
}

void PageStore::release() {
    auto& inner = undo_.back();
    if (undo_.size() == 1) {
        if (!inner.before.empty() || inner.imageSize != image_.size()) {
            save();
        }
        undo_.clear();
        return;
    }
    auto& outer = undo_[undo_.size() - 2];
    for (auto& [number, bytes] : inner.before) {
        if (number * layout_->pageSize < outer.imageSize) {
            outer.before.try_emplace(number, std::move(bytes));
        }
    }
    undo_.pop_back();
}

void PageStore::rollback() {
    restore(undo_.back());
    undo_.pop_back();
}

void PageStore::restore(Undo& undo) {
    image_.resize(undo.imageSize);
    for (const auto& [number, bytes] : undo.before) {
        bytes.copy(image_.part(number * layout_->pageSize, bytes.size()).data(), bytes.size());
    }
    ++version_;
    ++changes_;
}

/// Saves the image, or takes the outermost change back and throws. The replace may fail after its rename
/// (flush of the folder): then the new file stays, and so does the image.
void PageStore::save() {
    if (const auto reason = readOnlyReason(); !reason.empty()) {
        rollback();
        throw JetError(Fault::ReadOnly, filled(jetText::kNotSaved, {reason}));
    }
    bool renaming = false;
    const auto status = replaceFile(*files_, path_, image_.all(), [&] {
        renaming = !changedOnDisk();
        return renaming ? FileStatus() : FileStatus::failure(jetText::kChangedMeanwhile);
    });
    const bool replaced = status.ok() || (renaming && changedOnDisk());
    if (replaced) {
        identity_ = files_->identity(path_);
    }
    if (status.ok()) {
        return;
    }
    if (replaced) {
        undo_.clear();
        throw JetError(Fault::NotSaved, filled(jetText::kMayNotLast, {status.reason()}));
    }
    rollback();
    throw JetError(Fault::NotSaved, filled(jetText::kNotSaved, {status.reason()}));
}

std::string PageStore::readOnlyReason() const {
    if (cutShort_) {
        return jetText::kLastPageCut;
    }
    if (files_->exists(path_) && !files_->writable(path_)) {
        return jetText::kReadOnly;
    }
    const auto slash = path_.find_last_of("/\\");
    if (slash != std::string::npos) {
        const std::string folder = path_.substr(0, std::max<std::size_t>(slash, 1));
        if (!files_->folderWritable(folder)) {
            return files_->exists(folder) ? jetText::kFolderReadOnly : jetText::kNoFolder;
        }
    }
    std::string reason;
    for (auto name = names_.begin(); name != names_.end() && reason.empty(); ++name) {
        reason = lockReason(*files_, *name);
    }
    return reason;
}

bool PageStore::isFile(const std::string& path) const {
    const auto other = files_->identity(path);
    return files_->resolveLinks(path) == path_ || (other && identity_ && other->device == identity_->device &&
                                                   other->node == identity_->node && other->node != 0);
}

bool PageStore::changedOnDisk() const {
    return files_->identity(path_) != identity_;
}

} // namespace drx9::jet
