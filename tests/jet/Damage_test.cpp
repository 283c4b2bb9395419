#include "DatabaseChecks.h"
#include "JetTestSupport.h"
#include "fakes/FuzzSeeds.h"

#include <cstdlib>
#include <ctime>

namespace drx9::jet {
namespace {

#if defined(NDEBUG) && !defined(__SANITIZE_ADDRESS__)
constexpr bool kMeasured = true;
#else
constexpr bool kMeasured = false; ///< slowed down by what looks on
#endif

std::string soundFile(Generation generation, std::size_t size = 0) {
    MemoryFilePort files;
    files.put("/data/x", "");
    DBEngine engine(files);
    const auto database = engine.CreateDatabase(kPath, generation, {}, kCreated);
    Model model(*database, 7);
    model.createTable("Table 1");
    database->BeginTrans();
    for (int i = 0; i < 60; ++i) {
        model.step();
    }
    const auto set = database->OpenRecordset("Table 1");
    for (std::int64_t id = 100000; database->shared().store().size() < size; ++id) {
        addRow(*set, {{"Id", id},
                      {"Name", std::string(static_cast<std::size_t>(id % 50), 'k') + std::to_string(id)},
                      {"Note", std::string(id % 11 == 0 ? 6000 : 100, 'm')}});
    }
    database->CommitTrans();
    return files.text(kPath);
}

TEST(Refusal, SaysWhichFileAndWhy) {
    const std::string sound = soundFile(Generation::Jet4);
    const auto with = [&](std::size_t at, const std::string& bytes) {
        std::string file = sound;
        return file.replace(at, bytes.size(), bytes);
    };
    const std::pair<std::string, const char*> cases[] = {
        {"", "not an Access database"},
        {"MZ" + std::string(5000, '\0'), "not an Access database"},
        {sound.substr(0, 5000), "cut short"},
        {with(0x14, "\2"), "Access 2007"},
        {with(4, "Standard ACE DB"), "not known"},
        {with(4, "MSISAM Database"), "Microsoft Money"},
        {with(0x3E, "\x55"), "encrypted"},
        {with(0x42, "\x01"), "password"},
    };
    MemoryFilePort files;
    for (const auto& [bytes, reason] : cases) {
        files.put(kPath, bytes);
        DBEngine engine(files);
        const auto message = failure([&] { (void)engine.OpenDatabase(kPath); });
        EXPECT_EQ(message.find(std::string(kPath) + ": "), 0u) << message;
        EXPECT_NE(message.find(reason), std::string::npos) << message;
    }
    DBEngine engine(files);
    EXPECT_NE(failure([&] { (void)engine.OpenDatabase("/data/none.mdb"); }).find("no such file"),
              std::string::npos);
    EXPECT_NE(failure([&] {
                  (void)engine.CreateDatabase(kPath, Generation::Jet4, {}, kCreated);
              }).find("exists already"),
              std::string::npos);
}

/// Damaged files end in JetError or are read as far as they go; they are never changed, and changes of a file
/// without faults leave it without faults.
TEST(Damage, EndsInOneExceptionType) {
    for (const auto generation : kBoth) {
        const std::string sound = soundFile(generation);
        const std::size_t page = layoutOf(generation).pageSize;
        for (std::size_t cut = 0; cut < sound.size(); cut += 5 * page) {
            fuzz::readAll(std::string_view(sound).substr(0, cut));
            fuzz::changeAndCheck(std::string_view(sound).substr(0, cut + page / 3));
        }
        std::mt19937 random(11);
        for (int round = 0; round < 40; ++round) {
            std::string bad = sound;
            for (auto flips = random() % 8 + 1; flips > 0; --flips) {
                // Half of the flips near a page's start, where its counts and pointers are.
                const std::size_t at = random() % 2 == 0
                                           ? random() % bad.size()
                                           : random() % (bad.size() / page) * page + random() % 80;
                bad[at] = static_cast<char>(bad[at] ^ 1 << random() % 8);
            }
            fuzz::readAll(bad);
            fuzz::changeAndCheck(bad);
        }
    }
}

/// Opening, reading, changing and checking a damaged file of a megabyte takes no second, whatever its counts,
/// pointers, prefixes and bitmaps say.
TEST(Damage, CostsNoMoreThanASecond) {
    for (const auto generation : kBoth) {
        std::string sound = soundFile(generation, 1000000);
        const Layout& layout = layoutOf(generation);
        const std::size_t pages = sound.size() / layout.pageSize;
        std::mt19937 random(3);
        for (int round = 0; round < (kMeasured ? 12 : 2); ++round) {
            std::string bad = sound;
            for (auto count = 1u << random() % 8; count > 0; --count) {
                const std::size_t page = random() % pages * layout.pageSize;
                const auto type = static_cast<PageType>(bad[page]);
                if (type == PageType::IndexLeaf || type == PageType::IndexNode) {
                    bad[page + layout.prefixAt] = '\xC8';
                    std::fill_n(bad.begin() + static_cast<std::ptrdiff_t>(page + layout.bitmapAt + 20), 150,
                                '\xFF');
                } else if (random() % 2 == 0) {
                    bad.replace(page, layout.pageSize, sound, random() % pages * layout.pageSize,
                                layout.pageSize);
                } else {
                    Patch(std::span(bad))
                        .u32(page + 4 + random() % 60,
                             static_cast<std::uint32_t>(random() % pages << random() % 2 * 8));
                }
            }
            const std::clock_t start = std::clock(); // of this process alone
            fuzz::readAll(bad);
            fuzz::changeAndCheck(bad);
            EXPECT_TRUE(!kMeasured || std::clock() - start < CLOCKS_PER_SEC) << "round " << round;
        }
    }
}

/// What a check must not overlook, one fault at a time.
TEST(Damage, IsFoundByTheCheck) {
    const std::string sound = soundFile(Generation::Jet4);
    const std::size_t page = kJet4.pageSize;
    std::size_t found = 0;
    std::size_t tried = 0;
    for (std::size_t number = 2; number < sound.size() / page; ++number) {
        const auto type = static_cast<PageType>(sound[number * page]);
        if (type != PageType::Data && type != PageType::IndexLeaf && type != PageType::IndexNode) {
            continue;
        }
        for (const std::size_t at : {kFreeBytesAt, kOwnerAt}) {
            std::string bad = sound;
            bad[number * page + at] = static_cast<char>(bad[number * page + at] ^ 1);
            MemoryFilePort files;
            files.put(kPath, bad);
            ++tried;
            found += faultsOf(files).empty() ? 0 : 1;
        }
    }
    EXPECT_GT(tried, 20u);
    // Map pages and free ones are not looked at.
    EXPECT_GT(found, tried / 2);
}

TEST(Damage, ReplaysTheFuzzCorpus) {
    for (const char* target : {"jet_read", "jet_change"}) {
        replaySeeds(target, [](const std::string& bytes) {
            fuzz::readAll(bytes);
            fuzz::changeAndCheck(bytes);
        });
    }
}

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
