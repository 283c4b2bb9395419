#pragma once

#include "platform/FilePort.h"
#include "util/Paths.h"

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <utility>

namespace drx9 {

/// Files in memory: links, write protection and identities behave as on a POSIX system; modes and owners are
/// left to the system's own port. Folders are "/" separated; put() makes those above a file, everything else
/// fails in a folder that does not exist.
class MemoryFilePort : public FilePort {
public:
    struct File {
        std::string bytes;
        std::uint64_t node = 0;
        std::int64_t modified = 0;
        bool writeProtected = false;
    };

    // For the test.

    /// Creates the file or changes its bytes in place (as another program would), with the folders above it.
    File& put(const std::string& path, std::string_view bytes) {
        const std::string target = resolveLinks(path);
        addFoldersOf(target);
        File* file = find(target) ? find(target) : add(target).get();
        file->bytes = bytes;
        file->modified = ++changes_;
        return *file;
    }
    void link(const std::string& path, const std::string& target) {
        addFoldersOf(key(path));
        links_[key(path)] = target;
    }
    /// Bytes of the file that the path leads to; a note in angle brackets when there is none.
    [[nodiscard]] std::string text(const std::string& path) const {
        const File* file = find(path);
        return file ? file->bytes : "<no file>";
    }
    /// The file that the path leads to, or null. Valid until the next operation.
    [[nodiscard]] File* find(const std::string& path) const {
        const auto found = files_.find(resolveLinks(path));
        return found == files_.end() ? nullptr : found->second.get();
    }

    // The port.

    [[nodiscard]] bool exists(const std::string& path) const override { return find(path) || isFolder(path); }
    [[nodiscard]] std::optional<std::uint64_t> size(const std::string& path) const override {
        const File* file = find(path);
        return file ? std::optional<std::uint64_t>(file->bytes.size()) : std::nullopt;
    }
    [[nodiscard]] std::optional<FileIdentity> identity(const std::string& path) const override {
        const File* file = find(path);
        return file ? std::optional(identityOf(*file)) : std::nullopt;
    }
    [[nodiscard]] bool writable(const std::string& path) const override {
        const File* file = find(path);
        return file && !file->writeProtected;
    }
    [[nodiscard]] bool folderWritable(const std::string& folder) const override { return isFolder(folder); }
    [[nodiscard]] std::string resolveLinks(const std::string& path) const override {
        std::string target = key(path);
        for (auto link = links_.find(target); link != links_.end(); link = links_.find(target)) {
            target = link->second.front() == '/' ? link->second : folderOf(target) + "/" + link->second;
        }
        return target;
    }
    std::unique_ptr<InputFile> open(const std::string& path, FileStatus& status) const override {
        const auto found = files_.find(resolveLinks(path));
        status = found != files_.end() ? FileStatus()
                 : isFolder(path)      ? FileStatus::failure("Is a directory")
                                       : noSuchFile();
        return status.ok() ? std::make_unique<Input>(found->second) : nullptr;
    }
    FileStatus read(const std::string& path, std::string& bytes) const override {
        const File* file = find(path);
        if (!file) {
            return isFolder(path) ? FileStatus::failure("Is a directory") : noSuchFile();
        }
        bytes = file->bytes;
        return {};
    }
    FileStatus append(const std::string& path, std::string_view bytes) override {
        const std::string target = resolveLinks(path);
        if (!find(target)) {
            const FileStatus status = creatable(target);
            return status.ok() ? Output(add(target), changes_).write(bytes) : status;
        }
        return writable(target) ? Output(files_[target], changes_).write(bytes) : denied();
    }
    FileStatus remove(const std::string& path) override {
        const std::string name = key(path);
        if (!files_.count(name) && !links_.count(name)) {
            return noSuchFile();
        }
        files_.erase(name);
        links_.erase(name);
        return {};
    }
    FileStatus makeFolder(const std::string& path) override {
        if (find(path)) {
            return FileStatus::failure("File exists");
        }
        addFoldersOf(key(path) + "/x");
        return {};
    }
    [[nodiscard]] std::vector<std::string> list(const std::string& folder) const override {
        std::set<std::string> paths = folders_;
        std::set<std::string> names;
        for (const auto& entry : files_) {
            paths.insert(entry.first);
        }
        for (const auto& entry : links_) {
            paths.insert(entry.first);
        }
        for (const std::string& path : paths) {
            if (path != "/" && folderOf(path) == key(folder)) {
                names.insert(bareName(path));
            }
        }
        return {names.begin(), names.end()};
    }
    std::unique_ptr<OutputFile> create(const std::string& path, const std::string& /*like*/,
                                       FileStatus& status) override {
        status = creatable(path);
        if (status.ok() && (files_.count(key(path)) || links_.count(key(path)))) {
            status = FileStatus::failure("File exists");
        }
        return status.ok() ? std::make_unique<Output>(add(key(path)), changes_) : nullptr;
    }
    FileStatus rename(const std::string& from, const std::string& to) override {
        const auto found = files_.find(key(from));
        if (found == files_.end()) {
            return noSuchFile();
        }
        FileStatus status = creatable(to);
        if (status.ok()) {
            links_.erase(key(to));
            files_[key(to)] = std::exchange(found->second, nullptr);
            files_.erase(key(from));
        }
        return status;
    }
    FileStatus flushFolder(const std::string& folder) override {
        return isFolder(folder) ? FileStatus() : noSuchFile();
    }
    [[nodiscard]] std::string currentFolder() const override { return "/current"; }
    [[nodiscard]] std::uint64_t processId() const override { return 4711; }

private:
    static FileIdentity identityOf(const File& file) {
        return {1, file.node, file.bytes.size(), file.modified};
    }
    struct Input : InputFile {
        explicit Input(std::shared_ptr<File> file)
            : file_(std::move(file)) {}

        FileStatus read(std::uint64_t at, std::span<char> bytes) override {
            const bool there = at + bytes.size() <= file_->bytes.size();
            if (there) {
                file_->bytes.copy(bytes.data(), bytes.size(), at);
            }
            return there ? FileStatus() : FileStatus::failure("the file has become shorter");
        }
        [[nodiscard]] std::optional<FileIdentity> identity() const override { return identityOf(*file_); }

        std::shared_ptr<File> file_;
    };
    /// Shares the file, as an open descriptor does: removing or renaming it does not end the writing.
    struct Output : OutputFile {
        Output(std::shared_ptr<File> file, std::int64_t& changes)
            : file_(std::move(file))
            , changes_(changes) {}

        FileStatus write(std::string_view bytes) override {
            if (file_) {
                file_->bytes += bytes;
                file_->modified = ++changes_;
            }
            return flush();
        }
        FileStatus flush() override {
            return file_ ? FileStatus() : FileStatus::failure("Bad file descriptor");
        }
        FileStatus close() override {
            const FileStatus status = flush();
            file_.reset();
            return status;
        }

        std::shared_ptr<File> file_;
        std::int64_t& changes_;
    };

    static FileStatus noSuchFile() { return FileStatus::failure("No such file or directory", true); }
    static FileStatus denied() { return FileStatus::failure("Permission denied"); }
    /// A path as the maps hold it: joinPath() puts "\\" between on Windows.
    static std::string key(std::string path) {
#ifdef _WIN32
        std::replace(path.begin(), path.end(), '\\', '/');
#endif
        return path;
    }

    [[nodiscard]] bool isFolder(const std::string& path) const {
        return folders_.count(key(path)) != 0;
    }
    void addFoldersOf(const std::string& path) {
        for (std::string folder = folderOf(path); folders_.insert(folder).second;) {
            folder = folderOf(folder);
        }
    }
    [[nodiscard]] FileStatus creatable(const std::string& path) const {
        if (isFolder(path)) {
            return FileStatus::failure("Is a directory");
        }
        return isFolder(folderOf(path)) ? FileStatus() : noSuchFile();
    }
    std::shared_ptr<File> add(const std::string& path) {
        return files_[path] = std::make_shared<File>(File{"", ++nodes_, ++changes_, false});
    }

    std::map<std::string, std::shared_ptr<File>> files_;
    std::map<std::string, std::string> links_;
    std::set<std::string> folders_{"/"};
    std::uint64_t nodes_ = 0;
    std::int64_t changes_ = 0;
};

} // namespace drx9
