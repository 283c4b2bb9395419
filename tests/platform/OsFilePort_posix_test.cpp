#ifndef _WIN32

#include "platform/AtomicReplace.h"
#include "platform/FileWorld.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>

namespace drx9 {
namespace {

/// What the path itself is, a link not followed.
struct stat infoOf(const std::string& path) {
    struct stat info {};
    EXPECT_EQ(::lstat(path.c_str(), &info), 0) << path;
    return info;
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

TEST(OsFilePort, ReplaceKeepsModeOwnerAndLinks) {
    OsWorld world;
    ASSERT_TRUE(world.files->makeFolder(world.path("real")).ok());
    ASSERT_TRUE(world.files->append(world.path("real/file"), "old").ok());
    ASSERT_EQ(::chmod(world.path("real/file").c_str(), 0664), 0);
    // Only an administrator can give it away; for others it stays their own.
    EXPECT_TRUE(::chown(world.path("real/file").c_str(), 77, 78) == 0 || ::geteuid() != 0);
    ASSERT_EQ(::symlink("real/file", world.path("second").c_str()), 0);
    ASSERT_EQ(::symlink(world.path("second").c_str(), world.path("first").c_str()), 0);
    ASSERT_EQ(::symlink("real/later", world.path("third").c_str()), 0); // replacing it makes its target
    const struct stat before = infoOf(world.path("real/file"));
    for (const char* link : {"first", "third"}) {
        ASSERT_TRUE(replaceFile(*world.files, world.path(link), "new").ok());
    }
    EXPECT_EQ(world.text("real/file") + world.text("real/later"), "newnew");
    const struct stat after = infoOf(world.path("real/file"));
    EXPECT_EQ(std::tie(after.st_mode, after.st_uid, after.st_gid),
              std::tie(before.st_mode, before.st_uid, before.st_gid));
    EXPECT_NE(after.st_ino, before.st_ino);
    for (const char* link : {"first", "second", "third"}) {
        EXPECT_TRUE(S_ISLNK(infoOf(world.path(link)).st_mode)) << link;
    }
    EXPECT_EQ(world.files->list(world.path("real")), (std::vector<std::string>{"file", "later"}));
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

} // namespace
} // namespace drx9

#endif
