#include <gtest/gtest.h>

#include <boost/json/parse.hpp>

#include "hooks/FaultInjector.h"

namespace vantroserver::hooks {
namespace {

std::optional<FaultInjector::Fault> ParseText(const char* text, std::string& error) {
    return FaultInjector::Parse(boost::json::parse(text).as_object(), error);
}

TEST(FaultInjector, AppliesToTheNextCountMatchingRequestsOnly) {
    FaultInjector injector;
    std::string error;
    auto fault =
        ParseText(R"({"route": "/v2/assets/*/children", "count": 2, "status": 503})", error);
    ASSERT_TRUE(fault) << error;
    injector.Add(*fault);
    EXPECT_FALSE(injector.Take({"v2", "assets", "a"}));
    const auto first = injector.Take({"v2", "assets", "a", "children"});
    ASSERT_TRUE(first);
    EXPECT_EQ(first->status, 503u);
    EXPECT_TRUE(injector.Take({"v2", "assets", "b", "children"}));
    EXPECT_FALSE(injector.Take({"v2", "assets", "c", "children"}));
}

TEST(FaultInjector, ClearDropsPendingFaults) {
    FaultInjector injector;
    std::string error;
    injector.Add(*ParseText(R"({"route": "/v2/me", "count": 5, "drop": true})", error));
    injector.Clear();
    EXPECT_FALSE(injector.Take({"v2", "me"}));
}

TEST(FaultInjector, ReadsEveryMember) {
    std::string error;
    const auto fault = ParseText(R"({"route": "/v2/me", "count": 3, "delay_ms": 250,
        "status": 500, "drop": true, "drop_answer": true, "malformed_rate_limit_headers": true})",
                                 error);
    ASSERT_TRUE(fault) << error;
    EXPECT_EQ(fault->count, 3u);
    EXPECT_EQ(fault->delay, std::chrono::milliseconds(250));
    EXPECT_EQ(fault->status, 500u);
    EXPECT_TRUE(fault->drop);
    EXPECT_TRUE(fault->dropAnswer);
    EXPECT_TRUE(fault->malformedRateLimitHeaders);
}

TEST(FaultInjector, RefusesBadMembers) {
    const char* bad[] = {
        R"({})",
        R"({"route": 5})",
        R"({"route": "no-slash"})",
        R"({"route": "/x", "count": 0})",
        R"({"route": "/x", "count": -1})",
        R"({"route": "/x", "count": 1.5})",
        R"({"route": "/x", "delay_ms": 600000})",
        R"({"route": "/x", "status": 99})",
        R"({"route": "/x", "status": 600})",
        R"({"route": "/x", "drop": "yes"})",
        R"({"route": "/x", "drop_answer": 1})",
        R"({"route": "/x", "surprise": true})",
    };
    for (const char* text : bad) {
        std::string error;
        EXPECT_FALSE(ParseText(text, error)) << text;
        EXPECT_FALSE(error.empty()) << text;
    }
}

}  // namespace
}  // namespace vantroserver::hooks
