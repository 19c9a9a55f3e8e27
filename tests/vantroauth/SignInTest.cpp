// Interactive sign-in against the real server: the browser is the test browser, which signs in
// through the service's form and follows the redirect to the library's loopback listener.
#include <gtest/gtest.h>

#include <mutex>
#include <string>

#include <kelcore/async/Future.h>
#include <vantroauth/BrowserOpener.h>
#include <vantroauth/ResultCodes.h>
#include <vantroauth/jwt/AuthManager.h>

#include "LoginResult.h"
#include "PumpedVirtualTime.h"
#include "support/SignInServiceFixture.h"
#include "support/TestBrowser.h"

namespace vantroauthtest {
namespace {

using testsupport::TestBrowser;
namespace jwt = vantroauth::jwt;

class SignInTest : public testsupport::SignInServiceFixture {
protected:
    TestBrowser::Options SignInAs(
        TestBrowser::Behaviour behaviour = TestBrowser::Behaviour::SignIn) {
        return {.username = kUser, .password = kPassword, .behaviour = behaviour};
    }
};

// An opener that only records the URL, so the test decides when "the browser" acts.
class HeldOpener {
public:
    std::function<bool(const std::string&)> Opener() {
        return [this](const std::string& url) {
            std::lock_guard lock(mutex);
            urls.push_back(url);
            return true;
        };
    }
    std::vector<std::string> Urls() const {
        std::lock_guard lock(mutex);
        return urls;
    }

private:
    mutable std::mutex mutex;
    std::vector<std::string> urls;
};

TEST_F(SignInTest, LoginThroughTheBrowserGivesATokenTheServiceAccepts) {
    StartService();
    ASSERT_TRUE(Initialize().IsSuccess());
    TestBrowser browser(SignInAs());
    vantroauth::SetBrowserOpener(browser.Opener());
    LoginResult result;

    const auto response = jwt::Login(kUser, result.Function());

    ASSERT_TRUE(response.IsSuccess()) << response.GetMessage();
    EXPECT_EQ(result.Wait(), 0);
    ASSERT_TRUE(browser.WaitForVisits(1));
    const auto visit = browser.Visits().at(0);
    EXPECT_EQ(visit.formStatus, 200);
    EXPECT_EQ(visit.signInStatus, 302);
    EXPECT_EQ(visit.callbackStatus, 200);
    EXPECT_NE(visit.callbackBody.find("Signed in"), std::string::npos) << visit.callbackBody;
    EXPECT_TRUE(jwt::AccessTokenExists(kUser).IsSuccess());
    const auto token = Await(jwt::GetAccessToken(false));
    ASSERT_EQ(token.result, 0);
    EXPECT_EQ(MeStatus(token.value), 200);
    EXPECT_EQ(result.CallCount(), 1u);
}

TEST_F(SignInTest, LoginWithoutAFunctionIsPendingAndTheNextTokenWaitsForTheBrowser) {
    StartService();
    ASSERT_TRUE(Initialize().IsSuccess());
    HeldOpener held;
    vantroauth::SetBrowserOpener(held.Opener());

    const auto response = jwt::Login(kUser, {});
    const auto token = jwt::GetAccessToken(false);

    EXPECT_EQ(response.GetResult(), vantroauth::kResultLoginPending);
    ASSERT_EQ(held.Urls().size(), 1u);
    EXPECT_FALSE(token.IsReady());  // nothing can answer it before the browser comes back
    TestBrowser browser(SignInAs());
    browser.Opener()(held.Urls().at(0));
    const auto outcome = Await(token);
    ASSERT_EQ(outcome.result, 0);
    EXPECT_EQ(MeStatus(outcome.value), 200);
}

TEST_F(SignInTest, ALoginWhileOneRunsJoinsIt) {
    StartService();
    ASSERT_TRUE(Initialize().IsSuccess());
    HeldOpener held;
    vantroauth::SetBrowserOpener(held.Opener());
    LoginResult first;
    LoginResult second;

    ASSERT_TRUE(jwt::Login(kUser, first.Function()).IsSuccess());
    ASSERT_TRUE(jwt::Login(kUser, second.Function()).IsSuccess());
    EXPECT_EQ(jwt::Login(kUser, {}).GetResult(), vantroauth::kResultLoginPending);

    ASSERT_EQ(held.Urls().size(), 1u);  // one browser window for all three
    TestBrowser browser(SignInAs());
    browser.Opener()(held.Urls().at(0));
    EXPECT_EQ(first.Wait(), 0);
    EXPECT_EQ(second.Wait(), 0);
}

TEST_F(SignInTest, TheRedirectUriGetsTheListenersPortAndKeepsThePath) {
    StartService();
    ASSERT_TRUE(Initialize().IsSuccess());
    HeldOpener held;
    vantroauth::SetBrowserOpener(held.Opener());
    LoginResult result;
    ASSERT_TRUE(jwt::Login(kUser, result.Function()).IsSuccess());
    ASSERT_EQ(held.Urls().size(), 1u);
    const std::string url = held.Urls().at(0);

    EXPECT_EQ(url.rfind(Url("/oauth/authorize?"), 0), 0u) << url;
    EXPECT_EQ(TestBrowser::QueryValue(url, "response_type"), "code");
    EXPECT_EQ(TestBrowser::QueryValue(url, "client_id"), kClientId);
    EXPECT_EQ(TestBrowser::QueryValue(url, "code_challenge_method"), "S256");
    EXPECT_EQ(TestBrowser::QueryValue(url, "code_challenge").size(), 43u);
    EXPECT_EQ(TestBrowser::QueryValue(url, "state").size(), 43u);
    const std::string redirect = TestBrowser::QueryValue(url, "redirect_uri");
    const std::string prefix = "http://127.0.0.1:";
    ASSERT_EQ(redirect.rfind(prefix, 0), 0u) << redirect;
    const auto pathStart = redirect.find('/', prefix.size());
    ASSERT_NE(pathStart, std::string::npos);
    EXPECT_EQ(redirect.substr(pathStart), "/callback");
    const int port = std::stoi(redirect.substr(prefix.size(), pathStart - prefix.size()));
    EXPECT_GT(port, 0);
    EXPECT_NE(port, 53682);  // the configured port is replaced

    // The listener answers other paths with 404 and goes on waiting for the redirect.
    testsupport::HttpClient probe;
    EXPECT_EQ(probe.Get(prefix + std::to_string(port) + "/favicon.ico").status, 404);
    testsupport::HttpClient other;
    EXPECT_EQ(other.Get(prefix + std::to_string(port) + "/elsewhere?code=x&state=y").status, 404);
    EXPECT_FALSE(result.Called());

    TestBrowser browser(SignInAs());
    browser.Opener()(url);
    EXPECT_EQ(result.Wait(), 0);
    ASSERT_TRUE(browser.WaitForVisits(1));
    EXPECT_EQ(browser.Visits().at(0).callbackStatus, 200);
    // Once answered, the listener is gone.
    testsupport::HttpClient late;
    EXPECT_EQ(late.Get(redirect + "?code=x&state=y").status, 0);
}

TEST_F(SignInTest, AWrongStateFailsTheLogin) {
    StartService();
    ASSERT_TRUE(Initialize().IsSuccess());
    TestBrowser browser(SignInAs(TestBrowser::Behaviour::WrongState));
    vantroauth::SetBrowserOpener(browser.Opener());
    LoginResult result;

    ASSERT_TRUE(jwt::Login(kUser, result.Function()).IsSuccess());

    EXPECT_EQ(result.Wait(), vantroauth::kResultLoginFailed);
    ASSERT_TRUE(browser.WaitForVisits(1));
    const auto visit = browser.Visits().at(0);
    EXPECT_EQ(visit.callbackStatus, 200);
    EXPECT_NE(visit.callbackBody.find("Sign-in failed"), std::string::npos) << visit.callbackBody;
    EXPECT_EQ(jwt::AccessTokenExists(kUser).GetResult(), vantroauth::kResultNotSignedIn);
}

TEST_F(SignInTest, ADeniedRequestFailsTheLogin) {
    StartService();
    ASSERT_TRUE(Initialize().IsSuccess());
    TestBrowser browser(SignInAs(TestBrowser::Behaviour::Deny));
    vantroauth::SetBrowserOpener(browser.Opener());
    LoginResult result;

    ASSERT_TRUE(jwt::Login(kUser, result.Function()).IsSuccess());

    EXPECT_EQ(result.Wait(), vantroauth::kResultLoginFailed);
    ASSERT_TRUE(browser.WaitForVisits(1));
    EXPECT_EQ(browser.Visits().at(0).callbackStatus, 200);
    EXPECT_EQ(jwt::AccessTokenExists(kUser).GetResult(), vantroauth::kResultNotSignedIn);
}

TEST_F(SignInTest, AnOpenerThatRefusesAnswersBrowserUnavailable) {
    StartService();
    ASSERT_TRUE(Initialize().IsSuccess());
    TestBrowser browser(SignInAs(TestBrowser::Behaviour::Refuse));
    vantroauth::SetBrowserOpener(browser.Opener());
    LoginResult result;

    const auto response = jwt::Login(kUser, result.Function());

    EXPECT_EQ(response.GetResult(), vantroauth::kResultBrowserUnavailable);
    // No sign-in is left running: the token is not waited for, it is refused at once.
    EXPECT_EQ(Await(jwt::GetAccessToken(false)).result, vantroauth::kResultNotSignedIn);
    EXPECT_FALSE(result.Called());  // the caller heard it from the answer
}

TEST_F(SignInTest, EveryCallBeforeInitializeIsRefused) {
    LoginResult result;
    EXPECT_EQ(jwt::Login(kUser, result.Function()).GetResult(), vantroauth::kResultNotInitialized);
    EXPECT_EQ(jwt::AccessTokenExists(kUser).GetResult(), vantroauth::kResultNotInitialized);
    EXPECT_EQ(jwt::Logout().GetResult(), vantroauth::kResultNotInitialized);
    EXPECT_EQ(jwt::StoreTokenAnswer(kUser, "{}").GetResult(), vantroauth::kResultNotInitialized);
    EXPECT_EQ(Await(jwt::GetAccessToken(false)).result, vantroauth::kResultNotInitialized);
}

TEST_F(SignInTest, ALoginTheBrowserNeverFinishesTimesOutAfterFiveMinutes) {
    PumpedVirtualTime time;
    StartService();
    ASSERT_TRUE(Initialize().IsSuccess());
    HeldOpener held;
    vantroauth::SetBrowserOpener(held.Opener());
    LoginResult result;
    ASSERT_TRUE(jwt::Login(kUser, result.Function()).IsSuccess());
    const auto token = jwt::GetAccessToken(false);

    time.AdvanceBy(std::chrono::minutes(5) - std::chrono::seconds(1));
    time.RunUntilIdle();
    EXPECT_FALSE(result.Called());
    EXPECT_FALSE(token.IsReady());
    time.AdvanceBy(std::chrono::seconds(2));

    ASSERT_TRUE(time.PumpUntil([&] { return result.Called() && token.IsReady(); }));
    EXPECT_EQ(result.Wait(), vantroauth::kResultLoginFailed);
    EXPECT_EQ(kelcore::async::ResultOf(token), vantroauth::kResultLoginFailed);
    // The listener closed with the time-out.
    const std::string redirect = TestBrowser::QueryValue(held.Urls().at(0), "redirect_uri");
    testsupport::HttpClient late;
    EXPECT_EQ(late.Get(redirect + "?code=x&state=y").status, 0);
}

TEST_F(SignInTest, AWrongPasswordBringsNoRedirectAndTheLoginTimesOut) {
    PumpedVirtualTime time;
    StartService();
    ASSERT_TRUE(Initialize().IsSuccess());
    jwt::SetLoginTimeout(std::chrono::seconds(30));
    TestBrowser browser(SignInAs(TestBrowser::Behaviour::WrongPassword));
    vantroauth::SetBrowserOpener(browser.Opener());
    LoginResult result;
    ASSERT_TRUE(jwt::Login(kUser, result.Function()).IsSuccess());

    ASSERT_TRUE(browser.WaitForVisits(1));
    const auto visit = browser.Visits().at(0);
    EXPECT_EQ(visit.signInStatus, 200);  // the form again, no redirect
    EXPECT_EQ(visit.callbackStatus, 0);
    time.RunUntilIdle();
    EXPECT_FALSE(result.Called());
    time.AdvanceBy(std::chrono::seconds(30));

    ASSERT_TRUE(time.PumpUntil([&] { return result.Called(); }));
    EXPECT_EQ(result.Wait(), vantroauth::kResultLoginFailed);
}

TEST_F(SignInTest, LogoutStopsARunningLogin) {
    StartService();
    ASSERT_TRUE(Initialize().IsSuccess());
    HeldOpener held;
    vantroauth::SetBrowserOpener(held.Opener());
    LoginResult result;
    ASSERT_TRUE(jwt::Login(kUser, result.Function()).IsSuccess());
    const auto token = jwt::GetAccessToken(false);

    EXPECT_TRUE(jwt::Logout().IsSuccess());

    EXPECT_EQ(result.Wait(), vantroauth::kResultLoginFailed);
    EXPECT_EQ(Await(token).result, vantroauth::kResultNotSignedIn);
    const std::string redirect = TestBrowser::QueryValue(held.Urls().at(0), "redirect_uri");
    testsupport::HttpClient late;
    EXPECT_EQ(late.Get(redirect + "?code=x&state=y").status, 0);
}

TEST_F(SignInTest, LogoutSignsOutAndRevokesTheRefreshTokenAtTheService) {
    AllowTokenFile();  // so the test can read the refresh token the library kept
    StartService();
    ASSERT_TRUE(Initialize().IsSuccess());
    TestBrowser browser(SignInAs());
    vantroauth::SetBrowserOpener(browser.Opener());
    LoginResult result;
    ASSERT_TRUE(jwt::Login(kUser, result.Function()).IsSuccess());
    ASSERT_EQ(result.Wait(), 0);
    const std::string refresh = StoredRefreshToken();
    ASSERT_FALSE(refresh.empty());

    const auto response = jwt::Logout();

    EXPECT_TRUE(response.IsSuccess()) << response.GetMessage();
    EXPECT_EQ(jwt::AccessTokenExists(kUser).GetResult(), vantroauth::kResultNotSignedIn);
    EXPECT_EQ(StoredRefreshToken(), "");
    EXPECT_EQ(Await(jwt::GetAccessToken(false)).result, vantroauth::kResultNotSignedIn);
    EXPECT_EQ(RefreshStatus(refresh), 400);
}

TEST_F(SignInTest, StoreTokenAnswerTakesTheCommandLineSignIn) {
    StartService();
    ASSERT_TRUE(Initialize().IsSuccess());
    const std::string answer = IssueTokenAnswer();

    const auto response = jwt::StoreTokenAnswer(kUser, answer);

    ASSERT_TRUE(response.IsSuccess()) << response.GetMessage();
    EXPECT_TRUE(jwt::AccessTokenExists(kUser).IsSuccess());
    const auto token = Await(jwt::GetAccessToken(false));
    ASSERT_EQ(token.result, 0);
    EXPECT_NE(answer.find("\"" + token.value + "\""), std::string::npos);
    EXPECT_EQ(MeStatus(token.value), 200);
}

TEST_F(SignInTest, StoreTokenAnswerRefusesWhatIsNotATokenAnswer) {
    StartService();
    ASSERT_TRUE(Initialize().IsSuccess());

    EXPECT_EQ(jwt::StoreTokenAnswer(kUser, "not json").GetResult(),
              kelcore::config::kResultParseError);
    EXPECT_EQ(
        jwt::StoreTokenAnswer(kUser, R"({"token_type":"Bearer","expires_in":60})").GetResult(),
        kelcore::config::kResultParseError);
    EXPECT_EQ(
        jwt::StoreTokenAnswer(kUser, R"({"access_token":"a","expires_in":"soon"})").GetResult(),
        kelcore::config::kResultParseError);
    EXPECT_EQ(jwt::AccessTokenExists(kUser).GetResult(), vantroauth::kResultNotSignedIn);
}

}  // namespace
}  // namespace vantroauthtest
