#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <kelcore/debug/Trace.h>
#include <kelcore/logging/CapturedLogForTesting.h>
#include <kelcore/string/String.h>
#include <kelcore/utility/Guid.h>
#include <vantroauth/BrowserOpener.h>
#include <vantroauth/jwt/AuthManager.h>
#include <vantrokelui/model/CloudTransferCalls.h>
#include <vantrokelui/model/connector/SdkClient.h>
#include <vantrokelui/model/connector/SignIn.h>
#include <vantrosdk/Accounts.h>
#include <vantrosdk/GetCurrentUserRequest.h>
#include <vantrosdk/GetCurrentUserResponse.h>

#include "support/AwaitFuture.h"
#include "support/TestBrowser.h"
#include "vantrokelui/support/CloudShareFixture.h"

namespace {

namespace model = vantrokelui::model;
namespace integration = vantrokelui::model::VantroConnectorIntegration;
using kelcore::utility::Guid;
using vantrokeluitest::Recorded;

class SecretsInLogTest : public vantrokeluitest::CloudShareFixture {
protected:
    std::string LogFileText() const {
        std::ifstream file(directory.Path() / "state" / "vantrokelui" / "vantrokelui.log");
        std::stringstream text;
        text << file.rdbuf();
        return text.str();
    }
};

// Every trace category at its most talkative, through a browser sign-in, an upload, a link, a
// refused token and its refresh, and sign-out: no secret may reach a log line.
TEST_F(SecretsInLogTest, AFullRunLogsNoTokenCodeOrPassword) {
    kelcore::debug::SetTraceLevel("*", 5);
    kelcore::logging::CapturedLogForTesting log;
    AllowTokenFile();  // so the test can read the refresh tokens the run made
    StartWorld();
    testsupport::TestBrowser browser({.username = kUser, .password = kPassword});
    vantroauth::SetBrowserOpener(browser.Opener());
    std::vector<std::string> secrets = {kPassword};

    ASSERT_TRUE(SignInAndWait());
    ASSERT_EQ(browser.Visits().size(), 1u);
    secrets.push_back(browser.Visits().front().code);
    secrets.push_back(StoredRefreshToken(HomeUser()));
    secrets.push_back(testsupport::Await(vantroauth::jwt::GetAccessToken(false)));

    const auto path = directory.Path() / "clip.mp4";
    std::ofstream(path) << std::string(300000, 'v');
    auto finished = std::make_shared<Recorded<Guid>>();
    kelcore::string::string transferID;
    ASSERT_TRUE(model::UploadToFolder(
        kelcore::string::StdToUTF16String(path.string()), Guid(root), Guid::CreateUnique(),
        transferID, {},
        [finished](bool ok, bool, const Guid& asset) { finished->Add(ok ? asset : Guid()); }));
    const auto uploaded = finished->WaitFor(1);
    ASSERT_EQ(uploaded.size(), 1u);
    ASSERT_FALSE(uploaded.front().IsNil());

    auto linked = std::make_shared<Recorded<Guid>>();
    ASSERT_TRUE(model::CreateReviewLink(
        Guid(alpha), u"Secrets",
        [linked](bool, const Guid& link, const kelcore::string::string&) { linked->Add(link); }));
    ASSERT_EQ(linked->WaitFor(1).size(), 1u);

    // A refused token: the client asks for a new one, which the sign-in gets by refreshing.
    const auto client = integration::GetClient();
    ASSERT_TRUE(client->UpdateAccessToken("refused.by.service").IsSuccess());
    ASSERT_TRUE(testsupport::Await(vantroauth::jwt::GetAccessToken(true)).size() > 0);
    const auto me = testsupport::Await(
        client->GetAccounts()->GetCurrentUser(vantrosdk::GetCurrentUserRequest()));
    ASSERT_TRUE(me && me->IsSuccessful());
    secrets.push_back(StoredRefreshToken(HomeUser()));
    secrets.push_back(testsupport::Await(vantroauth::jwt::GetAccessToken(false)));

    integration::SignOut();

    const std::string fileText = LogFileText();
    const auto entries = log.Entries();
    ASSERT_FALSE(entries.empty()) << "the run logged nothing, so the test would prove nothing";
    for (const std::string& secret : secrets) {
        ASSERT_GE(secret.size(), 6u);
        EXPECT_EQ(fileText.find(secret), std::string::npos) << "a secret is in the log file";
        for (const auto& entry : entries) {
            EXPECT_EQ(entry.text.find(secret), std::string::npos) << "logged: " << entry.text;
        }
    }
}

}  // namespace
