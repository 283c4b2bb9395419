#pragma once

#include "platform/FilePort.h"

#include <map>
#include <set>

namespace drx9 {

/// Files in memory: modes, owners, links, write protection and identities behave as on a POSIX system.
/// Folders are
/// "/" separated; put() makes those above a file, everything else fails in a folder that does not exist.
class MemoryFilePort : public FilePort {
public:
    struct File {
        std::string bytes;
        unsigned mode = 0644;
        unsigned owner = 1000;
        std::uint64_t node = 0;
        std::int64_t modified = 0;
        bool writeProtected = false;
    };

    // For the test.

    /// Creates the file or changes its bytes in place (as another program would), with the folders above it.
    File& put(const std::string& path, std::string_view bytes);
    void link(const std::string& path, const std::string& target);
    /// Creates nothing in the folder from now on.
    void protectFolder(const std::string& folder) { protectedFolders_.insert(folder); }
    /// Bytes of the file that the path leads to; a note in angle brackets when there is none.
    [[nodiscard]] std::string text(const std::string& path) const;
    /// The file that the path leads to, or null. Valid until the next operation.
    [[nodiscard]] File* find(const std::string& path);
    [[nodiscard]] const File* find(const std::string& path) const;
    [[nodiscard]] bool isLink(const std::string& path) const { return links_.count(path) != 0; }
    std::string current = "/current";

    // The port.

    [[nodiscard]] bool exists(const std::string& path) const override;
    [[nodiscard]] std::optional<std::uint64_t> size(const std::string& path) const override;
    [[nodiscard]] std::optional<FileIdentity> identity(const std::string& path) const override;
    [[nodiscard]] bool writable(const std::string& path) const override;
    [[nodiscard]] bool folderWritable(const std::string& folder) const override;
    [[nodiscard]] std::string resolveLinks(const std::string& path) const override;
    FileStatus read(const std::string& path, std::string& bytes) const override;
    FileStatus append(const std::string& path, std::string_view bytes) override;
    FileStatus remove(const std::string& path) override;
    FileStatus makeFolder(const std::string& path) override;
    [[nodiscard]] std::vector<std::string> list(const std::string& folder) const override;
    std::unique_ptr<OutputFile> create(const std::string& path, const std::string& like,
                                       FileStatus& status) override;
    FileStatus rename(const std::string& from, const std::string& to) override;
    FileStatus flushFolder(const std::string& folder) override;
    [[nodiscard]] std::string currentFolder() const override { return current; }
    [[nodiscard]] std::uint64_t processId() const override { return 4711; }

private:
    class Output;

    void addFoldersOf(const std::string& path);
    FileStatus creatable(const std::string& path) const;
    File& add(const std::string& path);

    std::map<std::string, std::shared_ptr<File>> files_;
    std::map<std::string, std::string> links_;
    std::set<std::string> folders_{"/"};
    std::set<std::string> protectedFolders_;
    std::uint64_t nodes_ = 0;
    std::int64_t changes_ = 0;
};

} // namespace drx9
