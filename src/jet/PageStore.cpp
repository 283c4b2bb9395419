#include "jet/PageStore.h"

#include "jet/LockFile.h"
#include "platform/AtomicReplace.h"

#include <array>
#include <bit>

namespace drx9::jet {

namespace {

constexpr std::size_t kNameAt = 4;
constexpr std::size_t kNameSize = 15;
constexpr std::string_view kName = "Standard Jet DB";
constexpr std::size_t kVersionAt = 0x14;
constexpr std::size_t kMaskedAt = 0x18;
constexpr std::size_t kCodePageAt = 0x3C;
constexpr std::size_t kEncryptionKeyAt = 0x3E;
constexpr std::size_t kCreatedAt = 0x72; ///< Jet 4
/// 2015-11-21, the time that goes with the security ids of a new Jet 4 file.
constexpr std::string_view kCreated = "\x3E\x85\xD3\x3B\x3E\xAB\xE4\x40";
constexpr std::size_t kClearAt = 0x98; ///< Jet 4: engine's version in clear
constexpr std::size_t kCommitTableSize =
    512; ///< at the header's end; a slot of zero would mean a dead writer
constexpr std::array<unsigned char, 4> kMaskKey = {0xC7, 0xDA, 0x39, 0x6B};

/// Lays the header's fixed mask over the bytes; the same again takes it off. The mask is the RC4 stream of a
/// 4-byte key.
void mask(std::span<char> bytes) {
    std::array<unsigned char, 256> state{};
    for (std::size_t i = 0; i < state.size(); ++i) {
        state[i] = static_cast<unsigned char>(i);
    }
    for (std::size_t i = 0, j = 0; i < state.size(); ++i) {
        j = (j + state[i] + kMaskKey[i % kMaskKey.size()]) & 0xFF;
        std::swap(state[i], state[j]);
    }
    std::size_t i = 0;
    std::size_t j = 0;
    for (auto& byte : bytes) {
        i = (i + 1) & 0xFF;
        j = (j + state[i]) & 0xFF;
        std::swap(state[i], state[j]);
        byte = static_cast<char>(byte ^ state[(state[i] + state[j]) & 0xFF]);
    }
}

[[noreturn]] void cannotOpen(const std::string& why) {
    throw JetError(Fault::CannotOpen, why);
}

const Layout& layoutByVersion(const Bytes& header) {
    constexpr std::array<const char*, 5> kLater = {"2007", "2010", "2013", "2016", "2019"};
    const auto version = header.u32(kVersionAt);
    const auto name = header.part(kNameAt, kNameSize);
    if (name == "MSISAM Database") {
        cannotOpen("it is a Microsoft Money file, not an Access database");
    }
    if (name != kName && name != "Standard ACE DB") {
        cannotOpen("it is not an Access database");
    }
    if (version >= 2 && version < 2 + kLater.size()) {
        cannotOpen(std::string("it is an Access ") + kLater[version - 2] +
                   " file; only Access 97 to 2003 files (.mdb) can be opened");
    }
    if (version > 1 || name != kName) {
        cannotOpen("it is of an Access version that is not known");
    }
    return version == 0 ? kJet3 : kJet4;
}

/// Jet 4 stores the password under the creation day, repeated; so an empty one shows the same four bytes all
/// along.
bool hasPassword(const Layout& layout, const Bytes& header) {
    std::string day;
    if (layout.generation == Generation::Jet4) {
        const double created = std::bit_cast<double>(header.u64(kCreatedAt));
        const bool sane = created > -1e6 && created < 1e6;
        append(day, 4, sane ? static_cast<std::uint32_t>(static_cast<std::int32_t>(created)) : 0);
    } else {
        day.assign(4, '\0');
    }
    const auto password = header.part(layout.passwordAt, layout.passwordSize);
    for (std::size_t i = 0; i < password.size(); ++i) {
        if (password[i] != day[i % day.size()]) {
            return true;
        }
    }
    return false;
}

} // namespace

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
    store.adoptHeader();
    return store;
}

PageStore PageStore::create(FilePort& files, const std::string& path, Generation generation) {
    PageStore store(files, path);
    if (files.exists(store.path_)) {
        cannotOpen("it exists already");
    }
    store.layout_ = &layoutOf(generation);
    store.text_ = TextCodec(generation, 1252);
    return store;
}

void PageStore::adoptHeader() {
    const Bytes start(image_.view(0, std::min(image_.size(), kJet3.pageSize)));
    if (start.size() < kMaskedAt) {
        cannotOpen("it is not an Access database");
    }
    layout_ = &layoutByVersion(start);
    if (image_.size() < 3 * layout_->pageSize) {
        cannotOpen("it is cut short");
    }
    cutShort_ = image_.size() % layout_->pageSize != 0;
    image_.resize(image_.size() / layout_->pageSize * layout_->pageSize);
    std::string plain(image_.view(0, layout_->pageSize));
    mask(std::span(plain).subspan(kMaskedAt, layout_->maskedSize));
    const Bytes header(plain);
    if (header.u32(kEncryptionKeyAt) != 0) {
        cannotOpen("it is encrypted");
    }
    if (hasPassword(*layout_, header)) {
        cannotOpen("it is protected by a password");
    }
    const auto codePage = header.u16(kCodePageAt);
    text_ = TextCodec(layout_->generation, codePage == 0 ? 1252 : codePage);
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
        rejected("the database is full: it cannot grow beyond " + std::to_string(layout_->largestFile >> 30) +
                 " GiB");
    }
    image_.resize(image_.size() + layout_->pageSize);
    return number;
}

void PageStore::initHeader() {
    const Layout& layout = *layout_;
    const bool jet4 = layout.generation == Generation::Jet4;
    Patch page = edit(appendPage());
    page.u32(0, 0x100);
    page.bytes(kNameAt, kName);
    page.u32(kVersionAt, jet4 ? 1 : 0);
    page.bytes(kMaskedAt, std::string_view("\0\1\0\0\1\1\0\0\2\0\0\0\3\0\0\0\4\0\0\0\5\0\0\0", 24));
    page.u16(layout.sortOrderAt, 0x0409);
    page.u16(kCodePageAt, 1252);
    page.u32(layout.buildAt, jet4 ? 0x261C : 0x0D64);
    if (jet4) {
        page.bytes(kCreatedAt, kCreated);
        const auto day = static_cast<std::uint32_t>(std::bit_cast<double>(Bytes(kCreated).u64(0)));
        for (std::size_t at = 0; at < layout.passwordSize; at += 4) {
            page.u32(layout.passwordAt + at, day);
        }
        page.bytes(kClearAt, std::string_view("\x54\x06\0\0"
                                              "4.0\0",
                                              8));
    }
    mask(image_.part(kMaskedAt, layout.maskedSize));
    for (std::size_t at = layout.pageSize - kCommitTableSize; at < layout.pageSize; at += 2) {
        page.u16(at, at == layout.pageSize - kCommitTableSize ? 0x0101 : 0x0100);
    }
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
/// (flush of the folder): then the new file stands, and so does the image.
void PageStore::save() {
    if (const auto reason = readOnlyReason(); !reason.empty()) {
        rollback();
        throw JetError(Fault::ReadOnly, "the change was not saved: " + reason);
    }
    bool renaming = false;
    const auto status = replaceFile(*files_, path_, image_.all(), [&] {
        renaming = !changedOnDisk();
        return renaming ? FileStatus() : FileStatus::failure("another program changed the file meanwhile");
    });
    const bool stands = status.ok() || (renaming && changedOnDisk());
    if (stands) {
        identity_ = files_->identity(path_);
    }
    if (status.ok()) {
        return;
    }
    if (stands) {
        undo_.clear();
        throw JetError(Fault::NotSaved,
                       "the change is in the file but may not outlast a power failure: " + status.reason());
    }
    rollback();
    throw JetError(Fault::NotSaved, "the change was not saved: " + status.reason());
}

std::string PageStore::readOnlyReason() const {
    if (cutShort_) {
        return "the file is cut short";
    }
    if (files_->exists(path_) && !files_->writable(path_)) {
        return "the file is read-only";
    }
    const auto slash = path_.find_last_of("/\\");
    if (slash != std::string::npos) {
        const std::string folder = path_.substr(0, std::max<std::size_t>(slash, 1));
        if (!files_->folderWritable(folder)) {
            return files_->exists(folder) ? "its folder is read-only" : "its folder does not exist";
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
