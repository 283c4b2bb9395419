#pragma once

#include "fakes/MemoryFilePort.h"
#include "platform/os/OsFilePort.h"

#include <filesystem>

namespace drx9 {

/// A file port with an empty folder of its own: in memory, or the system's in a temporary folder that goes
/// away.
struct FileWorld {
    std::string name;
    std::unique_ptr<FilePort> files;
    std::string folder;

    [[nodiscard]] std::string path(const std::string& bare) const { return folder + "/" + bare; }
    [[nodiscard]] std::string text(const std::string& bare) const {
        std::string bytes;
        const FileStatus status = files->read(path(bare), bytes);
        return status.ok() ? bytes : "<" + status.reason() + ">";
    }
};

inline FileWorld memoryWorld() {
    auto files = std::make_unique<MemoryFilePort>();
    (void)files->makeFolder("/data");
    return {"memory", std::move(files), "/data"};
}

class OsWorld : public FileWorld {
public:
    OsWorld()
        : FileWorld{"os", makeOsFilePort(), {}} {
        static int count = 0;
        folder = (std::filesystem::temp_directory_path() /
                  ("drx9-test-" + std::to_string(files->processId()) + "-" + std::to_string(++count)))
                     .string();
        std::filesystem::create_directories(folder);
    }
    ~OsWorld() { std::filesystem::remove_all(folder); }
    OsWorld(const OsWorld&) = delete;
    OsWorld& operator=(const OsWorld&) = delete;
};

} // namespace drx9
