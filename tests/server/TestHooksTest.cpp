#include <gtest/gtest.h>

#include <chrono>

#include "support/EventStreamClient.h"
#include "support/VantroServerFixture.h"

namespace {

using testsupport::Bearer;

class TestHooksTest : public testsupport::VantroServerFixture {
protected:
    void SetUp() override {
        AddUser("ann", "pw");
        StartServer({"--enable-test-hooks", "--rate-limit", "1000/60000"});
        token = SignIn("ann", "pw").access;
    }

    void Fault(const boost::json::object& fault) {
        const auto reply = client.PostJson(Url("/test/faults"), fault);
        ASSERT_EQ(reply.status, 201) << reply.body;
    }

    std::string token;
};

TEST_F(TestHooksTest, AnInjectedStatusAppliesToTheNextCountMatchingRequests) {
    Fault({{"route", "/v2/*"}, {"count", 2}, {"status", 503}});
    const auto first = client.Get(Url("/v2/me"), Bearer(token));
    EXPECT_EQ(first.status, 503);
    EXPECT_EQ(first.Json().at("error").as_string(), "injected_fault");
    EXPECT_EQ(first.Header("x-ratelimit-limit"), "1000");
    EXPECT_EQ(client.Get(Url("/v2/accounts"), Bearer(token)).status, 503);
    EXPECT_EQ(client.Get(Url("/v2/me"), Bearer(token)).status, 200);
}

TEST_F(TestHooksTest, OnlyMatchingRoutesAreFaulted) {
    Fault({{"route", "/v2/assets/*/children"}, {"status", 500}});
    EXPECT_EQ(client.Get(Url("/v2/me"), Bearer(token)).status, 200);
    // The fault hits before the asset is looked up, so any id fits the pattern.
    EXPECT_EQ(client.Get(Url("/v2/assets/x/children"), Bearer(token)).status, 500);
    EXPECT_EQ(client.Get(Url("/v2/assets/x/children"), Bearer(token)).status, 404);
}

TEST_F(TestHooksTest, ADelayHoldsTheAnswerBack) {
    Fault({{"route", "/v2/me"}, {"delay_ms", 300}});
    const auto start = std::chrono::steady_clock::now();
    const auto reply = client.Get(Url("/v2/me"), Bearer(token));
    const auto elapsed = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(reply.status, 200);
    EXPECT_GE(elapsed, std::chrono::milliseconds(300));
}

TEST_F(TestHooksTest, ADroppedConnectionGivesNoAnswer) {
    Fault({{"route", "/v2/me"}, {"drop", true}});
    // A fresh connection: curl would retry a request whose reused connection died silently.
    testsupport::HttpClient fresh;
    const auto dropped = fresh.Get(Url("/v2/me"), Bearer(token));
    EXPECT_EQ(dropped.status, 0);
    EXPECT_FALSE(dropped.transportError.empty());
    EXPECT_EQ(client.Get(Url("/v2/me"), Bearer(token)).status, 200);
}

TEST_F(TestHooksTest, RateLimitHeadersCanBeSpoiled) {
    Fault({{"route", "/v2/me"}, {"malformed_rate_limit_headers", true}});
    const auto spoiled = client.Get(Url("/v2/me"), Bearer(token));
    EXPECT_EQ(spoiled.status, 200);
    EXPECT_NE(spoiled.Header("x-ratelimit-limit"), "1000");
    EXPECT_THROW(std::stol(spoiled.Header("x-ratelimit-limit")), std::invalid_argument);
    EXPECT_EQ(client.Get(Url("/v2/me"), Bearer(token)).Header("x-ratelimit-limit"), "1000");
}

TEST_F(TestHooksTest, DeleteClearsPendingFaults) {
    Fault({{"route", "/v2/me"}, {"count", 10}, {"status", 502}});
    EXPECT_EQ(client.Delete(Url("/test/faults")).status, 204);
    EXPECT_EQ(client.Get(Url("/v2/me"), Bearer(token)).status, 200);
}

TEST_F(TestHooksTest, ABadFaultIs400) {
    const auto reply = client.PostJson(Url("/test/faults"), {{"route", "/x"}, {"status", 42}});
    EXPECT_EQ(reply.status, 400);
    EXPECT_EQ(reply.Json().at("error").as_string(), "invalid_request");
}

TEST_F(TestHooksTest, DeletingEventsEndsEveryOpenStreamAndCountsThem) {
    testsupport::EventStreamClient first(Url("/v2/events"), Bearer(token));
    testsupport::EventStreamClient second(Url("/v2/events"), Bearer(token));
    ASSERT_TRUE(first.WaitForComment());
    ASSERT_TRUE(second.WaitForComment());

    const auto reply = client.Delete(Url("/test/events"));
    ASSERT_EQ(reply.status, 200) << reply.body;
    EXPECT_EQ(reply.Json().at("closed").as_int64(), 2);
    EXPECT_TRUE(first.WaitForEnd());
    EXPECT_TRUE(second.WaitForEnd());

    // Nothing is left open, and a stream opened afterwards still hears changes.
    EXPECT_EQ(client.Delete(Url("/test/events")).Json().at("closed").as_int64(), 0);
    testsupport::EventStreamClient later(Url("/v2/events"), Bearer(token));
    ASSERT_TRUE(later.WaitForComment());
    Admin({"account", "add", "--name", "Later", "--owner", "ann", "--storage-limit", "10"});
    EXPECT_TRUE(later.WaitFor([](const auto& event) { return event.type == "account-list"; }));
}

class WithoutTestHooksTest : public testsupport::VantroServerFixture {};

TEST_F(WithoutTestHooksTest, TheHookRoutesDoNotExist) {
    StartServer();
    const auto post = client.PostJson(Url("/test/faults"), {{"route", "/v2/me"}, {"status", 500}});
    EXPECT_EQ(post.status, 404);
    EXPECT_EQ(client.Delete(Url("/test/faults")).status, 404);
    EXPECT_EQ(client.Delete(Url("/test/events")).status, 404);
}

}  // namespace
