#include <gtest/gtest.h>

#include <memory>
#include <string>

#include <kelcore/debug/Trace.h>
#include <kelcore/logging/CapturedLogForTesting.h>
#include <kelcore/threads/VirtualTime.h>
#include <vantroauth/BrowserOpener.h>
#include <vantroauth/jwt/AuthManager.h>
#include <vantrokelui/model/connector/SdkClient.h>
#include <vantrokelui/model/connector/SignIn.h>
#include <vantrosdk/Accounts.h>
#include <vantrosdk/GetCurrentUserRequest.h>
#include <vantrosdk/GetCurrentUserResponse.h>
#include <vantrosdk/VantroClient.h>
#include <vantrosdk/VantroConfig.h>

#include "support/AwaitFuture.h"
#include "support/TestBrowser.h"
#include "vantrokelui/support/CloudShareFixture.h"

namespace {

namespace integration = vantrokelui::model::VantroConnectorIntegration;
using testsupport::TestBrowser;
using vantrokeluitest::Recorded;

class ConnectorSignInTest : public vantrokeluitest::CloudShareFixture {
protected:
    // The user the client's token belongs to, asked of the service through the client.
    std::string SignedInUsername(const std::shared_ptr<vantrosdk::VantroClient>& client) {
        const auto response = testsupport::Await(
            client->GetAccounts()->GetCurrentUser(vantrosdk::GetCurrentUserRequest()));
        EXPECT_TRUE(response && response->IsSuccessful());
        return response ? response->GetUserObject().username : std::string();
    }
};

TEST_F(ConnectorSignInTest, WithoutATokenTheBrowserSignsInAndTheClientTakesTheToken) {
    StartWorld();
    TestBrowser browser({.username = kUser, .password = kPassword});
    vantroauth::SetBrowserOpener(browser.Opener());

    EXPECT_TRUE(SignInAndWait());

    EXPECT_EQ(browser.Visits().size(), 1u);
    const auto client = integration::GetClient();
    ASSERT_NE(client, nullptr);
    EXPECT_EQ(client, vantrosdk::VantroClient::Get());
    EXPECT_EQ(SignedInUsername(client), kUser);
    EXPECT_TRUE(integration::IsSignedIn());
}

TEST_F(ConnectorSignInTest, WithAStoredTokenNoBrowserOpensAndTheCallbackHearsTheClientTookIt) {
    StartWorld();
    StoreToken();
    TestBrowser browser({.username = kUser, .password = kPassword});
    vantroauth::SetBrowserOpener(browser.Opener());

    EXPECT_TRUE(SignInAndWait());

    EXPECT_TRUE(browser.Visits().empty());
    ASSERT_NE(integration::GetClient(), nullptr);
    EXPECT_EQ(SignedInUsername(integration::GetClient()), kUser);
}

TEST_F(ConnectorSignInTest, ABrowserSignInThatFailsNeverCallsBack) {
    StartWorld();
    TestBrowser browser(
        {.username = kUser, .password = kPassword, .behaviour = TestBrowser::Behaviour::Deny});
    vantroauth::SetBrowserOpener(browser.Opener());
    auto results = std::make_shared<Recorded<bool>>();

    integration::SignIn([results](bool signedIn) { results->Add(signedIn); });
    ASSERT_TRUE(browser.WaitForVisits(1));
    // The denied sign-in ends the pending token; after it nobody is signed in.
    EXPECT_NE(testsupport::AwaitResult(vantroauth::jwt::GetAccessToken(false)), 0);

    EXPECT_TRUE(results->Values().empty());
    EXPECT_EQ(integration::GetClient(), nullptr);
}

TEST_F(ConnectorSignInTest, SignOutTellsTheCallbackAndDropsTheClientButTheSdkKeepsIt) {
    StartWorld();
    StoreToken();
    auto results = std::make_shared<Recorded<bool>>();
    integration::SignIn([results](bool signedIn) { results->Add(signedIn); });
    ASSERT_EQ(results->WaitFor(1), std::vector<bool>{true});
    const auto client = integration::GetClient();

    integration::SignOut();

    EXPECT_EQ(results->Values(), (std::vector<bool>{true, false}));
    EXPECT_EQ(integration::GetClient(), nullptr);
    EXPECT_EQ(vantrosdk::VantroClient::Get(), client);
    EXPECT_FALSE(integration::IsSignedIn());
}

TEST_F(ConnectorSignInTest, ASecondSignInAfterSignOutTakesTheSameClientBack) {
    StartWorld();
    StoreToken();
    ASSERT_TRUE(SignInAndWait());
    const auto first = integration::GetClient();
    integration::SignOut();
    StoreToken();

    EXPECT_TRUE(SignInAndWait());

    EXPECT_EQ(integration::GetClient(), first);
    EXPECT_EQ(vantrosdk::VantroClient::Get(), first);
    EXPECT_EQ(SignedInUsername(first), kUser);
}

TEST_F(ConnectorSignInTest, AFailedSignOutChangesNothing) {
    // The sign-in library never started, so its sign-out fails.
    auto results = std::make_shared<Recorded<bool>>();
    integration::SignIn([results](bool signedIn) { results->Add(signedIn); });
    StartService();
    ASSERT_TRUE(
        vantrosdk::VantroClient::Initialize(vantrosdk::VantroConfig(kClientId), {}).IsSuccess());
    integration::SetClient(vantrosdk::VantroClient::Get());
    ASSERT_FALSE(vantroauth::jwt::Logout().IsSuccess());

    integration::SignOut();

    EXPECT_EQ(integration::GetClient(), vantrosdk::VantroClient::Get());
    EXPECT_TRUE(results->Values().empty());
}

TEST_F(ConnectorSignInTest, SignOutWithoutAnySignInCallbackKeepsTheClient) {
    StartWorld();
    ASSERT_TRUE(
        vantrosdk::VantroClient::Initialize(vantrosdk::VantroConfig(kClientId), {}).IsSuccess());
    integration::SetClient(vantrosdk::VantroClient::Get());

    integration::SignOut();

    EXPECT_NE(integration::GetClient(), nullptr);
}

TEST_F(ConnectorSignInTest, QuietSignInWithoutAStoredTokenNeverCallsBack) {
    kelcore::threads::VirtualTime time;
    StartWorld();
    bool called = false;

    integration::SignInQuiet([&called] { called = true; });
    time.RunUntilIdle();

    EXPECT_FALSE(called);
    EXPECT_EQ(time.PendingCount(), 0u);
}

TEST_F(ConnectorSignInTest, QuietSignInWithAStoredTokenCallsBackAndLeavesTheClientAlone) {
    StartWorld();
    StoreToken();
    auto results = std::make_shared<Recorded<bool>>();

    integration::SignInQuiet([results] { results->Add(true); });

    EXPECT_EQ(results->WaitFor(1).size(), 1u);
    EXPECT_EQ(integration::GetClient(), nullptr);
}

TEST_F(ConnectorSignInTest, IsSignedInFollowsTheStoredToken) {
    StartWorld();
    EXPECT_FALSE(integration::IsSignedIn());

    StoreToken();
    EXPECT_TRUE(integration::IsSignedIn());

    ASSERT_TRUE(SignInAndWait());
    integration::SignOut();
    EXPECT_FALSE(integration::IsSignedIn());
}

TEST_F(ConnectorSignInTest, ATokenTheServiceRefusesIsReplacedThroughTheRefreshRequest) {
    StartWorld();
    StoreToken();
    ASSERT_TRUE(SignInAndWait());
    const auto client = integration::GetClient();
    ASSERT_TRUE(client->UpdateAccessToken("refused.by.service").IsSuccess());

    // The 401 makes the SDK ask for a token; the sign-in gives it one and the request goes again.
    EXPECT_EQ(SignedInUsername(client), kUser);
}

TEST_F(ConnectorSignInTest, ARefreshWithoutATokenIsTraced) {
    kelcore::debug::SetTraceLevel("VantroNative", 5);
    kelcore::logging::CapturedLogForTesting log;
    StartWorld();
    StoreToken();
    ASSERT_TRUE(SignInAndWait());
    const auto client = integration::GetClient();
    // Signed out underneath the client, which therefore still holds its pointer.
    ASSERT_TRUE(vantroauth::jwt::Logout().IsSuccess());
    ASSERT_TRUE(client->UpdateAccessToken("refused.by.service").IsSuccess());

    const auto pending = client->GetAccounts()->GetCurrentUser(vantrosdk::GetCurrentUserRequest());

    EXPECT_TRUE(testsupport::WaitUntil([&] {
        for (const auto& entry : log.Entries()) {
            if (entry.text.find("[VantroNative] Vantro token refresh failed") !=
                std::string::npos) {
                return true;
            }
        }
        return false;
    }));
    pending.Cancel();
}

}  // namespace
