#include "platform/FileWorld.h"

#include <gtest/gtest.h>

namespace drx9 {
namespace {

/// What every file port promises; the fake must not promise more than the system keeps.
void keepsTheContract(FileWorld& world) {
    SCOPED_TRACE(world.name);
    FilePort& files = *world.files;
    const std::string file = world.path("a file with \xC3\xA4.txt");
    std::string bytes = "kept";

    EXPECT_FALSE(files.exists(file));
    EXPECT_FALSE(files.size(file) || files.identity(file) || files.writable(file));
    EXPECT_EQ(files.resolveLinks(file), file);
    EXPECT_TRUE(files.read(file, bytes).notFound());
    EXPECT_EQ(bytes, "kept");
    EXPECT_TRUE(files.remove(file).notFound());
    EXPECT_TRUE(files.rename(file, world.path("b")).notFound());

    const std::string binary("one\0\r\n\xFF", 7);
    EXPECT_TRUE(files.append(file, binary).ok());
    EXPECT_TRUE(files.append(file, "two").ok());
    EXPECT_TRUE(files.append(file, "").ok());
    EXPECT_TRUE(files.read(file, bytes).ok());
    EXPECT_EQ(bytes, binary + "two");
    EXPECT_EQ(files.size(file), 10u);
    EXPECT_TRUE(files.writable(file));

    FileStatus status;
    EXPECT_FALSE(files.create(file, "", status));
    EXPECT_FALSE(status.ok());
    const auto output = files.create(world.path("new"), file, status);
    ASSERT_TRUE(output);
    EXPECT_TRUE(status.ok() && output->write("x").ok() && output->flush().ok() && output->close().ok());
    EXPECT_FALSE(output->write("after").ok());
    const auto before = files.identity(file);
    auto opened = files.open(file, status);
    ASSERT_TRUE(opened);
    EXPECT_EQ(opened->identity(), before);
    EXPECT_NE(files.identity(world.path("new")), before);
    EXPECT_EQ(files.identity(file), before);
#ifdef _WIN32
    opened.reset(); // no rename over an open file
#endif
    EXPECT_TRUE(files.rename(world.path("new"), file).ok());
    EXPECT_NE(files.identity(file), before);
    EXPECT_TRUE(files.read(file, bytes).ok());
    EXPECT_EQ(bytes, "x");

    if (opened) {
        char three[3];
        EXPECT_TRUE(opened->read(7, three).ok()) << "the file that was opened, whoever has its name now";
        EXPECT_EQ(std::string(three, 3), "two");
        EXPECT_FALSE(opened->read(8, three).ok()) << "beyond the end";
        EXPECT_EQ(opened->identity()->size, 10u);
    }
    EXPECT_FALSE(files.open(world.path("nowhere"), status));
    EXPECT_TRUE(status.notFound());

    EXPECT_TRUE(files.makeFolder(world.path("p/q")).ok());
    EXPECT_TRUE(files.makeFolder(world.path("p/q")).ok());
    EXPECT_FALSE(files.makeFolder(file).ok());
    EXPECT_TRUE(files.folderWritable(world.path("p/q")) && files.exists(world.path("p")));
    EXPECT_FALSE(files.folderWritable(world.path("p/r")) || files.folderWritable(file));
    EXPECT_FALSE(files.size(world.path("p")).has_value());
    EXPECT_FALSE(files.read(world.path("p"), bytes).ok());
    EXPECT_FALSE(files.open(world.path("p"), status));
    EXPECT_FALSE(files.append(world.path("p"), "x").ok());
    EXPECT_TRUE(files.append(world.path("nowhere/file"), "x").notFound());
    EXPECT_TRUE(files.flushFolder(world.path("p")).ok());
    EXPECT_EQ(files.list(world.folder), (std::vector<std::string>{"a file with \xC3\xA4.txt", "p"}));
    EXPECT_TRUE(files.list(world.path("nowhere")).empty());
    EXPECT_TRUE(files.remove(file).ok());
    EXPECT_FALSE(files.exists(file));
}

TEST(FilePort, BothPortsKeepTheContract) {
    FileWorld memory = memoryWorld();
    keepsTheContract(memory);
    OsWorld os;
    keepsTheContract(os);
}

} // namespace
} // namespace drx9
