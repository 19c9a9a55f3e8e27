#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <kelcore/debug/DebugDatabase.h>

#include "support/ScopedEnvironmentVariable.h"
#include "support/TemporaryDirectory.h"

namespace {

using kelcore::debug::DebugDatabase;
using testsupport::ScopedEnvironmentVariable;

constexpr const char* kSdkKey = "VantroNative.UseVantroCppSdk";

class DebugDatabaseTest : public ::testing::Test {
protected:
    DebugDatabase& database = DebugDatabase::Instance();
    testsupport::TemporaryDirectory dir;
    std::filesystem::path file = dir.Path() / "debug.conf";
    ScopedEnvironmentVariable path{"KELCORE_DEBUG_DATABASE", file.string()};
    ScopedEnvironmentVariable sdk{"KELDEBUG_VantroNative_UseVantroCppSdk", std::nullopt};
};

TEST_F(DebugDatabaseTest, AMissingKeyOrFileAnswersTheDefault) {
    EXPECT_EQ(database.GetEntry(kSdkKey, "true"), "true");
    dir.Write("debug.conf", "Other.Key=false\n");
    EXPECT_EQ(database.GetEntry(kSdkKey, "fallback"), "fallback");
    EXPECT_TRUE(database.GetBoolEntry(kSdkKey, true));
    EXPECT_FALSE(database.GetBoolEntry(kSdkKey, false));
}

TEST_F(DebugDatabaseTest, ReadsTrimmedKeyValueLinesSkippingCommentsAndJunk) {
    dir.Write("debug.conf",
              "# switches\n"
              "  VantroNative.UseVantroCppSdk \t=  false  \r\n"
              "   # indented comment=true\n"
              "no equals sign\n"
              "Path = /a b=c \n");
    EXPECT_EQ(database.GetEntry(kSdkKey, "true"), "false");
    EXPECT_EQ(database.GetEntry("Path", ""), "/a b=c");
    EXPECT_EQ(database.GetEntry("# indented comment", "none"), "none");
}

TEST_F(DebugDatabaseTest, OnlyTheExactTextTrueIsTrue) {
    dir.Write("debug.conf", "a=true\nb=TRUE\nc=True\nd=1\ne=yes\n");
    EXPECT_TRUE(database.GetBoolEntry("a", false));
    for (const char* key : {"b", "c", "d", "e"}) {
        EXPECT_FALSE(database.GetBoolEntry(key, true)) << key;
    }
}

TEST_F(DebugDatabaseTest, AChangedFileIsSeenAtTheNextCall) {
    dir.Write("debug.conf", "VantroNative.UseVantroCppSdk=true\n");
    ASSERT_TRUE(database.GetBoolEntry(kSdkKey, false));

    // Same size, same inode.
    dir.Write("debug.conf", "VantroNative.UseVantroCppSdk=TRUE\n");
    EXPECT_FALSE(database.GetBoolEntry(kSdkKey, true));

    std::filesystem::remove(file);
    EXPECT_EQ(database.GetEntry(kSdkKey, "gone"), "gone");
}

TEST_F(DebugDatabaseTest, ARewriteKeepingSizeAndTimeStampIsStillSeen) {
    dir.Write("debug.conf", "VantroNative.UseVantroCppSdk=true\n");
    const auto stamp = std::filesystem::last_write_time(file);
    ASSERT_TRUE(database.GetBoolEntry(kSdkKey, false));

    // What a coarse file-system clock does to two writes within one tick.
    dir.Write("debug.conf", "VantroNative.UseVantroCppSdk=TRUE\n");
    std::filesystem::last_write_time(file, stamp);

    EXPECT_FALSE(database.GetBoolEntry(kSdkKey, true));
}

TEST_F(DebugDatabaseTest, TheEnvironmentOverridesTheFile) {
    dir.Write("debug.conf", "VantroNative.UseVantroCppSdk=true\n");
    {
        ScopedEnvironmentVariable env("KELDEBUG_VantroNative_UseVantroCppSdk", "false");
        EXPECT_EQ(database.GetEntry(kSdkKey, "true"), "false");
    }
    {
        ScopedEnvironmentVariable env("KELDEBUG_VantroNative_UseVantroCppSdk", "");
        EXPECT_EQ(database.GetEntry(kSdkKey, "true"), "");
    }
    EXPECT_EQ(database.GetEntry(kSdkKey, "false"), "true");
}

TEST_F(DebugDatabaseTest, EnvironmentNamesTurnEveryOtherCharacterIntoUnderscore) {
    EXPECT_EQ(DebugDatabase::EnvironmentName(kSdkKey), "KELDEBUG_VantroNative_UseVantroCppSdk");
    EXPECT_EQ(DebugDatabase::EnvironmentName("a.b-c d/é9"), "KELDEBUG_a_b_c_d___9");
}

TEST_F(DebugDatabaseTest, TheFileComesFromTheEnvironmentThenXDGThenHome) {
    EXPECT_EQ(DebugDatabase::FilePath(), file);
    ScopedEnvironmentVariable noOverride("KELCORE_DEBUG_DATABASE", std::nullopt);
    ScopedEnvironmentVariable home("HOME", "/home/someone");
    {
        ScopedEnvironmentVariable xdg("XDG_CONFIG_HOME", "/xdg/config");
        EXPECT_EQ(DebugDatabase::FilePath(), "/xdg/config/vantrokelui/debug.conf");
    }
    {
        ScopedEnvironmentVariable xdg("XDG_CONFIG_HOME", "relative/config");
        EXPECT_EQ(DebugDatabase::FilePath(), "/home/someone/.config/vantrokelui/debug.conf");
    }
    ScopedEnvironmentVariable xdg("XDG_CONFIG_HOME", std::nullopt);
    EXPECT_EQ(DebugDatabase::FilePath(), "/home/someone/.config/vantrokelui/debug.conf");
}

TEST_F(DebugDatabaseTest, ReadersOnManyThreadsSeeOnlyWholeValues) {
    dir.Write("debug.conf", "k=aaaa\n");
    std::atomic<bool> stop{false};
    std::atomic<int> bad{0};
    std::vector<std::thread> readers;
    for (int t = 0; t < 3; ++t) {
        readers.emplace_back([&] {
            while (!stop.load()) {
                const auto value = database.GetEntry("k", "missing");
                // A rewrite truncates first, so a reader may see the file empty for a moment.
                if (value != "aaaa" && value != "bbbb" && value != "missing") {
                    bad.fetch_add(1);
                }
            }
        });
    }
    for (int i = 0; i < 200; ++i) {
        dir.Write("debug.conf", i % 2 ? "k=aaaa\n" : "k=bbbb\n");
    }
    stop.store(true);
    for (auto& reader : readers) {
        reader.join();
    }
    EXPECT_EQ(bad.load(), 0);
    EXPECT_EQ(database.GetEntry("k", "missing"), "aaaa");
}

}  // namespace
