#include "fakes/MemoryFilePort.h"

#include "util/Paths.h"

#include <algorithm>
#include <utility>

namespace drx9 {
namespace {

constexpr int kMaxLinkHops = 40;

/// A path as the maps hold it: joinPath() puts "\\" between on Windows.
std::string key(std::string path) {
#ifdef _WIN32
    std::replace(path.begin(), path.end(), '\\', '/');
#endif
    return path;
}

FileStatus noSuchFile() {
    return FileStatus::failure("No such file or directory", true);
}

} // namespace

/// Shares the file, as an open descriptor does: removing or renaming it does not end the writing.
class MemoryFilePort::Output : public OutputFile {
public:
    Output(std::shared_ptr<File> file, std::int64_t& changes)
        : file_(std::move(file))
        , changes_(changes) {}

    FileStatus write(std::string_view bytes) override {
        if (!file_) {
            return FileStatus::failure("Bad file descriptor");
        }
        file_->bytes += bytes;
        file_->modified = ++changes_;
        return {};
    }
    FileStatus flush() override { return file_ ? FileStatus() : FileStatus::failure("Bad file descriptor"); }
    FileStatus close() override {
        const FileStatus status = flush();
        file_.reset();
        return status;
    }

private:
    std::shared_ptr<File> file_;
    std::int64_t& changes_;
};

void MemoryFilePort::addFoldersOf(const std::string& path) {
    for (std::string folder = folderOf(path); folders_.insert(folder).second;) {
        folder = folderOf(folder);
    }
}

MemoryFilePort::File& MemoryFilePort::add(const std::string& path) {
    auto& file = files_[path];
    file = std::make_shared<File>();
    file->node = ++nodes_;
    file->modified = ++changes_;
    return *file;
}

MemoryFilePort::File& MemoryFilePort::put(const std::string& path, std::string_view bytes) {
    const std::string target = resolveLinks(path);
    addFoldersOf(target);
    File* found = find(target);
    File& file = found ? *found : add(target);
    file.bytes = bytes;
    file.modified = ++changes_;
    return file;
}

void MemoryFilePort::link(const std::string& path, const std::string& target) {
    addFoldersOf(key(path));
    links_[key(path)] = target;
}

std::string MemoryFilePort::text(const std::string& path) const {
    const File* file = find(path);
    return file ? file->bytes : "<no file>";
}

const MemoryFilePort::File* MemoryFilePort::find(const std::string& path) const {
    const auto found = files_.find(resolveLinks(path));
    return found == files_.end() ? nullptr : found->second.get();
}

MemoryFilePort::File* MemoryFilePort::find(const std::string& path) {
    return const_cast<File*>(std::as_const(*this).find(path));
}

bool MemoryFilePort::exists(const std::string& path) const {
    return find(path) != nullptr || folders_.count(key(path)) != 0;
}

std::optional<std::uint64_t> MemoryFilePort::size(const std::string& path) const {
    const File* file = find(path);
    return file ? std::optional<std::uint64_t>(file->bytes.size()) : std::nullopt;
}

std::optional<FileIdentity> MemoryFilePort::identity(const std::string& path) const {
    const File* file = find(path);
    return file ? std::optional(FileIdentity{1, file->node, file->bytes.size(), file->modified})
                : std::nullopt;
}

bool MemoryFilePort::writable(const std::string& path) const {
    const File* file = find(path);
    return file && !file->writeProtected && (file->mode & 0200) != 0;
}

bool MemoryFilePort::folderWritable(const std::string& folder) const {
    return folders_.count(key(folder)) != 0 && protectedFolders_.count(key(folder)) == 0;
}

std::string MemoryFilePort::resolveLinks(const std::string& path) const {
    std::string current_ = key(path);
    for (int hop = 0; hop < kMaxLinkHops; ++hop) {
        const auto found = links_.find(current_);
        if (found == links_.end()) {
            return current_;
        }
        current_ = isAbsolutePath(found->second) ? found->second : folderOf(current_) + "/" + found->second;
    }
    return path;
}

FileStatus MemoryFilePort::read(const std::string& path, std::string& bytes) const {
    const File* file = find(path);
    if (!file) {
        return folders_.count(key(path)) ? FileStatus::failure("Is a directory") : noSuchFile();
    }
    bytes = file->bytes;
    return {};
}

FileStatus MemoryFilePort::creatable(const std::string& path) const {
    const std::string folder = folderOf(path);
    if (folders_.count(key(path))) {
        return FileStatus::failure("Is a directory");
    }
    if (!folders_.count(key(folder))) {
        return noSuchFile();
    }
    return folderWritable(folder) ? FileStatus() : FileStatus::failure("Permission denied");
}

FileStatus MemoryFilePort::append(const std::string& path, std::string_view bytes) {
    const std::string target = resolveLinks(path);
    File* file = find(target);
    if (file && !writable(target)) {
        return FileStatus::failure("Permission denied");
    }
    if (!file) {
        if (FileStatus status = creatable(target); !status.ok()) {
            return status;
        }
        file = &add(target);
    }
    file->bytes += bytes;
    file->modified = ++changes_;
    return {};
}

FileStatus MemoryFilePort::remove(const std::string& path) {
    const std::string name = key(path);
    if (!files_.count(name) && !links_.count(name)) {
        return noSuchFile();
    }
    if (!folderWritable(folderOf(path))) {
        return FileStatus::failure("Permission denied");
    }
    files_.erase(name);
    links_.erase(name);
    return {};
}

FileStatus MemoryFilePort::makeFolder(const std::string& path) {
    if (find(path)) {
        return FileStatus::failure("File exists");
    }
    addFoldersOf(key(path) + "/x");
    return {};
}

std::vector<std::string> MemoryFilePort::list(const std::string& folder) const {
    std::set<std::string> names;
    const auto add = [&](const std::string& path) {
        if (path != "/" && folderOf(path) == key(folder)) {
            names.insert(bareName(path));
        }
    };
    for (const auto& [path, file] : files_) {
        add(path);
    }
    for (const auto& [path, target] : links_) {
        add(path);
    }
    for (const auto& path : folders_) {
        add(path);
    }
    return {names.begin(), names.end()};
}

std::unique_ptr<OutputFile> MemoryFilePort::create(const std::string& path, const std::string& like,
                                                   FileStatus& status) {
    status = creatable(path);
    if (status.ok() && (exists(path) || isLink(path))) {
        status = FileStatus::failure("File exists");
    }
    if (!status.ok()) {
        return nullptr;
    }
    const File* model = like.empty() ? nullptr : find(like);
    File& file = add(key(path));
    if (model) {
        file.mode = model->mode;
        file.owner = model->owner;
    }
    return std::make_unique<Output>(files_[key(path)], changes_);
}

FileStatus MemoryFilePort::rename(const std::string& from, const std::string& to) {
    const auto found = files_.find(key(from));
    if (found == files_.end()) {
        return noSuchFile();
    }
    if (FileStatus status = creatable(to); !status.ok()) {
        return status;
    }
    const std::shared_ptr<File> file = found->second;
    files_.erase(found);
    links_.erase(key(to));
    files_[key(to)] = file;
    return {};
}

FileStatus MemoryFilePort::flushFolder(const std::string& folder) {
    return folders_.count(key(folder)) ? FileStatus() : noSuchFile();
}

} // namespace drx9
