#ifndef _WIN32

#include "platform/AtomicReplace.h"
#include "platform/FileWorld.h"

#include <csignal>
#include <gtest/gtest.h>
#include <random>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace drx9 {
namespace {

mode_t modeOf(const std::string& path) {
    struct stat info {};
    EXPECT_EQ(::lstat(path.c_str(), &info), 0) << path;
    return info.st_mode;
}

/// Lets no file of this process grow beyond the limit: the system's own partial write.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t limit) {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit lowered{limit, before_.rlim_max};
        handler_ = std::signal(SIGXFSZ, SIG_IGN);
        ::setrlimit(RLIMIT_FSIZE, &lowered);
    }
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }

private:
    rlimit before_{};
    void (*handler_)(int) = nullptr;
};

TEST(OsFilePort, AnAppendThatFitsOnlyInPartIsCutOffAgain) {
    OsWorld world;
    ASSERT_TRUE(world.files->append(world.path("log"), "line one\n").ok());
    {
        const FileSizeLimit limit(12);
        const FileStatus status = world.files->append(world.path("log"), "line two\n");
        EXPECT_EQ(status.reason(), "File too large");
        EXPECT_EQ(world.text("log"), "line one\n");
        EXPECT_FALSE(replaceFile(*world.files, world.path("log"), std::string(100, 'x')).ok());
        EXPECT_EQ(world.files->list(world.folder), std::vector<std::string>{"log"});
    }
    EXPECT_TRUE(world.files->append(world.path("log"), "line two\n").ok());
    EXPECT_EQ(world.text("log"), "line one\nline two\n");
}

TEST(OsFilePort, ReplaceKeepsModeAndLinks) {
    OsWorld world;
    ASSERT_TRUE(world.files->makeFolder(world.path("real")).ok());
    ASSERT_TRUE(world.files->append(world.path("real/file"), "old").ok());
    ASSERT_EQ(::chmod(world.path("real/file").c_str(), 0664), 0);
    ASSERT_EQ(::symlink("real/file", world.path("second").c_str()), 0);
    ASSERT_EQ(::symlink(world.path("second").c_str(), world.path("first").c_str()), 0);

    ASSERT_TRUE(replaceFile(*world.files, world.path("first"), "new").ok());
    EXPECT_EQ(world.text("real/file"), "new");
    EXPECT_EQ(modeOf(world.path("real/file")) & 07777, 0664u);
    EXPECT_TRUE(S_ISLNK(modeOf(world.path("first"))) && S_ISLNK(modeOf(world.path("second"))));
    EXPECT_EQ(world.files->list(world.path("real")), std::vector<std::string>{"file"});

    // A link whose target does not exist yet makes the target.
    ASSERT_EQ(::symlink("real/later", world.path("third").c_str()), 0);
    ASSERT_TRUE(replaceFile(*world.files, world.path("third"), "made").ok());
    EXPECT_EQ(world.text("real/later"), "made");
}

TEST(OsFilePort, ADeviceOrAPipeIsReportedNotWaitedFor) {
    OsWorld world;
    ASSERT_EQ(::mkfifo(world.path("pipe").c_str(), 0600), 0);
    EXPECT_FALSE(world.files->append(world.path("pipe"), "x").ok());
    std::string bytes;
    (void)world.files->read(world.path("pipe"), bytes);
    if (::access("/dev/full", W_OK) == 0) {
        EXPECT_EQ(world.files->append("/dev/full", "x").reason(), "No space left on device");
    }
}

/// Replaces the file with one and the other version until killed.
[[noreturn]] void replaceForEver(const std::string& path, const std::string& one, const std::string& other) {
    const auto files = makeOsFilePort();
    for (bool turn = false;; turn = !turn) {
        if (!replaceFile(*files, path, turn ? one : other).ok()) {
            ::_exit(1);
        }
    }
}

TEST(OsFilePort, AKilledReplaceLeavesOneOfTheTwoVersions) {
    OsWorld world;
    const std::string one(200'000, '1');
    const std::string other(100'001, '2');
    ASSERT_TRUE(replaceFile(*world.files, world.path("file"), one).ok());
    std::mt19937 random(9);
    for (int round = 0; round < 40; ++round) {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            replaceForEver(world.path("file"), one, other);
        }
        ::usleep(std::uniform_int_distribution<useconds_t>(500, 30'000)(random));
        ASSERT_EQ(::kill(child, SIGKILL), 0);
        int how = 0;
        ASSERT_EQ(::waitpid(child, &how, 0), child);
        ASSERT_TRUE(WIFSIGNALED(how)) << "the child could not replace the file";
        const std::string found = world.text("file");
        ASSERT_TRUE(found == one || found == other) << found.size() << " bytes in round " << round;
    }
}

} // namespace
} // namespace drx9

#endif
