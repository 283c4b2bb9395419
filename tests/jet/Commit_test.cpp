#include "JetTestSupport.h"
#include "fakes/FaultyFilePort.h"

namespace drx9::jet {
namespace {

constexpr double kNewTooling = 77.0;

void changeFirstFilm(Database& database) {
    editRow(*database.OpenRecordset("Film"), {{"Tooling", kNewTooling}});
}

Value firstTooling(FilePort& files, const std::string& path = kPath) {
    DBEngine engine(files);
    return engine.OpenDatabase(path)->OpenRecordset("Film")->Value("Tooling");
}

/// Whatever step fails, once or for good: the file is the old or the new one, no other file is left, and what
/// the open database shows is what the file holds.
TEST(Commit, LeavesTheOldOrTheNewFileWhenAStepFails) {
    int refused = 0;
    for (const bool forGood : {false, true}) {
        for (int step = 1;; ++step) {
            MemoryFilePort disk;
            makeOldLibrary(disk, Generation::Jet4, {"a", "b"});
            const auto entries = disk.list("/data");
            FaultyFilePort files(disk);
            DBEngine engine(files);
            const auto database = engine.OpenDatabase(kPath);
            const Value before = firstTooling(disk);
            const std::size_t done = files.steps().size();
            files.failStep(step, forGood);
            const auto message = failure([&] { changeFirstFilm(*database); });
            const bool reached = files.steps().size() >= done + static_cast<std::size_t>(step);
            files.heal();
            SCOPED_TRACE("step " + std::to_string(step) + ": " + message);
            const Value after = firstTooling(disk);
            EXPECT_TRUE(after == before || after == Value(kNewTooling));
            EXPECT_EQ(database->OpenRecordset("Film")->Value("Tooling"), after);
            EXPECT_EQ(faultsOf(disk), "");
            if (!forGood) {
                EXPECT_EQ(disk.list("/data"), entries);
            }
            // The next try succeeds.
            EXPECT_EQ(failure([&] { changeFirstFilm(*database); }), "");
            EXPECT_EQ(firstTooling(disk), Value(kNewTooling));
            refused += message.empty() ? 0 : 1;
            if (!reached) {
                break;
            }
        }
    }
    EXPECT_GE(refused, 10);
}

/// Pages that are read on demand are those of the file as it was opened, or an error; a store that was read
/// whole needs the file no more.
TEST(Commit, ReadsWhatWasOpenedOrSaysSo) {
    struct Case {
        const char* what;
        std::function<void(MemoryFilePort&, FaultyFilePort&)> event;
        const char* reading; ///< failure of reading on
        const char* commit;
    };
    const auto replace = [](MemoryFilePort& disk, FaultyFilePort&) {
        disk.put("/data/other", std::string(200000, '\0'));
        disk.rename("/data/other", kPath);
    };
    const Case cases[] = {
        {"nothing", [](auto&, auto&) {}, "", ""},
        {"replaced", replace, "", "another program changed the file meanwhile"},
        {"removed", [](auto& disk, auto&) { disk.remove(kPath); }, "", "changed the file meanwhile"},
        {"written in place", [](auto& disk, auto&) { disk.put(kPath, disk.text(kPath)); },
         "it is being written by another program", "changed the file meanwhile"},
        {"cut", [](auto& disk, auto&) { disk.put(kPath, "Jet"); }, "it is being written by another program",
         "changed the file meanwhile"},
        {"unreadable", [](auto&, auto& files) { files.failKind(FileStep::Read); },
         "it cannot be read: Input/output error", ""},
    };
    for (const auto& c : cases) {
        for (const Reading reading : {Reading::Whole, Reading::OnDemand}) {
            MemoryFilePort disk;
            makeOldLibrary(disk, Generation::Jet4, {"a", "b"});
            FaultyFilePort files(disk);
            DBEngine engine(files);
            const auto database = engine.OpenDatabase(kPath, reading);
            c.event(disk, files);
            SCOPED_TRACE(std::string(c.what) + (reading == Reading::Whole ? ", whole" : ""));
            std::vector<std::vector<Value>> rows;
            const std::string reason = reading == Reading::Whole ? "" : c.reading;
            const std::string said = failure([&] { rows = rowsOf(*database, "Film"); });
            EXPECT_TRUE(said.empty() == reason.empty() && said.find(reason) != std::string::npos) << said;
            EXPECT_EQ(rows.size(), reason.empty() ? 2U : 0U);
            if (reason.empty()) {
                const std::string saving = failure([&] { changeFirstFilm(*database); });
                EXPECT_TRUE(saving.empty() == !*c.commit && saving.find(c.commit) != std::string::npos)
                    << saving;
            }
        }
    }
}

} // namespace
} // namespace drx9::jet
