#pragma once

#include <string>

namespace drx9 {

/// Folders of the program, found once at start. Tests point the whole program at a temporary folder.
struct Paths {
    std::string programFolder; ///< holds the executable
    /// Where relative names resolve: the program's folder, or the per-user one where that is not writable.
    std::string dataFolder;

    /// Absolute path of a name: itself when absolute, else below the data folder.
    [[nodiscard]] std::string resolve(const std::string& name) const;
};

/// The library that an upload fills, in the data folder. It is never remembered as the operator's own.
inline constexpr const char* kUploadFile = "UploadData.mdb";

/// Text after the last "\" or "/".
std::string bareName(const std::string& path);
/// Text up to and without the last separator; "." when there is none.
std::string folderOf(const std::string& path);
bool isAbsolutePath(const std::string& path);
std::string joinPath(const std::string& folder, const std::string& name);

} // namespace drx9
