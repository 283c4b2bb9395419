#pragma once

#include "platform/FilePort.h"
#include "util/Paths.h"

#include <string>

namespace drx9 {

/// Decides once, at the program's start, where its files live: the program's folder, or `userFolder` (created
/// when missing) where that is not writable. On first use of the user folder the shipped Monitor.mdb is
/// copied there.
Paths chooseDataFolder(FilePort& files, const std::string& programFolder, const std::string& userFolder);

} // namespace drx9
