#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include <kelcore/filesupport/CommonDirs.h>

#include "support/TemporaryDirectory.h"

namespace {

namespace fs = std::filesystem;
using kelcore::filesupport::commondirs::UserCacheDir;
using kelcore::string::UTF16toStdString;

// Each test sets the variables it relies on; a process-wide environment is put back afterwards.
class CommonDirsTest : public ::testing::Test {
protected:
    void SetUp() override {
        Save("XDG_CACHE_HOME", savedCache);
        Save("HOME", savedHome);
    }
    void TearDown() override {
        Restore("XDG_CACHE_HOME", savedCache);
        Restore("HOME", savedHome);
    }

    static fs::perms Mode(const fs::path& path) {
        return fs::status(path).permissions() & fs::perms::all;
    }

    testsupport::TemporaryDirectory temp;

private:
    static void Save(const char* name, std::optional<std::string>& saved) {
        if (const char* value = std::getenv(name)) {
            saved = value;
        }
    }
    static void Restore(const char* name, const std::optional<std::string>& saved) {
        if (saved) {
            setenv(name, saved->c_str(), 1);
        } else {
            unsetenv(name);
        }
    }
    std::optional<std::string> savedCache;
    std::optional<std::string> savedHome;
};

TEST_F(CommonDirsTest, UsesXdgCacheHomeAndCreatesThePrivateDirectory) {
    const fs::path cacheHome = temp.Path() / "cache home";
    setenv("XDG_CACHE_HOME", cacheHome.c_str(), 1);
    const fs::path expected = cacheHome / "vantrokelui";

    EXPECT_EQ(UTF16toStdString(UserCacheDir()), expected.string());
    EXPECT_TRUE(fs::is_directory(expected));
    EXPECT_EQ(Mode(expected), fs::perms::owner_all);
    EXPECT_EQ(Mode(cacheHome), fs::perms::owner_all);
}

TEST_F(CommonDirsTest, KeepsAnExistingDirectoryAsItIs) {
    const fs::path expected = temp.Path() / "vantrokelui";
    fs::create_directory(expected);
    fs::permissions(expected, fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec);
    setenv("XDG_CACHE_HOME", temp.Path().c_str(), 1);

    EXPECT_EQ(UTF16toStdString(UserCacheDir()), expected.string());
    EXPECT_EQ(Mode(expected), fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec);
}

TEST_F(CommonDirsTest, FallsBackToHomeWhenXdgCacheHomeIsUnset) {
    unsetenv("XDG_CACHE_HOME");
    setenv("HOME", temp.Path().c_str(), 1);
    const fs::path expected = temp.Path() / ".cache" / "vantrokelui";

    EXPECT_EQ(UTF16toStdString(UserCacheDir()), expected.string());
    EXPECT_TRUE(fs::is_directory(expected));
}

TEST_F(CommonDirsTest, IgnoresARelativeOrEmptyXdgCacheHome) {
    setenv("HOME", temp.Path().c_str(), 1);
    const fs::path expected = temp.Path() / ".cache" / "vantrokelui";
    setenv("XDG_CACHE_HOME", "relative/cache", 1);
    EXPECT_EQ(UTF16toStdString(UserCacheDir()), expected.string());
    setenv("XDG_CACHE_HOME", "", 1);
    EXPECT_EQ(UTF16toStdString(UserCacheDir()), expected.string());
    EXPECT_FALSE(fs::exists("relative/cache"));
}

TEST_F(CommonDirsTest, ReturnsThePathEvenWhenItCannotBeCreated) {
    const fs::path blocker = temp.Path() / "a file";
    std::ofstream(blocker) << "x";
    setenv("XDG_CACHE_HOME", blocker.c_str(), 1);
    EXPECT_EQ(UTF16toStdString(UserCacheDir()), (blocker / "vantrokelui").string());
    EXPECT_FALSE(fs::exists(blocker / "vantrokelui"));
}

}  // namespace
