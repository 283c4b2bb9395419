#pragma once

#include "platform/FilePort.h"

#include <functional>
#include <string>
#include <string_view>

namespace drx9 {

/// Replaces the contents of `path` in one step, or creates the file: a temporary file beside the target,
/// every call's result checked (create, write, flush, close), rename, flush of the folder. Mode, owner where
/// possible and a link's target are kept. On any failure before the rename the old file is untouched and the
/// temporary one is gone; a failure of the folder's flush after the rename is reported, the new file stays.
/// An existing file that this process may not write is refused, although renaming over it would work. Where
/// the temporary file cannot be removed the reason names it.
///
/// `beforeRename`, if given, is asked last before the rename; a failure it returns abandons the replace (used
/// to notice that another program changed the file meanwhile).
FileStatus replaceFile(FilePort& files, const std::string& path, std::string_view bytes,
                       const std::function<FileStatus()>& beforeRename = {});

} // namespace drx9
