#include "jet/PageImage.h"
#include "jet/Texts.h"
#include "util/Text.h"

#include <algorithm>

namespace drx9::jet {

namespace {
constexpr std::size_t kBlock = 16384; ///< read at a time: a few pages, as neighbours are often asked for

[[noreturn]] void cannotRead(const FileStatus& status) {
    throw JetError(Fault::CannotOpen,
                   status.notFound() ? jetText::kNoSuchFile : filled(jetText::kNotRead, {status.reason()}));
}
} // namespace

PageImage::PageImage(const FilePort& files, const std::string& path, std::size_t largest) {
    FileStatus status;
    file_ = files.open(path, status);
    if (!file_) {
        cannotRead(status);
    }
    identity_ = file_->identity();
    if (!identity_) {
        cannotRead(FileStatus::failure(jetText::kNoSize));
    }
    if (identity_->size > largest) {
        throw JetError(Fault::CannotOpen, jetText::kTooLarge);
    }
    size_ = capacity_ = static_cast<std::size_t>(identity_->size);
    bytes_.reset(new char[capacity_]); // make_unique would fill it
    read_.assign((size_ + kBlock - 1) / kBlock, false);
}

void PageImage::fetch(std::size_t at, std::size_t length) const {
    if (!file_ || length == 0) {
        return;
    }
    const std::size_t end = std::min((at + length + kBlock - 1) / kBlock, read_.size());
    for (std::size_t block = at / kBlock; block < end; ++block) {
        if (!read_[block]) {
            // One read for all that is missing side by side.
            const auto last = std::find(read_.begin() + static_cast<std::ptrdiff_t>(block),
                                        read_.begin() + static_cast<std::ptrdiff_t>(end), true);
            readBlocks(block, static_cast<std::size_t>(last - read_.begin()));
        }
    }
}

void PageImage::readBlocks(std::size_t first, std::size_t end) const {
    const std::size_t at = first * kBlock;
    const std::size_t length = std::min(end * kBlock, static_cast<std::size_t>(identity_->size)) - at;
    const FileStatus status = file_->read(at, {bytes_.get() + at, length});
    // A writer at work shows itself by a change of size or time.
    if (file_->identity() != identity_) {
        throw JetError(Fault::CannotOpen, jetText::kBeingWritten);
    }
    if (!status.ok()) {
        cannotRead(status);
    }
    std::fill(read_.begin() + static_cast<std::ptrdiff_t>(first),
              read_.begin() + static_cast<std::ptrdiff_t>(end), true);
}

void PageImage::readAll() const {
    fetch(0, size_);
    file_.reset();
}

void PageImage::resize(std::size_t size) {
    if (size > size_) {
        readAll();
    }
    if (size > capacity_) {
        capacity_ = std::max(size, capacity_ + capacity_ / 4);
        std::unique_ptr<char[]> larger(new char[capacity_]);
        std::copy_n(bytes_.get(), size_, larger.get());
        bytes_ = std::move(larger);
    }
    if (size > size_) {
        std::fill_n(bytes_.get() + size_, size - size_, '\0');
    }
    size_ = size;
}

} // namespace drx9::jet
