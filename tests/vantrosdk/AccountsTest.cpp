// The user and account requests against the real server: records filled from the answers,
// paging and rate-limit headers passed through, and error statuses answered as responses.
#include <gtest/gtest.h>

#include <vantrocommon/Guid.h>
#include <vantrocommon/ResultCodes.h>
#include <vantrosdk/Accounts.h>
#include <vantrosdk/GetAccountRequest.h>
#include <vantrosdk/GetAccountResponse.h>
#include <vantrosdk/GetCurrentUserAccountListRequest.h>
#include <vantrosdk/GetCurrentUserAccountListResponse.h>
#include <vantrosdk/GetCurrentUserRequest.h>
#include <vantrosdk/GetCurrentUserResponse.h>

#include "SdkTestSupport.h"

namespace sdktest {
namespace {

using vantrocommon::Guid;
using vantrosdk::GetAccountRequest;

class AccountsTest : public SdkWorldFixture {};

TEST_F(AccountsTest, GetsTheSignedInUser) {
    StartWorld();
    const auto client = Connect(Config());

    const auto response = Await(client->GetAccounts()->GetCurrentUser({}));

    EXPECT_TRUE(response->IsSuccessful());
    EXPECT_EQ(response->GetHTTPStatusCode(), 200);
    EXPECT_EQ(response->GetUserObject().id, Guid(ann));
    EXPECT_EQ(response->GetUserObject().username, "ann");
    EXPECT_EQ(response->GetHeader().count("X-RATELIMIT-LIMIT"), 1u);
    EXPECT_EQ(response->GetHeader().count("X-RATELIMIT-WINDOW"), 1u);
}

TEST_F(AccountsTest, ListsAccountsWithTheirStorageAndPagingHeaders) {
    StartWorld({"--enable-test-hooks"}, 5'000'000);
    const auto client = Connect(Config());

    const auto response = Await(client->GetAccounts()->GetCurrentUserAccountList({}));

    ASSERT_TRUE(response->IsSuccessful());
    const auto& accounts = response->GetCurrentUserAccountListObject();
    ASSERT_EQ(accounts.size(), 1u);
    EXPECT_EQ(accounts[0].id, Guid(studio));
    EXPECT_EQ(accounts[0].name, "Studio");
    EXPECT_TRUE(accounts[0].member);
    EXPECT_EQ(accounts[0].storageUsed, 0u);
    ASSERT_TRUE(accounts[0].plan.has_value());
    EXPECT_EQ(accounts[0].plan->storageLimit, 5'000'000u);
    EXPECT_EQ(response->GetPageNumber(), 1);
    EXPECT_EQ(response->GetTotalPages(), 1);
    EXPECT_EQ(response->GetHeader().at("X-RATELIMIT-LIMIT"), "100000");
}

TEST_F(AccountsTest, GetsOneAccount) {
    StartWorld({"--enable-test-hooks"}, 7'000'000);
    const auto client = Connect(Config());

    const auto response = Await(client->GetAccounts()->GetAccount(GetAccountRequest(Guid(studio))));

    ASSERT_TRUE(response->IsSuccessful());
    EXPECT_EQ(response->GetAccountResponseObject().name, "Studio");
    ASSERT_TRUE(response->GetAccountResponseObject().plan.has_value());
    EXPECT_EQ(response->GetAccountResponseObject().plan->storageLimit, 7'000'000u);
    // Not a listing: no paging headers.
    EXPECT_FALSE(response->GetPageNumber().has_value());
    EXPECT_FALSE(response->GetTotalPages().has_value());
}

TEST_F(AccountsTest, AnswersAnUnknownAccountWithA404Response) {
    StartWorld();
    const auto client = Connect(Config());

    const auto answer = client->GetAccounts()->GetAccount(GetAccountRequest(Guid::CreateUnique()));

    ASSERT_EQ(AwaitResult(answer), 0) << "an error status is a response, not a failure";
    EXPECT_FALSE(answer.Get()->IsSuccessful());
    EXPECT_EQ(answer.Get()->GetHTTPStatusCode(), 404);
    EXPECT_FALSE(answer.Get()->GetAccountResponseObject().plan.has_value());
}

TEST_F(AccountsTest, PassesTooManyRequestsThroughWithItsHeaders) {
    StartWorld({"--enable-test-hooks", "--rate-limit", "2/60000"});
    const auto recorder = Recorder();
    auto config = Config();
    config.SetTransport(recorder);
    vantrocommon::RetryPolicy policy;
    policy.budget = std::chrono::hours(1);  // Room enough to wait out Retry-After, were it tried.
    config.SetRetryPolicy(policy);
    const auto client = Connect(config);

    const auto first = Await(client->GetAccounts()->GetCurrentUser({}));
    const auto second = Await(client->GetAccounts()->GetCurrentUser({}));
    const auto third = Await(client->GetAccounts()->GetCurrentUser({}));

    EXPECT_EQ(first->GetHTTPStatusCode(), 200);
    EXPECT_EQ(second->GetHTTPStatusCode(), 200);
    EXPECT_EQ(third->GetHTTPStatusCode(), 429);
    EXPECT_FALSE(third->IsSuccessful());
    EXPECT_EQ(third->GetHeader().at("X-RATELIMIT-LIMIT"), "2");
    EXPECT_EQ(third->GetHeader().at("X-RATELIMIT-WINDOW"), "60000");
    ASSERT_EQ(third->GetHeader().count("RETRY-AFTER"), 1u);
    EXPECT_GT(std::stoi(third->GetHeader().at("RETRY-AFTER")), 0);
    EXPECT_EQ(recorder->Exchanges().size(), 3u) << "a 429 is not retried";
}

TEST_F(AccountsTest, RetriesAServerErrorOfAGet) {
    StartWorld();
    vantrosdk::VantroConfig config = Config();
    vantrocommon::RetryPolicy policy;
    policy.initialDelay = std::chrono::milliseconds(1);
    config.SetRetryPolicy(policy);
    const auto client = Connect(config);
    InjectFault({{"route", "/v2/me"}, {"status", 503}, {"count", 2}});

    const auto response = Await(client->GetAccounts()->GetCurrentUser({}));

    EXPECT_EQ(response->GetHTTPStatusCode(), 200);
}

TEST_F(AccountsTest, AnswersTheLastServerErrorWhenTheRetriesAreSpent) {
    StartWorld();
    vantrosdk::VantroConfig config = Config();
    vantrocommon::RetryPolicy policy;
    policy.maxAttempts = 2;
    policy.initialDelay = std::chrono::milliseconds(1);
    config.SetRetryPolicy(policy);
    const auto client = Connect(config);
    InjectFault({{"route", "/v2/me"}, {"status", 500}, {"count", 5}});

    const auto response = Await(client->GetAccounts()->GetCurrentUser({}));

    EXPECT_EQ(response->GetHTTPStatusCode(), 500);
    EXPECT_FALSE(response->IsSuccessful());
}

TEST_F(AccountsTest, FailsWithTheTransportsCodeWhenTheConnectionDropsEveryTime) {
    StartWorld();
    vantrosdk::VantroConfig config = Config();
    vantrocommon::RetryPolicy policy;
    policy.maxAttempts = 2;
    policy.initialDelay = std::chrono::milliseconds(1);
    config.SetRetryPolicy(policy);
    const auto client = Connect(config);
    InjectFault({{"route", "/v2/me"}, {"drop", true}, {"count", 5}});

    EXPECT_EQ(AwaitResult(client->GetAccounts()->GetCurrentUser({})),
              vantrocommon::kResultNetworkFailure);
}

}  // namespace
}  // namespace sdktest
