#include "platform/DataFolder.h"

#include "platform/AtomicReplace.h"

namespace drx9 {

namespace {
constexpr const char* kLibrary = "Monitor.mdb";

void copyLibrary(FilePort& files, const Paths& paths) {
    const std::string target = joinPath(paths.dataFolder, kLibrary);
    std::string bytes;
    if (!files.exists(target) && files.read(joinPath(paths.programFolder, kLibrary), bytes).ok()) {
        replaceFile(files, target, bytes);
    }
}
} // namespace

Paths chooseDataFolder(FilePort& files, const std::string& programFolder, const std::string& userFolder) {
    if (files.folderWritable(programFolder)) {
        return {programFolder, programFolder};
    }
    files.makeFolder(userFolder);
    Paths paths{programFolder, userFolder};
    copyLibrary(files, paths);
    return paths;
}

} // namespace drx9
