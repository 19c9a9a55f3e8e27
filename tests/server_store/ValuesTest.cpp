#include <gtest/gtest.h>

#include <sys/stat.h>

#include "security/SigningKey.h"
#include "store/Asset.h"
#include "store/Change.h"
#include "store/Timestamp.h"
#include "store/Validation.h"
#include "support/TemporaryDirectory.h"

namespace vantroserver::store {
namespace {

TEST(Timestamp, FormatsAsIso8601Utc) {
    EXPECT_EQ(FormatIso8601(TimestampFromMilliseconds(0)), "1970-01-01T00:00:00Z");
    EXPECT_EQ(FormatIso8601(TimestampFromMilliseconds(1'700'000'000'999)), "2023-11-14T22:13:20Z");
    EXPECT_EQ(MillisecondsOf(TimestampFromMilliseconds(1234)), 1234);
}

TEST(AssetType, NamesRoundTrip) {
    for (const auto type : {AssetType::Folder, AssetType::File, AssetType::VersionStack}) {
        EXPECT_EQ(ParseAssetType(AssetTypeName(type)), type);
    }
    EXPECT_EQ(AssetTypeName(AssetType::VersionStack), "version_stack");
    EXPECT_FALSE(ParseAssetType("Folder").has_value());
}

TEST(ChangeKind, NamesAreTheEventNames) {
    EXPECT_EQ(ChangeKindName(ChangeKind::AccountList), "account-list");
    EXPECT_EQ(ChangeKindName(ChangeKind::TeamList), "team-list");
    EXPECT_EQ(ChangeKindName(ChangeKind::ProjectList), "project-list");
    EXPECT_EQ(ChangeKindName(ChangeKind::AssetList), "asset-list");
}

TEST(Validation, Utf8) {
    EXPECT_TRUE(IsValidUtf8("plain"));
    EXPECT_TRUE(IsValidUtf8("Grüße 第 😀"));
    EXPECT_FALSE(IsValidUtf8("\x80"));
    EXPECT_FALSE(IsValidUtf8("\xe2\x82"));          // Cut short.
    EXPECT_FALSE(IsValidUtf8("\xe0\x80\xaf"));      // Overlong.
    EXPECT_FALSE(IsValidUtf8("\xed\xa0\x80"));      // Surrogate.
    EXPECT_FALSE(IsValidUtf8("\xf4\x90\x80\x80"));  // Beyond U+10FFFF.
}

TEST(SigningKey, IsCreatedPrivateAndNeverOverwritten) {
    testsupport::TemporaryDirectory directory;
    const auto file = directory.Path() / "key";
    security::SigningKey::Create(file);
    struct stat info {};
    ASSERT_EQ(::stat(file.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);
    const std::string key = security::SigningKey::Load(file);
    EXPECT_EQ(key.size(), security::SigningKey::kSize);
    EXPECT_THROW(security::SigningKey::Create(file), std::runtime_error);
    EXPECT_EQ(security::SigningKey::Load(file), key);
}

TEST(SigningKey, RefusesAShortKey) {
    testsupport::TemporaryDirectory directory;
    const auto file = directory.Write("key", "short");
    ASSERT_EQ(::chmod(file.c_str(), 0600), 0);
    EXPECT_THROW(security::SigningKey::Load(file), std::runtime_error);
}

}  // namespace
}  // namespace vantroserver::store
