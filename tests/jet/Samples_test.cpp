#include "DatabaseChecks.h"
#include "JetTestSupport.h"

#include <filesystem>
#include <fstream>

namespace drx9::jet {
namespace {

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
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
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
