#pragma once

#include "platform/Texts.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace drx9 {

/// Outcome of one file operation: empty when it succeeded, else a reason for people ("No space left on
/// device"). Never throws; the caller names the file.
class FileStatus {
public:
    FileStatus() = default;
    static FileStatus failure(std::string reason, bool notFound = false) {
        FileStatus status;
        status.reason_ = reason.empty() ? std::string(platformText::kUnknownError) : std::move(reason);
        status.notFound_ = notFound;
        return status;
    }

    [[nodiscard]] bool ok() const { return reason_.empty(); }
    /// True when the operation failed because the file does not exist.
    [[nodiscard]] bool notFound() const { return notFound_; }
    [[nodiscard]] const std::string& reason() const { return reason_; }

private:
    std::string reason_;
    bool notFound_ = false;
};

/// What tells one state of a file from another: compare two to see whether somebody wrote or replaced the
/// file.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t node = 0;
    std::uint64_t size = 0;
    std::int64_t modifiedNanoseconds = 0; ///< since the system's epoch; only equality means anything

    bool operator==(const FileIdentity&) const = default;
};

/// A file open for reading at any place: the file that was opened, also when its name has gone to another one
/// since. Others may write, remove or replace it meanwhile; on Windows replacing it fails while it is open.
class InputFile {
public:
    virtual ~InputFile() = default;
    /// Fills `bytes` from the place `at`; fails when the file ends before that.
    virtual FileStatus read(std::uint64_t at, std::span<char> bytes) = 0;
    /// Nothing when the system does not tell.
    [[nodiscard]] virtual std::optional<FileIdentity> identity() const = 0;
};

/// A file open for writing. Destroying it closes it; a result that matters is taken from close().
class OutputFile {
public:
    virtual ~OutputFile() = default;
    /// Writes all of the bytes or fails; part of them may have been written then.
    virtual FileStatus write(std::string_view bytes) = 0;
    /// Brings what was written to the disk itself.
    virtual FileStatus flush() = 0;
    virtual FileStatus close() = 0;
};

/// The operating system's files. Paths are UTF-8; both separators are accepted on Windows, "/" elsewhere.
/// Relative paths are the caller's mistake: callers resolve against the data folder first.
///
/// No operation throws. Everything that saves goes through replaceFile() of AtomicReplace.h, which is built
/// on the primitives here, so that a test can fail each step on its own.
class FilePort {
public:
    virtual ~FilePort() = default;

    [[nodiscard]] virtual bool exists(const std::string& path) const = 0;
    /// Size in bytes, nothing when there is no such file (or it is a folder; so also identity()).
    [[nodiscard]] virtual std::optional<std::uint64_t> size(const std::string& path) const = 0;
    [[nodiscard]] virtual std::optional<FileIdentity> identity(const std::string& path) const = 0;
    /// True when the file exists and this process may write it (permissions, read-only media).
    [[nodiscard]] virtual bool writable(const std::string& path) const = 0;
    /// True when files can be created in the folder.
    [[nodiscard]] virtual bool folderWritable(const std::string& folder) const = 0;
    /// Follows links to the file that holds the bytes; the path itself when it is no link or does not exist.
    [[nodiscard]] virtual std::string resolveLinks(const std::string& path) const = 0;

    /// Null with the reason in `status` on failure; a folder fails.
    virtual std::unique_ptr<InputFile> open(const std::string& path, FileStatus& status) const = 0;
    /// Reads the whole file into `bytes`; on failure `bytes` is left as it was.
    virtual FileStatus read(const std::string& path, std::string& bytes) const = 0;
    /// Opens (creating it when missing), writes the bytes at the end and closes: nothing is kept open, so a
    /// crash loses nothing that was reported as written. On failure nothing of the bytes is left in the file
    /// (a partly written tail is cut off again).
    virtual FileStatus append(const std::string& path, std::string_view bytes) = 0;
    virtual FileStatus remove(const std::string& path) = 0;
    /// Makes the folder and those above it; one that exists already is fine.
    virtual FileStatus makeFolder(const std::string& path) = 0;
    /// Names (not paths) of the folder's entries, sorted; empty when it cannot be read.
    [[nodiscard]] virtual std::vector<std::string> list(const std::string& folder) const = 0;

    // Steps of an atomic replace.

    /// Creates a new file that must not exist yet. Where `like` names an existing file its mode, and its
    /// owner where the system allows it, are given to the new one. Null with the reason in `status` on
    /// failure.
    virtual std::unique_ptr<OutputFile> create(const std::string& path, const std::string& like,
                                               FileStatus& status) = 0;
    /// Renames over an existing target in one step.
    virtual FileStatus rename(const std::string& from, const std::string& to) = 0;
    /// Brings the folder's entries to the disk (no effect where the system has no such notion).
    virtual FileStatus flushFolder(const std::string& folder) = 0;

    // Folders of the program.

    [[nodiscard]] virtual std::string currentFolder() const = 0;
    /// Number that tells this process from others alive at the same time; part of temporary names.
    [[nodiscard]] virtual std::uint64_t processId() const = 0;
};

} // namespace drx9
