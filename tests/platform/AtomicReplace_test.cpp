#include "fakes/FaultyFilePort.h"
#include "platform/AtomicReplace.h"
#include "platform/FileWorld.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace drx9 {
namespace {

using Names = std::vector<std::string>;

/// Fails one step of a replace, and checks what is in the folder after it.
void failOneStep(FileWorld& world, int step, bool forGood, bool existed) {
    SCOPED_TRACE(world.name + ", step " + std::to_string(step) + (forGood ? " for good" : " once") +
                 (existed ? ", over a file" : ", new file"));
    if (existed) {
        ASSERT_TRUE(replaceFile(*world.files, world.path("file"), "old").ok());
    }
    FaultyFilePort faulty(*world.files);
    faulty.failStep(step, forGood);
    const FileStatus status = replaceFile(faulty, world.path("file"), "the new text");
    EXPECT_FALSE(status.ok());
    EXPECT_NE(status.reason().find("Input/output error"), std::string::npos) << status.reason();

    const bool renamed = faulty.steps().back() == FileStep::FlushFolder;
    EXPECT_EQ(world.files->exists(world.path("file")), existed || renamed);
    if (existed || renamed) {
        EXPECT_EQ(world.text("file"), renamed ? "the new text" : "old");
    }
    const bool removalFailed = forGood && faulty.steps().back() == FileStep::Remove;
    EXPECT_EQ(world.files->list(world.folder).size(), (existed || renamed) + (removalFailed ? 1u : 0u));
    EXPECT_EQ(status.reason().find(" is left: ") != std::string::npos, removalFailed) << status.reason();

    // What a failure left behind does not hinder the next save.
    faulty.heal();
    EXPECT_TRUE(replaceFile(faulty, world.path("file"), "next").ok());
    EXPECT_EQ(world.text("file"), "next");
    for (const auto& name : world.files->list(world.folder)) {
        EXPECT_TRUE(world.files->remove(world.path(name)).ok());
    }
}

TEST(AtomicReplace, EachFailingStepLeavesTheOldFileAndNoTemporary) {
    FileWorld memory = memoryWorld();
    OsWorld os;
    for (FileWorld* world : {&memory, static_cast<FileWorld*>(&os)}) {
        for (int step = 1; step <= 6; ++step) { // create, write, flush, close, rename, flush of the folder
            for (const int how : {0, 1, 2, 3}) {
                failOneStep(*world, step, (how & 1) != 0, (how & 2) != 0);
            }
        }
    }
}

TEST(AtomicReplace, StepsComeInTheOrderThatSurvivesAPowerCut) {
    using enum FileStep;
    FileWorld world = memoryWorld();
    FaultyFilePort faulty(*world.files);
    std::vector<FileStep> seen;
    const auto look = [&] { return seen = faulty.steps(), FileStatus(); };
    ASSERT_TRUE(replaceFile(faulty, world.path("file"), "old", look).ok());
    EXPECT_EQ(seen, (std::vector{Create, Write, Flush, Close}));
    EXPECT_EQ(faulty.steps(), (std::vector{Create, Write, Flush, Close, Rename, FlushFolder}));

    const auto veto = [] { return FileStatus::failure("changed by another program"); };
    EXPECT_EQ(replaceFile(faulty, world.path("file"), "new", veto).reason(), "changed by another program");
    EXPECT_EQ(world.text("file"), "old");
    EXPECT_EQ(world.files->list(world.folder), Names{"file"});
}

TEST(AtomicReplace, RefusesAWriteProtectedFileAndAMissingFolder) {
    MemoryFilePort files;
    files.put("/data/file", "old").writeProtected = true;
    EXPECT_FALSE(replaceFile(files, "/data/file", "new").ok());
    EXPECT_EQ(files.text("/data/file"), "old");
    EXPECT_TRUE(replaceFile(files, "/nowhere/file", "new").notFound());
}

TEST(AtomicReplace, AStaleTemporaryOfADeadProcessIsLeftAlone) {
    MemoryFilePort files;
    files.put("/data/.drx9-4711-1.tmp", "somebody's");
    EXPECT_TRUE(replaceFile(files, "/data/file", "new").ok());
    EXPECT_EQ(files.text("/data/.drx9-4711-1.tmp"), "somebody's");
    EXPECT_EQ(files.list("/data").size(), 2u);
}

} // namespace
} // namespace drx9
