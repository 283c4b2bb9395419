#include "platform/AtomicReplace.h"

#include "platform/Texts.h"
#include "util/Paths.h"
#include "util/Text.h"

namespace drx9 {
namespace {

constexpr int kMaxTemporaryNames = 1000;

/// Beside the target, of a length that does not depend on the target's name (which may be as long as the file
/// system allows). A name that exists belongs to another program, on this machine or another, or to a dead
/// one.
std::string freeTemporaryName(const FilePort& files, const std::string& folder) {
    const std::string stem = ".drx9-" + std::to_string(files.processId()) + "-";
    for (int i = 1; i <= kMaxTemporaryNames; ++i) {
        std::string path = joinPath(folder, stem + std::to_string(i) + ".tmp");
        if (!files.exists(path)) {
            return path;
        }
    }
    return {};
}

FileStatus writeWhole(OutputFile& file, std::string_view bytes) {
    FileStatus status = file.write(bytes);
    if (status.ok()) {
        status = file.flush();
    }
    // Closed whatever came before: an open file cannot be removed on every system.
    FileStatus closed = file.close();
    return status.ok() ? closed : status;
}

FileStatus withdraw(FilePort& files, const std::string& temporary, const FileStatus& why) {
    const FileStatus removed = files.remove(temporary);
    if (removed.ok() || removed.notFound()) {
        return why;
    }
    return FileStatus::failure(
        filled(platformText::kTemporaryLeft, {why.reason(), bareName(temporary), removed.reason()}),
        why.notFound());
}

} // namespace

FileStatus replaceFile(FilePort& files, const std::string& path, std::string_view bytes,
                       const std::function<FileStatus()>& beforeRename) {
    const std::string target = files.resolveLinks(path);
    if (files.exists(target) && !files.writable(target)) {
        return FileStatus::failure(platformText::kWriteProtected);
    }
    const std::string folder = folderOf(target);
    const std::string temporary = freeTemporaryName(files, folder);
    if (temporary.empty()) {
        return FileStatus::failure(platformText::kTooManyTemporaries);
    }
    FileStatus status;
    const std::unique_ptr<OutputFile> file = files.create(temporary, target, status);
    if (!file) {
        return status;
    }
    status = writeWhole(*file, bytes);
    if (status.ok() && beforeRename) {
        status = beforeRename();
    }
    if (status.ok()) {
        status = files.rename(temporary, target);
    }
    return status.ok() ? files.flushFolder(folder) : withdraw(files, temporary, status);
}

} // namespace drx9
