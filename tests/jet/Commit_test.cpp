#include "JetTestSupport.h"
#include "fakes/FaultyFilePort.h"
#include "platform/os/OsFilePort.h"

#include <filesystem>

#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace drx9::jet {
namespace {

constexpr double kNewTooling = 77.0;

void changeFirstFilm(Database& database) {
    const auto set = database.OpenRecordset("Film");
    set->Edit();
    set->SetValue("Tooling", kNewTooling);
    set->Update();
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
            disk.put("/data/x", "");
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

TEST(Commit, LeavesTheOldFileOnAFullDisk) {
    MemoryFilePort disk;
    disk.put("/data/x", "");
    makeOldLibrary(disk, Generation::Jet3, {"a", "b"});
    FaultyFilePort files(disk);
    DBEngine engine(files);
    const auto database = engine.OpenDatabase(kPath);
    const std::string before = disk.text(kPath);
    files.fillAfter(5000);
    EXPECT_NE(failure([&] { changeFirstFilm(*database); }).find("No space left"), std::string::npos);
    EXPECT_EQ(disk.text(kPath), before);
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
            disk.put("/data/x", "");
            makeOldLibrary(disk, Generation::Jet4, {"a", "b"});
            FaultyFilePort files(disk);
            DBEngine engine(files);
            const auto database = engine.OpenDatabase(kPath, reading);
            c.event(disk, files);
            SCOPED_TRACE(std::string(c.what) + (reading == Reading::Whole ? ", whole" : ""));
            std::vector<std::string> rows;
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

#ifndef _WIN32

/// Ends the process, as kill -9 would, when a given step is asked for.
class DeadlyFilePort : public FaultyFilePort {
public:
    DeadlyFilePort(FilePort& inner, std::size_t step)
        : FaultyFilePort(inner)
        , step_(step) {}
    std::unique_ptr<OutputFile> create(const std::string& path, const std::string& like,
                                       FileStatus& status) override {
        die();
        auto file = FaultyFilePort::create(path, like, status);
        return file ? std::make_unique<Output>(*this, std::move(file)) : nullptr;
    }
    FileStatus rename(const std::string& from, const std::string& to) override {
        die();
        return FaultyFilePort::rename(from, to);
    }
    FileStatus flushFolder(const std::string& folder) override {
        die();
        return FaultyFilePort::flushFolder(folder);
    }

private:
    class Output : public OutputFile {
    public:
        Output(DeadlyFilePort& port, std::unique_ptr<OutputFile> inner)
            : port_(port)
            , inner_(std::move(inner)) {}
        FileStatus write(std::string_view bytes) override {
            const auto status = inner_->write(bytes.substr(0, bytes.size() / 2));
            port_.die();
            return status.ok() ? inner_->write(bytes.substr(bytes.size() / 2)) : status;
        }
        FileStatus flush() override {
            port_.die();
            return inner_->flush();
        }
        FileStatus close() override {
            port_.die();
            return inner_->close();
        }

    private:
        DeadlyFilePort& port_;
        std::unique_ptr<OutputFile> inner_;
    };

    void die() {
        if (--step_ == 0) {
            _exit(9);
        }
    }

    std::size_t step_;
};

TEST(Commit, LeavesTheOldOrTheNewFileWhenKilled) {
    namespace fs = std::filesystem;
    const auto files = makeOsFilePort();
    const fs::path folder = fs::temp_directory_path() / ("drx9-kill-" + std::to_string(files->processId()));
    fs::create_directories(folder);
    const std::string path = folder / "test.mdb";
    MemoryFilePort memory;
    memory.put("/data/x", "");
    makeOldLibrary(memory, Generation::Jet4, {"a", "b"});
    const Value before = firstTooling(memory);
    int killed = 0;
    for (std::size_t step = 1; step < 30; ++step) {
        fs::remove(path);
        ASSERT_TRUE(files->append(path, memory.text(kPath)).ok());
        const pid_t child = fork();
        if (child == 0) {
            DeadlyFilePort deadly(*files, step);
            DBEngine engine(deadly);
            changeFirstFilm(*engine.OpenDatabase(path));
            _exit(0);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        const Value after = firstTooling(*files, path);
        EXPECT_TRUE(after == before || after == Value(kNewTooling)) << step;
        EXPECT_EQ(faultsOf(*files, path), "") << step;
        if (WEXITSTATUS(status) == 0) {
            EXPECT_EQ(after, Value(kNewTooling));
            break;
        }
        ++killed;
    }
    EXPECT_GE(killed, 5);
    fs::remove_all(folder);
}

#endif

} // namespace
} // namespace drx9::jet
