// A whole sign-in, refresh and sign-out with every trace category at level 5: nothing secret
// may show in the log, whole or in part.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <kelcore/debug/Trace.h>
#include <kelcore/logging/CapturedLogForTesting.h>
#include <vantroauth/BrowserOpener.h>
#include <vantroauth/jwt/AuthManager.h>

#include "LoginResult.h"
#include "support/SignInServiceFixture.h"
#include "support/TestBrowser.h"

namespace vantroauthtest {
namespace {

namespace jwt = vantroauth::jwt;

class SecretsInLogTest : public testsupport::SignInServiceFixture {};

// The pieces of a secret that would give it away: the whole, and for a JWT its signature;
// a prefix or suffix long enough to matter for anything else.
std::vector<std::string> Telltales(const std::string& secret) {
    std::vector<std::string> parts{secret};
    if (const auto dot = secret.rfind('.'); dot != std::string::npos) {
        parts.push_back(secret.substr(dot + 1));
    } else if (secret.size() > 24) {
        parts.push_back(secret.substr(0, 12));
        parts.push_back(secret.substr(secret.size() - 12));
    }
    return parts;
}

TEST_F(SecretsInLogTest, NoTokenCodeStateOrPasswordReachesTheLog) {
    AllowTokenFile();  // the test reads the refresh tokens the library kept
    kelcore::debug::SetTraceLevel("*", 5);
    kelcore::logging::CapturedLogForTesting log;
    // A password no log line could hold by chance.
    const std::string password = "Qz7-never-logged-K4";
    AddUser(kUser, password);
    StartServer();
    SetEnvironment("VANTRO_SERVICE_URL", Url(""));
    ASSERT_TRUE(Initialize().IsSuccess());
    testsupport::TestBrowser browser({.username = kUser, .password = password});
    vantroauth::SetBrowserOpener(browser.Opener());
    LoginResult result;

    ASSERT_TRUE(jwt::Login(kUser, result.Function()).IsSuccess());
    ASSERT_EQ(result.Wait(), 0);
    const std::string firstRefresh = StoredRefreshToken();
    const auto firstAccess = Await(jwt::GetAccessToken(false));
    const auto secondAccess = Await(jwt::GetAccessToken(true));
    const std::string secondRefresh = StoredRefreshToken();
    ASSERT_TRUE(jwt::Logout().IsSuccess());

    ASSERT_TRUE(browser.WaitForVisits(1));
    const auto visit = browser.Visits().at(0);
    ASSERT_EQ(firstAccess.result, 0);
    ASSERT_EQ(secondAccess.result, 0);
    const std::vector<std::pair<std::string, std::string>> secrets{
        {"first access token", firstAccess.value},
        {"second access token", secondAccess.value},
        {"first refresh token", firstRefresh},
        {"second refresh token", secondRefresh},
        {"authorization code", visit.code},
        {"state", testsupport::TestBrowser::QueryValue(visit.authorizeUrl, "state")},
        {"password", password},
    };
    for (const auto& [name, secret] : secrets) {
        ASSERT_GE(secret.size(), 6u) << name << " was not seen by the test";
    }

    const auto entries = log.Entries();
    std::size_t traced = 0;
    for (const auto& entry : entries) {
        traced += entry.text.find("[vantroauth]") != std::string::npos ? 1 : 0;
        for (const auto& [name, secret] : secrets) {
            for (const auto& part : Telltales(secret)) {
                EXPECT_EQ(entry.text.find(part), std::string::npos)
                    << "the " << name << " shows in the log line: " << entry.text;
            }
        }
    }
    // The flow was traced, so the check above had lines to look at.
    EXPECT_GE(traced, 5u);
}

}  // namespace
}  // namespace vantroauthtest
