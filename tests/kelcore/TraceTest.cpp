#include <gtest/gtest.h>

#include <kelcore/debug/Trace.h>
#include <kelcore/logging/CapturedLogForTesting.h>

#include "support/ScopedEnvironmentVariable.h"
#include "support/TemporaryDirectory.h"

namespace {

using namespace kelcore::debug;
using kelcore::logging::CapturedLogForTesting;
using kelcore::logging::Severity;
using testsupport::ScopedEnvironmentVariable;

class TraceTest : public ::testing::Test {
protected:
    void SetUp() override { ResetTraceSettings(); }
    void TearDown() override { ResetTraceSettings(); }

    testsupport::TemporaryDirectory stateHome;
    ScopedEnvironmentVariable xdg{"XDG_STATE_HOME", stateHome.Path().string()};
    ScopedEnvironmentVariable trace{"KELCORE_TRACE", std::nullopt};
    CapturedLogForTesting log;
};

TEST_F(TraceTest, NothingIsTracedByDefault) {
    EXPECT_FALSE(TraceEnabled("VantroNative", 1));
    Trace("VantroNative", 1, "hidden");
    EXPECT_TRUE(log.Entries().empty());
}

TEST_F(TraceTest, ALevelEnablesLinesUpToItForThatCategoryOnly) {
    SetTraceLevel("VantroNative", 5);
    EXPECT_TRUE(TraceEnabled("VantroNative", 1));
    EXPECT_TRUE(TraceEnabled("VantroNative", 5));
    EXPECT_FALSE(TraceEnabled("VantroNative", 6));
    EXPECT_FALSE(TraceEnabled("VantroNative", 0));
    EXPECT_FALSE(TraceEnabled("Other", 1));
}

TEST_F(TraceTest, AnEnabledLineIsWrittenOnceWithoutItsLineEnd) {
    SetTraceLevel("VantroNative", 5);
    Trace("VantroNative", 5, "Vantro token refresh failed\n");
    Trace("VantroNative", 6, "too detailed");
    Trace("Other", 1, "other category");

    const auto entries = log.Entries();
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].severity, Severity::Trace);
    EXPECT_EQ(entries[0].text, "[VantroNative] Vantro token refresh failed");
}

TEST_F(TraceTest, BracesInTheTextArePrintedLiterally) {
    SetTraceLevel("VantroNative", 1);
    Trace("VantroNative", 1, "state {} {0} {:>5}\nsecond line");
    const auto entries = log.Entries();
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].text, "[VantroNative] state {} {0} {:>5}\nsecond line");
}

TEST_F(TraceTest, TheStarLevelAppliesToCategoriesWithoutTheirOwn) {
    SetTraceLevel("*", 3);
    SetTraceLevel("Quiet", 0);
    SetTraceLevel("Loud", 7);
    EXPECT_TRUE(TraceEnabled("Anything", 3));
    EXPECT_FALSE(TraceEnabled("Anything", 4));
    EXPECT_FALSE(TraceEnabled("Quiet", 1));
    EXPECT_TRUE(TraceEnabled("Loud", 7));
}

TEST_F(TraceTest, WithoutCheckingTheCategoryOnlyTheStarLevelCounts) {
    SetTraceLevel("VantroNative", 5);
    EXPECT_FALSE(TraceEnabled("VantroNative", 5, false));
    SetTraceLevel("*", 2);
    SetTraceLevel("Quiet", 0);
    EXPECT_TRUE(TraceEnabled("Quiet", 2, false));
    EXPECT_FALSE(TraceEnabled("Quiet", 3, false));
}

TEST_F(TraceTest, TheChangeCountMovesWhenSettingsChange) {
    const auto before = TraceChangeCount();
    SetTraceLevel("VantroNative", 5);
    const auto afterSet = TraceChangeCount();
    EXPECT_NE(afterSet, before);
    ResetTraceSettings();
    EXPECT_NE(TraceChangeCount(), afterSet);
    EXPECT_FALSE(TraceEnabled("VantroNative", 5));
}

TEST_F(TraceTest, LevelsComeFromTheEnvironmentAndMalformedEntriesAreReported) {
    ScopedEnvironmentVariable env("KELCORE_TRACE", " VantroNative=5 , Other = 2,bad,=3,x=-1,y=2z,");
    ResetTraceSettings();

    EXPECT_TRUE(TraceEnabled("VantroNative", 5));
    EXPECT_FALSE(TraceEnabled("VantroNative", 6));
    EXPECT_TRUE(TraceEnabled("Other", 2));
    EXPECT_FALSE(TraceEnabled("x", 1));
    EXPECT_FALSE(TraceEnabled("y", 1));
    const auto entries = log.Entries();
    ASSERT_EQ(entries.size(), 4u);
    for (const auto& entry : entries) {
        EXPECT_EQ(entry.severity, Severity::Warning);
        EXPECT_NE(entry.text.find("KELCORE_TRACE"), std::string::npos);
    }
}

}  // namespace
