#include <gtest/gtest.h>

#include "support/VantroServerFixture.h"

namespace {

using testsupport::Bearer;

class RateLimitTest : public testsupport::VantroServerFixture {
protected:
    void SetUp() override {
        AddUser("ann", "pw");
        AddUser("bob", "pw");
    }
};

TEST_F(RateLimitTest, PastTheLimitAnswers429WithTheLimitHeaders) {
    StartServer({"--rate-limit", "3/60000"});
    const auto token = SignIn("ann", "pw").access;
    for (int i = 0; i < 3; ++i) {
        const auto reply = client.Get(Url("/v2/me"), Bearer(token));
        EXPECT_EQ(reply.status, 200);
        EXPECT_EQ(reply.Header("x-ratelimit-limit"), "3");
        EXPECT_EQ(reply.Header("x-ratelimit-window"), "60000");
    }
    const auto refused = client.Get(Url("/v2/accounts"), Bearer(token));
    EXPECT_EQ(refused.status, 429);
    EXPECT_EQ(refused.Json().at("error").as_string(), "rate_limited");
    EXPECT_EQ(refused.Header("x-ratelimit-limit"), "3");
    EXPECT_EQ(refused.Header("x-ratelimit-window"), "60000");
    const int retryAfter = std::stoi(refused.Header("retry-after"));
    EXPECT_GE(retryAfter, 1);
    EXPECT_LE(retryAfter, 60);

    // The limit is per token: another user's token is unaffected.
    const auto other = SignIn("bob", "pw").access;
    EXPECT_EQ(client.Get(Url("/v2/me"), Bearer(other)).status, 200);
}

TEST_F(RateLimitTest, AGenerousDefaultIsAdvertisedWithoutTheFlag) {
    StartServer();
    const auto token = SignIn("ann", "pw").access;
    const auto reply = client.Get(Url("/v2/me"), Bearer(token));
    EXPECT_EQ(reply.status, 200);
    EXPECT_GE(std::stol(reply.Header("x-ratelimit-limit")), 1000);
    EXPECT_GT(std::stol(reply.Header("x-ratelimit-window")), 0);
}

TEST_F(RateLimitTest, UnauthenticatedRoutesCarryNoLimitHeaders) {
    StartServer({"--rate-limit", "1/1000"});
    const auto reply = client.Get(Url("/nowhere"));
    EXPECT_EQ(reply.status, 404);
    EXPECT_EQ(reply.Header("x-ratelimit-limit"), "");
}

}  // namespace
