#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include <kelcore/filesupport/CommonDirs.h>

#include "support/ScopedEnvironmentVariable.h"
#include "support/TemporaryDirectory.h"

namespace {

namespace fs = std::filesystem;
using kelcore::filesupport::commondirs::UserCacheDir;
using kelcore::filesupport::commondirs::UserConfigDir;
using kelcore::filesupport::commondirs::UserStateDir;
using kelcore::string::UTF16toStdString;

using testsupport::ScopedEnvironmentVariable;

class CommonDirsTest : public ::testing::Test {
protected:
    static fs::perms Mode(const fs::path& path) {
        return fs::status(path).permissions() & fs::perms::all;
    }

    testsupport::TemporaryDirectory temp;
};

TEST_F(CommonDirsTest, UsesXdgCacheHomeAndCreatesThePrivateDirectory) {
    const fs::path cacheHome = temp.Path() / "cache home";
    ScopedEnvironmentVariable xdg("XDG_CACHE_HOME", cacheHome.string());
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
    ScopedEnvironmentVariable xdg("XDG_CACHE_HOME", temp.Path().string());

    EXPECT_EQ(UTF16toStdString(UserCacheDir()), expected.string());
    EXPECT_EQ(Mode(expected), fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec);
}

TEST_F(CommonDirsTest, FallsBackToHomeWhenXdgCacheHomeIsUnset) {
    ScopedEnvironmentVariable xdg("XDG_CACHE_HOME", std::nullopt);
    ScopedEnvironmentVariable home("HOME", temp.Path().string());
    const fs::path expected = temp.Path() / ".cache" / "vantrokelui";

    EXPECT_EQ(UTF16toStdString(UserCacheDir()), expected.string());
    EXPECT_TRUE(fs::is_directory(expected));
}

TEST_F(CommonDirsTest, IgnoresARelativeOrEmptyXdgCacheHome) {
    ScopedEnvironmentVariable home("HOME", temp.Path().string());
    const fs::path expected = temp.Path() / ".cache" / "vantrokelui";
    {
        ScopedEnvironmentVariable xdg("XDG_CACHE_HOME", "relative/cache");
        EXPECT_EQ(UTF16toStdString(UserCacheDir()), expected.string());
    }
    ScopedEnvironmentVariable xdg("XDG_CACHE_HOME", "");
    EXPECT_EQ(UTF16toStdString(UserCacheDir()), expected.string());
    EXPECT_FALSE(fs::exists("relative/cache"));
}

TEST_F(CommonDirsTest, ReturnsThePathEvenWhenItCannotBeCreated) {
    const fs::path blocker = temp.Path() / "a file";
    std::ofstream(blocker) << "x";
    ScopedEnvironmentVariable xdg("XDG_CACHE_HOME", blocker.string());
    EXPECT_EQ(UTF16toStdString(UserCacheDir()), (blocker / "vantrokelui").string());
    EXPECT_FALSE(fs::exists(blocker / "vantrokelui"));
}

TEST_F(CommonDirsTest, StateAndConfigurationFollowTheirOwnVariablesAndHomeFallbacks) {
    ScopedEnvironmentVariable home("HOME", temp.Path().string());
    ScopedEnvironmentVariable cache("XDG_CACHE_HOME", std::nullopt);
    {
        ScopedEnvironmentVariable state("XDG_STATE_HOME", (temp.Path() / "state").string());
        ScopedEnvironmentVariable config("XDG_CONFIG_HOME", (temp.Path() / "config").string());
        EXPECT_EQ(UTF16toStdString(UserStateDir()), (temp.Path() / "state/vantrokelui").string());
        EXPECT_EQ(UTF16toStdString(UserConfigDir()), (temp.Path() / "config/vantrokelui").string());
        EXPECT_EQ(Mode(temp.Path() / "config/vantrokelui"), fs::perms::owner_all);
    }
    ScopedEnvironmentVariable state("XDG_STATE_HOME", std::nullopt);
    ScopedEnvironmentVariable config("XDG_CONFIG_HOME", "relative");
    EXPECT_EQ(UTF16toStdString(UserStateDir()),
              (temp.Path() / ".local/state/vantrokelui").string());
    EXPECT_EQ(UTF16toStdString(UserConfigDir()), (temp.Path() / ".config/vantrokelui").string());
}

}  // namespace
