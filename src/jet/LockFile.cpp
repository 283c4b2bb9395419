#include "jet/LockFile.h"

#include "jet/TextCodec.h"
#include "jet/Texts.h"
#include "util/Paths.h"
#include "util/Text.h"

namespace drx9::jet {

namespace {

constexpr std::size_t kNameSize = 32;

#ifdef _WIN32
constexpr bool kFilesInUseCannotBeRemoved = true;
#else
constexpr bool kFilesInUseCannotBeRemoved = false;
#endif

std::string paddedName(std::string_view field) {
    std::string name(field.substr(0, field.find('\0')));
    while (!name.empty() && name.back() == ' ') {
        name.pop_back();
    }
    for (auto& c : name) {
        if (static_cast<unsigned char>(c) < 0x20 || static_cast<unsigned char>(c) >= 0x7F) {
            c = '?';
        }
    }
    return name;
}

std::string lockFileOf(FilePort& files, const std::string& path) {
    const auto slash = path.find_last_of("/\\");
    const auto dot = path.rfind('.');
    const bool hasExtension = dot != std::string::npos && (slash == std::string::npos || dot > slash);
    const std::string stem = hasExtension ? path.substr(0, dot) : path;
    if (files.exists(stem + ".ldb")) {
        return stem + ".ldb"; // also where the folder cannot be listed
    }
    const std::string folder = folderOf(path);
    const std::string bare = bareName(stem);
    for (const auto& name : files.list(folder)) {
        if (name.substr(0, bare.size()) == bare && sameName(name.substr(bare.size()), ".ldb")) {
            return joinPath(folder, name);
        }
    }
    return {};
}

} // namespace

std::optional<std::vector<LockHolder>> lockHolders(FilePort& files, const std::string& path) {
    const std::string lock = lockFileOf(files, path);
    if (lock.empty() || (kFilesInUseCannotBeRemoved && files.remove(lock).ok())) {
        return std::nullopt;
    }
    std::vector<LockHolder> holders;
    std::string bytes;
    if (files.read(lock, bytes).ok()) {
        for (std::size_t at = 0; at + 2 * kNameSize <= bytes.size(); at += 2 * kNameSize) {
            const std::string_view entry(bytes);
            LockHolder holder{paddedName(entry.substr(at, kNameSize)),
                              paddedName(entry.substr(at + kNameSize, kNameSize))};
            if (!holder.computer.empty()) {
                holders.push_back(std::move(holder));
            }
        }
    }
    return holders;
}

std::string lockReason(FilePort& files, const std::string& path) {
    const auto holders = lockHolders(files, path);
    if (!holders) {
        return {};
    }
    std::string names;
    for (const auto& holder : *holders) {
        names += names.empty() ? "" : ", ";
        names += filled(jetText::kHolder, {holder.user, holder.computer});
    }
    return filled(jetText::kInUse, {names.empty() ? jetText::kUnknownHolder : names});
}

} // namespace drx9::jet
