#include <gtest/gtest.h>

#include <sys/stat.h>

#include "security/SigningKey.h"
#include "store/DataDirectory.h"
#include "support/TemporaryDirectory.h"

namespace vantroserver::store {
namespace {

StoreOptions Cheap() {
    StoreOptions options;
    options.passwordIterations = 1000;
    return options;
}

mode_t ModeOf(const std::filesystem::path& path) {
    struct stat info {};
    EXPECT_EQ(::stat(path.c_str(), &info), 0) << path;
    return info.st_mode & 0777;
}

TEST(DataDirectory, InitializeMakesAPrivateDirectoryWithKeyDatabaseAndDefaultClient) {
    testsupport::TemporaryDirectory temporary;
    const auto path = temporary.Path() / "data";
    const auto directory = DataDirectory::Initialize(path, Cheap());
    EXPECT_EQ(ModeOf(path), 0700u);
    EXPECT_EQ(ModeOf(directory.SigningKeyFile()), 0600u);
    EXPECT_TRUE(std::filesystem::exists(directory.DatabaseFile()));
    EXPECT_TRUE(std::filesystem::is_directory(directory.StaticDirectory()));
    EXPECT_EQ(directory.SigningKey().size(), security::SigningKey::kSize);
    EXPECT_TRUE(directory.GetStore()->Clients().Exists(DataDirectory::kDefaultClientId));
}

TEST(DataDirectory, OpenSeesWhatInitializeMade) {
    testsupport::TemporaryDirectory temporary;
    const auto path = temporary.Path() / "data";
    std::string key;
    {
        const auto made = DataDirectory::Initialize(path, Cheap());
        key = made.SigningKey();
        made.GetStore()->Users().Add({"ann", "pw", "", ""});
    }
    const auto opened = DataDirectory::Open(path, Cheap());
    EXPECT_EQ(opened.SigningKey(), key);
    EXPECT_TRUE(opened.GetStore()->Users().FindByUsername("ann").has_value());
}

TEST(DataDirectory, KeysDifferBetweenDirectories) {
    testsupport::TemporaryDirectory temporary;
    const auto one = DataDirectory::Initialize(temporary.Path() / "one", Cheap());
    const auto two = DataDirectory::Initialize(temporary.Path() / "two", Cheap());
    EXPECT_NE(one.SigningKey(), two.SigningKey());
}

TEST(DataDirectory, InitializeRefusesAnInitializedDirectory) {
    testsupport::TemporaryDirectory temporary;
    const auto path = temporary.Path() / "data";
    std::string key;
    { key = DataDirectory::Initialize(path, Cheap()).SigningKey(); }
    EXPECT_THROW(DataDirectory::Initialize(path, Cheap()), std::runtime_error);
    EXPECT_EQ(DataDirectory::Open(path, Cheap()).SigningKey(), key);
}

TEST(DataDirectory, OpenRefusesAMissingDirectoryOrKey) {
    testsupport::TemporaryDirectory temporary;
    EXPECT_THROW(DataDirectory::Open(temporary.Path() / "absent", Cheap()), std::runtime_error);
    const auto path = temporary.Path() / "data";
    { DataDirectory::Initialize(path, Cheap()); }
    std::filesystem::remove(path / DataDirectory::kSigningKeyFileName);
    EXPECT_THROW(DataDirectory::Open(path, Cheap()), std::runtime_error);
}

TEST(DataDirectory, OpenRefusesAKeyReadableByOthers) {
    testsupport::TemporaryDirectory temporary;
    const auto path = temporary.Path() / "data";
    { DataDirectory::Initialize(path, Cheap()); }
    ASSERT_EQ(::chmod((path / DataDirectory::kSigningKeyFileName).c_str(), 0644), 0);
    EXPECT_THROW(DataDirectory::Open(path, Cheap()), std::runtime_error);
}

}  // namespace
}  // namespace vantroserver::store
