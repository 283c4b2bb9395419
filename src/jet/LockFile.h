#pragma once

#include "platform/FilePort.h"

#include <optional>
#include <string>
#include <vector>

namespace drx9::jet {

/// Who has a database open, out of the lock file that Access keeps beside it: NAME.ldb in any case,
/// 64 bytes a user.
struct LockHolder {
    std::string computer;
    std::string user;
};

/// The users that the lock file beside `path` names; nothing when the file is free to be written. A lock file
/// without readable names gives an empty list. Where the system keeps files in use from being removed, a
/// left-behind lock file is removed; elsewhere its presence alone counts.
std::optional<std::vector<LockHolder>> lockHolders(FilePort& files, const std::string& path);

/// The same as a sentence: "in use by user Admin on computer LAB-3"; empty when the file is free.
std::string lockReason(FilePort& files, const std::string& path);

} // namespace drx9::jet
