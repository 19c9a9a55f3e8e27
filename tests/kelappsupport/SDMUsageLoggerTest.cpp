#include <fstream>
#include <stdexcept>
#include <string>

#include <boost/json.hpp>
#include <gtest/gtest.h>

#include <kelappsupport/analytics/SDMEvent.h>
#include <kelappsupport/analytics/SDMUsageLogger.h>
#include <kelappsupport/analytics/UsageEventsCapturedForTesting.h>
#include <support/ScopedEnvironmentVariable.h>
#include <support/TemporaryDirectory.h>

namespace kelappsupport::analytics {
namespace {

constexpr auto kDefault = SDMErrorHandlingPolicy::kLoggerDecides;

SDMEvent MakeEvent() {
    SDMEvent event("EXPORT", "Publish", "open", "vantro-location-picker", kDefault);
    event.AddSDMData("kel", "ui_path_to_access", "click:update-share-view", kDefault);
    return event;
}

std::string ReadAll(const std::filesystem::path& path) {
    std::ifstream file(path);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

TEST(SDMEvent, KeepsFieldsInOrderAndReplacesARepeatedKey) {
    SDMEvent event = MakeEvent();
    event.AddSDMData("kel", "other", "1", kDefault);
    event.AddSDMData("kel", "ui_path_to_access", "click:first-time-share-view", kDefault);
    ASSERT_EQ(event.GetFields().size(), 2u);
    EXPECT_EQ(event.GetFields()[0].value, "click:first-time-share-view");
    EXPECT_EQ(event.GetFields()[1].key, "other");
}

TEST(SDMEvent, AFieldWithoutKeyIsDroppedOrThrownAsThePolicySays) {
    SDMEvent event = MakeEvent();
    event.AddSDMData("kel", "", "x", kDefault);
    EXPECT_EQ(event.GetFields().size(), 1u);
    EXPECT_THROW(event.AddSDMData("", "key", "x", SDMErrorHandlingPolicy::kThrow),
                 std::invalid_argument);
}

TEST(SDMUsageLogger, AppendsOneJsonLineAnEventUnderTheStateDirectory) {
    testsupport::TemporaryDirectory state;
    testsupport::ScopedEnvironmentVariable xdg("XDG_STATE_HOME", state.Path().string());
    SDMUsageLogger::LogEvent(MakeEvent());
    SDMUsageLogger::LogEvent(SDMEvent("EXPORT", "Publish", "set", "vantro-location", kDefault));

    EXPECT_EQ(SDMUsageLogger::EventFilePath(),
              state.Path() / "vantrokelui" / "usage-events.jsonl");
    std::ifstream file(SDMUsageLogger::EventFilePath());
    std::string first, second, third;
    ASSERT_TRUE(std::getline(file, first));
    ASSERT_TRUE(std::getline(file, second));
    EXPECT_FALSE(std::getline(file, third));
    const boost::json::object line = boost::json::parse(first).as_object();
    EXPECT_EQ(line.at("category"), "EXPORT");
    EXPECT_EQ(line.at("subcategory"), "Publish");
    EXPECT_EQ(line.at("type"), "open");
    EXPECT_EQ(line.at("subtype"), "vantro-location-picker");
    EXPECT_EQ(line.at("data").at("kel").at("ui_path_to_access"), "click:update-share-view");
    EXPECT_EQ(boost::json::parse(second).at("subtype"), "vantro-location");
}

TEST(SDMUsageLogger, WritesNothingWhenTheUserOptedOut) {
    testsupport::TemporaryDirectory state;
    testsupport::ScopedEnvironmentVariable xdg("XDG_STATE_HOME", state.Path().string());
    testsupport::ScopedEnvironmentVariable optOut(
        "KELDEBUG_kelappsupport_UsageEventsOptOut", "true");
    SDMUsageLogger::LogEvent(MakeEvent());
    EXPECT_EQ(ReadAll(SDMUsageLogger::EventFilePath()), "");
}

TEST(SDMUsageLogger, ACaptureKeepsEventsInMemoryInsteadOfTheFile) {
    testsupport::TemporaryDirectory state;
    testsupport::ScopedEnvironmentVariable xdg("XDG_STATE_HOME", state.Path().string());
    {
        UsageEventsCapturedForTesting events;
        SDMUsageLogger::LogEvent(MakeEvent());
        ASSERT_EQ(events.Events().size(), 1u);
        EXPECT_EQ(events.Events()[0].GetFields(), MakeEvent().GetFields());
    }
    EXPECT_EQ(ReadAll(SDMUsageLogger::EventFilePath()), "");
    SDMUsageLogger::LogEvent(MakeEvent());
    EXPECT_NE(ReadAll(SDMUsageLogger::EventFilePath()), "");
}

}  // namespace
}  // namespace kelappsupport::analytics
