#include <unistd.h>

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include <kelcore/config/ErrorHandling.h>
#include <kelcore/filesupport/File.h>

#include "support/TemporaryDirectory.h"

namespace {

namespace fs = std::filesystem;
using kelcore::filesupport::File;
using kelcore::filesupport::file_delete_exception;
using kelcore::string::StdToUTF16String;

class FileTest : public ::testing::Test {
protected:
    kelcore::string::string Dir() const { return StdToUTF16String(temp.Path().string()); }
    fs::path Touch(const char* name) const {
        const fs::path path = temp.Path() / fs::u8path(name);
        std::ofstream(path) << "x";
        return path;
    }

    testsupport::TemporaryDirectory temp;
};

TEST_F(FileTest, DirectoryAndNameMakeTheFullPath) {
    const File file(Dir(), u"Clip 2.mp4");
    EXPECT_TRUE(file.FullPath() == Dir() + u"/Clip 2.mp4");
    EXPECT_EQ(file.Path(), temp.Path() / "Clip 2.mp4");
}

TEST_F(FileTest, FullPathIsKeptAsGiven) {
    EXPECT_TRUE(File(u"relative/Ärger.mov").FullPath() == u"relative/Ärger.mov");
    EXPECT_TRUE(File(fs::path("/a/b/../c")).FullPath() == u"/a/b/../c");
}

TEST_F(FileTest, ExistsOnlyWhenSomethingIsThere) {
    const File file(Dir(), u"Ärger 日本.mp4");
    EXPECT_FALSE(file.Exists());
    Touch("Ärger 日本.mp4");
    EXPECT_TRUE(file.Exists());
}

TEST_F(FileTest, DeleteRemovesTheFile) {
    const fs::path path = Touch("clip.mp4");
    const File file(path);
    file.Delete();
    EXPECT_FALSE(fs::exists(path));
    EXPECT_FALSE(file.Exists());
}

TEST_F(FileTest, DeletingAMissingFileDoesNothing) {
    const File file(Dir(), u"never-written.mp4");
    EXPECT_NO_THROW(file.Delete());
    EXPECT_NO_THROW(File(Dir() + u"/no/such/dir/file").Delete());
}

TEST_F(FileTest, DanglingSymbolicLinkExistsAndIsDeletedItself) {
    const fs::path target = Touch("target");
    const fs::path link = temp.Path() / "link";
    fs::create_symlink(target, link);
    fs::remove(target);
    const File file(link);
    EXPECT_TRUE(file.Exists());
    file.Delete();
    EXPECT_FALSE(fs::exists(fs::symlink_status(link)));
}

TEST_F(FileTest, DeletingADirectoryThrowsWithTheDeleteCode) {
    fs::create_directory(temp.Path() / "folder");
    const File folder(Dir(), u"folder");
    try {
        folder.Delete();
        FAIL() << "a directory was deleted";
    } catch (const file_delete_exception& error) {
        EXPECT_EQ(error.GetCode(), kelcore::filesupport::kResultFileDeleteFailed);
        EXPECT_LT(error.GetCode(), 0);
        EXPECT_NE(error.GetText().find("folder"), std::string::npos);
    }
    EXPECT_TRUE(fs::is_directory(temp.Path() / "folder"));
}

TEST_F(FileTest, DeleteFailureIsAKelException) {
    fs::create_directory(temp.Path() / "folder");
    try {
        File(Dir(), u"folder").Delete();
        FAIL() << "a directory was deleted";
    } catch (...) {
        EXPECT_EQ(kelcore::config::ExtractResultFromException(std::current_exception()),
                  kelcore::filesupport::kResultFileDeleteFailed);
    }
}

TEST_F(FileTest, FileThatTheSystemRefusesToRemoveThrows) {
    // Entries of /proc cannot be unlinked, not even by the superuser.
    const File status(fs::path("/proc/self/status"));
    ASSERT_TRUE(status.Exists());
    EXPECT_THROW(status.Delete(), file_delete_exception);
    EXPECT_TRUE(status.Exists());
}

TEST_F(FileTest, FileInADirectoryThatCannotBeWrittenIsNotDeleted) {
    if (geteuid() == 0) {
        GTEST_SKIP() << "permissions do not bind the superuser";
    }
    const fs::path path = Touch("kept.mp4");
    fs::permissions(temp.Path(), fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_THROW(File(path).Delete(), file_delete_exception);
    fs::permissions(temp.Path(), fs::perms::owner_all);
    EXPECT_TRUE(fs::exists(path));
}

}  // namespace
