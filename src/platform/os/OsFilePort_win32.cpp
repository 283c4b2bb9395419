#ifdef _WIN32

#include "platform/Texts.h"
#include "platform/os/OsFilePort.h"
#include "util/Paths.h"
#include "util/Text.h"

#include <algorithm>
#include <utility>
#include <windows.h>

namespace drx9 {
namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr DWORD kOneCallBytes = 1u << 30;
// Above this length plain paths are cut off by the system; the "\\?\" form is not.
constexpr std::size_t kLongPath = 240;

std::wstring wide(std::string_view text) {
    const int length = static_cast<int>(text.size());
    std::wstring result(
        static_cast<std::size_t>(::MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0)), L'\0');
    ::MultiByteToWideChar(CP_UTF8, 0, text.data(), length, result.data(), static_cast<int>(result.size()));
    return result;
}

std::string narrow(std::wstring_view text) {
    const int length = static_cast<int>(text.size());
    const int size = ::WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<std::size_t>(size), '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, text.data(), length, result.data(), size, nullptr, nullptr);
    return result;
}

std::wstring native(const std::string& path) {
    std::wstring result = wide(path);
    std::replace(result.begin(), result.end(), L'/', L'\\');
    if (result.size() < kLongPath || result.compare(0, 4, L"\\\\?\\") == 0) {
        return result;
    }
    if (result.compare(0, 2, L"\\\\") == 0) {
        return L"\\\\?\\UNC" + result.substr(1);
    }
    return result[1] == L':' ? L"\\\\?\\" + result : result;
}

FileStatus failureOf(DWORD error) {
    wchar_t buffer[512] = {};
    DWORD length = ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                    error, 0, buffer, 511, nullptr);
    while (length > 0 && (buffer[length - 1] <= L' ' || buffer[length - 1] == L'.')) {
        --length;
    }
    const std::string text =
        length > 0 ? narrow({buffer, length}) : filled(platformText::kErrorNumber, {std::to_string(error)});
    return FileStatus::failure(text, error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND);
}

FileStatus outcome(BOOL good) {
    return good ? FileStatus() : failureOf(::GetLastError());
}

/// Closes on leaving, for files whose closing has no outcome that matters.
class Handle {
public:
    explicit Handle(HANDLE handle)
        : handle_(handle) {}
    ~Handle() {
        if (open()) {
            ::CloseHandle(handle_);
        }
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    [[nodiscard]] bool open() const { return handle_ != INVALID_HANDLE_VALUE; }
    [[nodiscard]] HANDLE get() const { return handle_; }
    [[nodiscard]] HANDLE release() { return std::exchange(handle_, INVALID_HANDLE_VALUE); }

private:
    HANDLE handle_;
};

DWORD chunkOf(std::size_t left) {
    return left < kOneCallBytes ? static_cast<DWORD>(left) : kOneCallBytes;
}

FileStatus writeAll(HANDLE file, std::string_view bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        DWORD count = 0;
        if (!::WriteFile(file, bytes.data() + done, chunkOf(bytes.size() - done), &count, nullptr)) {
            return failureOf(::GetLastError());
        }
        if (count == 0) {
            return failureOf(ERROR_DISK_FULL);
        }
        done += count;
    }
    return {};
}

std::uint64_t joined(DWORD high, DWORD low) {
    return (static_cast<std::uint64_t>(high) << 32) | low;
}

std::optional<FileIdentity> identityOf(HANDLE file) {
    BY_HANDLE_FILE_INFORMATION info{};
    if (!::GetFileInformationByHandle(file, &info)) {
        return std::nullopt;
    }
    const std::uint64_t ticks =
        joined(info.ftLastWriteTime.dwHighDateTime, info.ftLastWriteTime.dwLowDateTime);
    return FileIdentity{info.dwVolumeSerialNumber, joined(info.nFileIndexHigh, info.nFileIndexLow),
                        joined(info.nFileSizeHigh, info.nFileSizeLow),
                        static_cast<std::int64_t>(ticks * 100)};
}

class Win32InputFile : public InputFile {
public:
    explicit Win32InputFile(HANDLE file)
        : file_(file) {}

    FileStatus read(std::uint64_t at, std::span<char> bytes) override {
        std::size_t done = 0;
        while (done < bytes.size()) {
            const std::uint64_t place = at + done;
            OVERLAPPED where{};
            where.Offset = static_cast<DWORD>(place);
            where.OffsetHigh = static_cast<DWORD>(place >> 32);
            DWORD count = 0;
            if (!::ReadFile(file_.get(), bytes.data() + done, chunkOf(bytes.size() - done), &count, &where)) {
                return failureOf(::GetLastError());
            }
            if (count == 0) {
                return FileStatus::failure(platformText::kFileShorter);
            }
            done += count;
        }
        return {};
    }
    [[nodiscard]] std::optional<FileIdentity> identity() const override { return identityOf(file_.get()); }

private:
    Handle file_;
};

class Win32OutputFile : public OutputFile {
public:
    explicit Win32OutputFile(HANDLE file)
        : file_(file) {}

    FileStatus write(std::string_view bytes) override { return writeAll(file_.get(), bytes); }
    FileStatus flush() override { return outcome(::FlushFileBuffers(file_.get())); }
    FileStatus close() override { return outcome(::CloseHandle(file_.release())); }

private:
    Handle file_;
};

/// The access list of the model; a file system without any, or one that we may not set, is no reason not to
/// save.
void takeAccessList(const std::wstring& path, const std::wstring& like) {
    DWORD size = 0;
    ::GetFileSecurityW(like.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    std::vector<unsigned char> descriptor(size);
    if (size > 0 &&
        ::GetFileSecurityW(like.c_str(), DACL_SECURITY_INFORMATION, descriptor.data(), size, &size)) {
        ::SetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, descriptor.data());
    }
}

DWORD attributesLike(const std::wstring& like) {
    const DWORD found = like.empty() ? INVALID_FILE_ATTRIBUTES : ::GetFileAttributesW(like.c_str());
    const DWORD kept = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE;
    return found == INVALID_FILE_ATTRIBUTES || (found & kept) == 0 ? FILE_ATTRIBUTE_NORMAL : found & kept;
}

bool isFolder(const std::wstring& path) {
    const DWORD found = ::GetFileAttributesW(path.c_str());
    return found != INVALID_FILE_ATTRIBUTES && (found & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

class Win32FilePort : public FilePort {
public:
    [[nodiscard]] bool exists(const std::string& path) const override {
        return ::GetFileAttributesW(native(path).c_str()) != INVALID_FILE_ATTRIBUTES;
    }

    [[nodiscard]] std::optional<std::uint64_t> size(const std::string& path) const override {
        const auto found = identity(path);
        return found ? std::optional(found->size) : std::nullopt;
    }

    [[nodiscard]] std::optional<FileIdentity> identity(const std::string& path) const override {
        const Handle file(::CreateFileW(native(path).c_str(), FILE_READ_ATTRIBUTES, kShareAll, nullptr,
                                        OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        return file.open() ? identityOf(file.get()) : std::nullopt;
    }

    [[nodiscard]] bool writable(const std::string& path) const override {
        const Handle file(::CreateFileW(native(path).c_str(), GENERIC_WRITE, kShareAll, nullptr,
                                        OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        // In use by another program is not the same as protected: that shows, and is named, when writing.
        return file.open() || ::GetLastError() == ERROR_SHARING_VIOLATION;
    }

    [[nodiscard]] bool folderWritable(const std::string& folder) const override {
        const std::string probe = joinPath(folder, ".drx9-" + std::to_string(processId()) + ".probe");
        const Handle file(::CreateFileW(native(probe).c_str(), GENERIC_WRITE | DELETE, kShareAll, nullptr,
                                        CREATE_NEW, FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE,
                                        nullptr));
        return file.open();
    }

    [[nodiscard]] std::string resolveLinks(const std::string& path) const override {
        const std::wstring name = native(path);
        const DWORD attributes = ::GetFileAttributesW(name.c_str());
        if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) {
            return path;
        }
        const Handle file(::CreateFileW(name.c_str(), FILE_READ_ATTRIBUTES, kShareAll, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_BACKUP_SEMANTICS, nullptr));
        wchar_t buffer[4096] = {};
        const DWORD length = file.open() ? ::GetFinalPathNameByHandleW(file.get(), buffer, 4096, 0) : 0;
        if (length == 0 || length >= 4096) {
            return path;
        }
        const std::string found = narrow({buffer, length});
        if (found.rfind("\\\\?\\UNC\\", 0) == 0) {
            return "\\" + found.substr(7);
        }
        return found.rfind("\\\\?\\", 0) == 0 ? found.substr(4) : found;
    }

    std::unique_ptr<InputFile> open(const std::string& path, FileStatus& status) const override {
        Handle file(::CreateFileW(native(path).c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING,
                                  FILE_FLAG_RANDOM_ACCESS, nullptr));
        status = outcome(file.open());
        return status.ok() ? std::make_unique<Win32InputFile>(file.release()) : nullptr;
    }

    FileStatus read(const std::string& path, std::string& bytes) const override {
        const Handle file(::CreateFileW(native(path).c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
        LARGE_INTEGER length{};
        if (!file.open() || !::GetFileSizeEx(file.get(), &length)) {
            return failureOf(::GetLastError());
        }
        std::string found(static_cast<std::size_t>(length.QuadPart), '\0');
        std::size_t done = 0;
        while (done < found.size()) {
            DWORD count = 0;
            if (!::ReadFile(file.get(), found.data() + done, chunkOf(found.size() - done), &count, nullptr)) {
                return failureOf(::GetLastError());
            }
            if (count == 0) {
                break; // cut by another program meanwhile
            }
            done += count;
        }
        found.resize(done);
        bytes = std::move(found);
        return {};
    }

    FileStatus append(const std::string& path, std::string_view bytes) override {
        // No FILE_SHARE_WRITE: the cut after a failure must not meet another program's bytes.
        Handle file(::CreateFileW(native(path).c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE,
                                  nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
        LARGE_INTEGER end{};
        if (!file.open() || !::SetFilePointerEx(file.get(), LARGE_INTEGER{}, &end, FILE_END)) {
            return failureOf(::GetLastError());
        }
        const FileStatus status = writeAll(file.get(), bytes);
        if (!status.ok()) {
            if (::SetFilePointerEx(file.get(), end, nullptr, FILE_BEGIN)) {
                ::SetEndOfFile(file.get());
            }
            return status;
        }
        return outcome(::CloseHandle(file.release()));
    }

    FileStatus remove(const std::string& path) override {
        return outcome(::DeleteFileW(native(path).c_str()));
    }

    FileStatus makeFolder(const std::string& path) override {
        const std::wstring name = native(path);
        if (isFolder(name) || ::CreateDirectoryW(name.c_str(), nullptr)) {
            return {};
        }
        const DWORD error = ::GetLastError();
        const std::string parent = folderOf(path);
        if (error != ERROR_PATH_NOT_FOUND || parent.size() >= path.size() || !makeFolder(parent).ok()) {
            return failureOf(error);
        }
        return outcome(::CreateDirectoryW(name.c_str(), nullptr));
    }

    [[nodiscard]] std::vector<std::string> list(const std::string& folder) const override {
        std::vector<std::string> names;
        WIN32_FIND_DATAW entry{};
        const HANDLE search = ::FindFirstFileW(native(joinPath(folder, "*")).c_str(), &entry);
        if (search != INVALID_HANDLE_VALUE) {
            do {
                const std::wstring_view name = entry.cFileName;
                if (name != L"." && name != L"..") {
                    names.push_back(narrow(name));
                }
            } while (::FindNextFileW(search, &entry));
            ::FindClose(search);
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    std::unique_ptr<OutputFile> create(const std::string& path, const std::string& like,
                                       FileStatus& status) override {
        const std::wstring name = native(path);
        const std::wstring model = like.empty() ? std::wstring() : native(like);
        Handle file(::CreateFileW(name.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                                  CREATE_NEW, attributesLike(model), nullptr));
        status = outcome(file.open());
        if (!file.open()) {
            return nullptr;
        }
        if (!model.empty()) {
            takeAccessList(name, model);
        }
        return std::make_unique<Win32OutputFile>(file.release());
    }

    FileStatus rename(const std::string& from, const std::string& to) override {
        return outcome(::MoveFileExW(native(from).c_str(), native(to).c_str(),
                                     MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH));
    }

    /// The rename above writes through; folders have no flush of their own here.
    FileStatus flushFolder(const std::string&) override { return {}; }

    [[nodiscard]] std::string currentFolder() const override {
        std::wstring buffer(::GetCurrentDirectoryW(0, nullptr), L'\0');
        const DWORD length = ::GetCurrentDirectoryW(static_cast<DWORD>(buffer.size()), buffer.data());
        return narrow({buffer.data(), length});
    }

    [[nodiscard]] std::uint64_t processId() const override { return ::GetCurrentProcessId(); }
};

} // namespace

std::unique_ptr<FilePort> makeOsFilePort() {
    return std::make_unique<Win32FilePort>();
}

} // namespace drx9

#endif
