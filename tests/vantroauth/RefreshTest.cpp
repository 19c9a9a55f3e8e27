// Refreshing the access token against the real server: ahead of expiry on use and by the timer,
// shared between callers, and the sign-out when the service refuses the refresh token. The
// token file is opted in so the test can see which refresh token the library holds.
#include <gtest/gtest.h>

#include <algorithm>
#include <thread>
#include <vector>

#include <kelcore/async/Future.h>
#include <kelcore/threads/Clock.h>
#include <kelcore/threads/ManualClock.h>
#include <vantroauth/ResultCodes.h>
#include <vantroauth/jwt/AuthManager.h>
#include <vantrocommon/ResultCodes.h>

#include "PumpedVirtualTime.h"
#include "support/ClosedPort.h"
#include "support/SignInServiceFixture.h"

namespace vantroauthtest {
namespace {

namespace jwt = vantroauth::jwt;
using kelcore::async::ResultOf;

// Access tokens live 100 s: refreshed when less than 10 s (a tenth, under a minute) remain.
constexpr int kLifetime = 100;

class RefreshTest : public testsupport::SignInServiceFixture {
protected:
    void SetUp() override {
        testsupport::SignInServiceFixture::SetUp();
        AllowTokenFile();
    }

    /// Starts the service with short-lived access tokens and signs in from the command line.
    void SignInFromTheCommandLine() {
        StartService({"--access-token-ttl", std::to_string(kLifetime)});
        ASSERT_TRUE(Initialize().IsSuccess());
        ASSERT_TRUE(jwt::StoreTokenAnswer(kUser, IssueTokenAnswer(kLifetime)).IsSuccess());
        ASSERT_TRUE(jwt::AccessTokenExists(kUser).IsSuccess());
        ASSERT_FALSE(StoredRefreshToken().empty());
    }
};

TEST_F(RefreshTest, AnAccessTokenNearItsExpiryIsRefreshedBeforeUse) {
    auto clock = std::make_shared<kelcore::threads::ManualClock>();
    const auto previous = kelcore::threads::SetClock(clock);
    SignInFromTheCommandLine();
    const std::string first = StoredRefreshToken();
    const auto issued = Await(jwt::GetAccessToken(false));
    ASSERT_EQ(issued.result, 0);

    clock->AdvanceBy(std::chrono::seconds(kLifetime - 11));
    const auto early = Await(jwt::GetAccessToken(false));
    EXPECT_EQ(early.value, issued.value);
    EXPECT_EQ(StoredRefreshToken(), first);  // 11 s left: not refreshed yet

    clock->AdvanceBy(std::chrono::seconds(2));
    const auto late = Await(jwt::GetAccessToken(false));

    ASSERT_EQ(late.result, 0);
    const std::string second = StoredRefreshToken();
    EXPECT_NE(second, first);  // rotated and stored
    EXPECT_EQ(MeStatus(late.value), 200);
    EXPECT_EQ(RefreshStatus(first), 400);  // the old refresh token no longer works
    kelcore::threads::SetClock(previous);
}

TEST_F(RefreshTest, ATimerRefreshesAheadOfExpiryWhileSignedIn) {
    PumpedVirtualTime time;
    SignInFromTheCommandLine();
    const std::string first = StoredRefreshToken();

    time.AdvanceBy(std::chrono::seconds(kLifetime - 11));
    time.RunUntilIdle();
    EXPECT_EQ(StoredRefreshToken(), first);
    time.AdvanceBy(std::chrono::seconds(2));

    ASSERT_TRUE(time.PumpUntil([&] { return StoredRefreshToken() != first; }));
    const auto token = jwt::GetAccessToken(false);
    ASSERT_TRUE(time.PumpUntil([&] { return token.IsReady(); }));
    ASSERT_EQ(ResultOf(token), 0);
    EXPECT_EQ(MeStatus(token.Get()), 200);
    EXPECT_EQ(RefreshStatus(first), 400);
}

TEST_F(RefreshTest, ConcurrentCallersShareOneRefresh) {
    PumpedVirtualTime time;  // no reply is handled until the test pumps: every call overlaps
    SignInFromTheCommandLine();
    const std::string first = StoredRefreshToken();

    std::vector<kelcore::async::Future<std::string>> tokens(4);
    std::vector<std::thread> callers;
    for (auto& token : tokens) {
        callers.emplace_back([&token] { token = jwt::GetAccessToken(true); });
    }
    for (auto& caller : callers) {
        caller.join();
    }
    ASSERT_TRUE(time.PumpUntil([&] {
        return std::all_of(tokens.begin(), tokens.end(), [](const auto& t) { return t.IsReady(); });
    }));

    for (const auto& token : tokens) {
        ASSERT_EQ(ResultOf(token), 0);
        EXPECT_EQ(token.Get(), tokens.front().Get());
    }
    // A second refresh with the same token would have been a replay, which revokes the family.
    EXPECT_EQ(MeStatus(tokens.front().Get()), 200);
    EXPECT_NE(StoredRefreshToken(), first);
    EXPECT_TRUE(jwt::AccessTokenExists(kUser).IsSuccess());
}

TEST_F(RefreshTest, ARefusedRefreshSignsTheUserOutAndFailsEveryWaiter) {
    PumpedVirtualTime time;
    SignInFromTheCommandLine();
    const std::string refresh = StoredRefreshToken();
    ASSERT_EQ(client.PostForm(Url("/oauth/revoke"), {{"token", refresh}}).status, 200);

    const auto first = jwt::GetAccessToken(true);
    const auto second = jwt::GetAccessToken(true);
    ASSERT_TRUE(time.PumpUntil([&] { return first.IsReady() && second.IsReady(); }));

    EXPECT_EQ(ResultOf(first), vantroauth::kResultSessionEnded);
    EXPECT_EQ(ResultOf(second), vantroauth::kResultSessionEnded);
    EXPECT_EQ(jwt::AccessTokenExists(kUser).GetResult(), vantroauth::kResultNotSignedIn);
    EXPECT_EQ(StoredRefreshToken(), "");
    const auto after = jwt::GetAccessToken(false);
    ASSERT_TRUE(time.PumpUntil([&] { return after.IsReady(); }));
    EXPECT_EQ(ResultOf(after), vantroauth::kResultNotSignedIn);
}

TEST_F(RefreshTest, AnUnreachableServiceFailsTheRefreshAfterRetriesAndKeepsTheTokens) {
    PumpedVirtualTime time;
    SignInFromTheCommandLine();
    const std::string refresh = StoredRefreshToken();
    const auto port = server.Port();
    ASSERT_EQ(server.Stop(), 0);
    const testsupport::ClosedPort closed(port);  // refuses, and no other server can take it

    const auto token = jwt::GetAccessToken(true);
    // The retries wait on the executor's clock: each wait passes at once.
    ASSERT_TRUE(time.PumpUntil([&] {
        time.AdvanceToNextTask();
        return token.IsReady();
    }));

    EXPECT_EQ(ResultOf(token), vantrocommon::kResultNetworkFailure);
    EXPECT_TRUE(jwt::AccessTokenExists(kUser).IsSuccess());
    EXPECT_EQ(StoredRefreshToken(), refresh);
}

TEST_F(RefreshTest, WithNothingStoredNoOneIsSignedIn) {
    StartService();
    ASSERT_TRUE(Initialize().IsSuccess());

    EXPECT_EQ(jwt::AccessTokenExists(kUser).GetResult(), vantroauth::kResultNotSignedIn);
    EXPECT_EQ(Await(jwt::GetAccessToken(false)).result, vantroauth::kResultNotSignedIn);
    EXPECT_EQ(Await(jwt::GetAccessToken(true)).result, vantroauth::kResultNotSignedIn);
}

}  // namespace
}  // namespace vantroauthtest
