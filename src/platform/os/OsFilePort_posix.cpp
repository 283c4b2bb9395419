#ifndef _WIN32

#include "platform/Texts.h"
#include "platform/os/OsFilePort.h"
#include "util/Paths.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace drx9 {
namespace {

// Opening must never wait for a peer or take over a terminal: a log's name may turn out to be a pipe or a
// device.
constexpr int kOpenFlags = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
constexpr mode_t kNewFileMode = 0666; // less the umask, as every program's
constexpr mode_t kNewFolderMode = 0777;
constexpr std::size_t kReadChunk = 65536;
constexpr int kMaxLinkHops = 40;

FileStatus failureOf(int error) {
    return FileStatus::failure(std::generic_category().message(error), error == ENOENT);
}

FileStatus outcome(bool good) {
    return good ? FileStatus() : failureOf(errno);
}

/// Repeats a call that a signal interrupted.
template<typename Call>
auto retried(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR) {
        result = call();
    }
    return result;
}

int openRetried(const std::string& path, int flags, mode_t mode = 0) {
    return retried([&] { return ::open(path.c_str(), flags | kOpenFlags, mode); });
}

/// Closes on leaving, for files whose closing has no outcome that matters.
class Descriptor {
public:
    explicit Descriptor(int number)
        : number_(number) {}
    ~Descriptor() {
        if (number_ >= 0) {
            ::close(number_);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    [[nodiscard]] bool open() const { return number_ >= 0; }
    [[nodiscard]] int number() const { return number_; }
    [[nodiscard]] int release() { return std::exchange(number_, -1); }

private:
    int number_;
};

/// The number is gone after close(2) in every case but HP-UX's; an interrupted close must not be repeated.
FileStatus closed(int number) {
    return outcome(::close(number) == 0 || errno == EINTR);
}

/// Writes all; `done` tells how many bytes went out, also on failure.
FileStatus writeAll(int number, std::string_view bytes, std::size_t& done) {
    done = 0;
    while (done < bytes.size()) {
        const ssize_t count =
            retried([&] { return ::write(number, bytes.data() + done, bytes.size() - done); });
        if (count < 0) {
            return failureOf(errno);
        }
        if (count == 0) {
            return failureOf(EIO);
        }
        done += static_cast<std::size_t>(count);
    }
    return {};
}

FileStatus flushed(int number) {
#ifdef __APPLE__
    // fsync(2) stops at the drive's cache there.
    if (::fcntl(number, F_FULLFSYNC) == 0) {
        return {};
    }
#endif
    return outcome(retried([&] { return ::fsync(number); }) == 0);
}

std::int64_t modifiedNanoseconds(const struct stat& info) {
#ifdef __APPLE__
    const timespec& time = info.st_mtimespec;
#else
    const timespec& time = info.st_mtim;
#endif
    return static_cast<std::int64_t>(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

FileIdentity identityOf(const struct stat& info) {
    return {static_cast<std::uint64_t>(info.st_dev), static_cast<std::uint64_t>(info.st_ino),
            static_cast<std::uint64_t>(info.st_size), modifiedNanoseconds(info)};
}

class PosixInputFile : public InputFile {
public:
    explicit PosixInputFile(int number)
        : file_(number) {}

    FileStatus read(std::uint64_t at, std::span<char> bytes) override {
        std::size_t done = 0;
        while (done < bytes.size()) {
            const ssize_t count = retried([&] {
                return ::pread(file_.number(), bytes.data() + done, bytes.size() - done,
                               static_cast<off_t>(at + done));
            });
            if (count <= 0) {
                return count < 0 ? failureOf(errno) : FileStatus::failure(platformText::kFileShorter);
            }
            done += static_cast<std::size_t>(count);
        }
        return {};
    }
    [[nodiscard]] std::optional<FileIdentity> identity() const override {
        struct stat info {};
        return ::fstat(file_.number(), &info) == 0 ? std::optional(identityOf(info)) : std::nullopt;
    }

private:
    Descriptor file_;
};

class PosixOutputFile : public OutputFile {
public:
    explicit PosixOutputFile(int number)
        : file_(number) {}

    FileStatus write(std::string_view bytes) override {
        std::size_t done = 0;
        return writeAll(file_.number(), bytes, done);
    }
    FileStatus flush() override { return flushed(file_.number()); }
    FileStatus close() override { return closed(file_.release()); }

private:
    Descriptor file_;
};

/// Some file systems (FAT, network shares) hold no owners or modes of their own: that is no reason not to
/// save.
bool unsupported(int error) {
    return error == EPERM || error == ENOTSUP || error == ENOSYS || error == EINVAL;
}

FileStatus takeModeAndOwner(int number, const struct stat& like) {
    mode_t mode = like.st_mode & 07777;
    if (::fchown(number, like.st_uid, like.st_gid) != 0 &&
        ::fchown(number, static_cast<uid_t>(-1), like.st_gid) != 0) {
        mode &= 0777; // set-user and set-group bits must not pass to another owner
    }
    // After the owner: changing it clears those bits.
    return outcome(::fchmod(number, mode) == 0 || unsupported(errno));
}

/// Takes a partly written tail off again, unless another program has appended behind it meanwhile.
void cutTail(int number, std::size_t written) {
    const off_t end = ::lseek(number, 0, SEEK_CUR);
    struct stat now {};
    if (written > 0 && ::fstat(number, &now) == 0 && now.st_size == end) {
        // A tail that cannot be cut cannot be helped: the failure that led here is reported already.
        [[maybe_unused]] const int cut = ::ftruncate(number, end - static_cast<off_t>(written));
    }
}

bool linkTarget(const std::string& path, std::string& target) {
    std::string buffer(PATH_MAX, '\0');
    const ssize_t length = ::readlink(path.c_str(), buffer.data(), buffer.size());
    if (length <= 0 || static_cast<std::size_t>(length) == buffer.size()) {
        return false;
    }
    target = buffer.substr(0, static_cast<std::size_t>(length));
    return true;
}

/// Rights of the effective user, as open(2) will judge them.
bool accessible(const std::string& path, int rights) {
    return ::faccessat(AT_FDCWD, path.c_str(), rights, AT_EACCESS) == 0;
}

class PosixFilePort : public FilePort {
public:
    [[nodiscard]] bool exists(const std::string& path) const override {
        struct stat info {};
        return ::stat(path.c_str(), &info) == 0;
    }

    [[nodiscard]] std::optional<std::uint64_t> size(const std::string& path) const override {
        const auto found = identity(path);
        return found ? std::optional(found->size) : std::nullopt;
    }

    [[nodiscard]] std::optional<FileIdentity> identity(const std::string& path) const override {
        struct stat info {};
        if (::stat(path.c_str(), &info) != 0 || S_ISDIR(info.st_mode)) {
            return std::nullopt;
        }
        return identityOf(info);
    }

    [[nodiscard]] bool writable(const std::string& path) const override {
        return identity(path).has_value() && accessible(path, W_OK);
    }

    [[nodiscard]] bool folderWritable(const std::string& folder) const override {
        struct stat info {};
        return ::stat(folder.c_str(), &info) == 0 && S_ISDIR(info.st_mode) && accessible(folder, W_OK | X_OK);
    }

    [[nodiscard]] std::string resolveLinks(const std::string& path) const override {
        std::string current = path;
        std::string target;
        for (int hop = 0; hop < kMaxLinkHops; ++hop) {
            if (!linkTarget(current, target)) {
                return current;
            }
            current = target.front() == '/' ? target : joinPath(folderOf(current), target);
        }
        return path; // links in a circle
    }

    std::unique_ptr<InputFile> open(const std::string& path, FileStatus& status) const override {
        Descriptor file(openRetried(path, O_RDONLY));
        struct stat info {};
        status = outcome(file.open() && ::fstat(file.number(), &info) == 0);
        if (status.ok() && S_ISDIR(info.st_mode)) {
            status = failureOf(EISDIR);
        }
        return status.ok() ? std::make_unique<PosixInputFile>(file.release()) : nullptr;
    }

    FileStatus read(const std::string& path, std::string& bytes) const override {
        const Descriptor file(openRetried(path, O_RDONLY));
        struct stat info {};
        if (!file.open() || ::fstat(file.number(), &info) != 0) {
            return failureOf(errno);
        }
        std::string found;
        std::size_t length = 0;
        // One byte more than the size, so that the usual file's end shows in the same call that reads it
        // whole.
        found.resize(info.st_size > 0 ? static_cast<std::size_t>(info.st_size) + 1 : kReadChunk);
        for (;;) {
            const ssize_t count =
                retried([&] { return ::read(file.number(), found.data() + length, found.size() - length); });
            if (count < 0) {
                return failureOf(errno);
            }
            if (count == 0) {
                break;
            }
            length += static_cast<std::size_t>(count);
            if (length == found.size()) {
                found.resize(length + kReadChunk);
            }
        }
        found.resize(length);
        bytes = std::move(found);
        return {};
    }

    FileStatus append(const std::string& path, std::string_view bytes) override {
        Descriptor file(openRetried(path, O_WRONLY | O_CREAT | O_APPEND, kNewFileMode));
        if (!file.open()) {
            return failureOf(errno);
        }
        std::size_t written = 0;
        FileStatus status = writeAll(file.number(), bytes, written);
        if (!status.ok()) {
            cutTail(file.number(), written);
            return status;
        }
        return closed(file.release());
    }

    FileStatus remove(const std::string& path) override { return outcome(::unlink(path.c_str()) == 0); }

    FileStatus makeFolder(const std::string& path) override {
        if (::mkdir(path.c_str(), kNewFolderMode) == 0) {
            return {};
        }
        const int error = errno;
        struct stat info {};
        if (error == EEXIST && ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode)) {
            return {};
        }
        const std::string parent = folderOf(path);
        if (error != ENOENT || parent.size() >= path.size() || !makeFolder(parent).ok()) {
            return failureOf(error);
        }
        return outcome(::mkdir(path.c_str(), kNewFolderMode) == 0);
    }

    [[nodiscard]] std::vector<std::string> list(const std::string& folder) const override {
        std::vector<std::string> names;
        if (DIR* entries = ::opendir(folder.c_str())) {
            while (const dirent* entry = ::readdir(entries)) {
                const std::string name = entry->d_name;
                if (name != "." && name != "..") {
                    names.push_back(name);
                }
            }
            ::closedir(entries);
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    std::unique_ptr<OutputFile> create(const std::string& path, const std::string& like,
                                       FileStatus& status) override {
        struct stat model {};
        const bool modelled = !like.empty() && ::stat(like.c_str(), &model) == 0;
        // Closed to others until it has its model's owner and mode.
        Descriptor file(openRetried(path, O_WRONLY | O_CREAT | O_EXCL, modelled ? 0600 : kNewFileMode));
        status = outcome(file.open());
        if (status.ok() && modelled) {
            status = takeModeAndOwner(file.number(), model);
            if (!status.ok()) {
                ::unlink(path.c_str());
            }
        }
        return status.ok() ? std::make_unique<PosixOutputFile>(file.release()) : nullptr;
    }

    FileStatus rename(const std::string& from, const std::string& to) override {
        return outcome(::rename(from.c_str(), to.c_str()) == 0);
    }

    FileStatus flushFolder(const std::string& folder) override {
        const Descriptor entries(openRetried(folder, O_RDONLY | O_DIRECTORY));
        // A folder may be writable and yet unreadable: its entries cannot be flushed by us then.
        if (!entries.open()) {
            return outcome(errno == EACCES);
        }
        const bool good = retried([&] { return ::fsync(entries.number()); }) == 0;
        return outcome(good || unsupported(errno));
    }

    [[nodiscard]] std::string currentFolder() const override {
        std::string buffer(PATH_MAX, '\0');
        return ::getcwd(buffer.data(), buffer.size()) ? buffer.substr(0, buffer.find('\0')) : std::string();
    }

    [[nodiscard]] std::uint64_t processId() const override { return static_cast<std::uint64_t>(::getpid()); }
};

} // namespace

std::unique_ptr<FilePort> makeOsFilePort() {
    return std::make_unique<PosixFilePort>();
}

} // namespace drx9

#endif
