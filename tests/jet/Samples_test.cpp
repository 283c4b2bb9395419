#include "DatabaseChecks.h"
#include "JetTestSupport.h"
#include "fakes/FuzzSeeds.h"

#include <cstdlib>

namespace drx9::jet {
namespace {

/// Sample files from other writers, absent from most machines: their folder, or "".
std::string sampleFolder() {
    const char* given = std::getenv("DRX9_MDB_SAMPLES");
    const std::string folder = given != nullptr ? given : DRX9_SOURCE_DIR "/../shared/mdb-samples";
    return std::filesystem::is_directory(folder) ? folder : std::string();
}

/// Real Access files: some are refused; the others are sound, and stay so over changes in every user table.
TEST(Samples, AreSoundAndStaySoundWhenChanged) {
    if (sampleFolder().empty()) {
        GTEST_SKIP() << "no sample files (DRX9_MDB_SAMPLES names their folder)";
    }
    std::size_t changes = 0;
    for (const auto& entry : std::filesystem::directory_iterator(sampleFolder())) {
        if (entry.path().extension() != ".mdb" && entry.path().extension() != ".accdb") {
            continue;
        }
        const std::string name = entry.path().filename().string();
        SCOPED_TRACE(name);
        const std::string bytes = bytesOf(entry.path());
        MemoryFilePort files;
        files.put(kPath, bytes);
        DBEngine engine(files);
        const bool refused =
            name.find("encrypted") == 0 || name.find("password") == 0 || name.find("refuse") == 0;
        EXPECT_EQ(failure([&] { (void)engine.OpenDatabase(kPath); }).empty(), !refused);
        if (!refused) {
            EXPECT_EQ(faultsOf(files), "");
            changes += fuzz::changeAndCheck(bytes, fuzz::Extent{100, 12});
        }
    }
    EXPECT_GT(changes, 300u);
}

} // namespace
} // namespace drx9::jet
