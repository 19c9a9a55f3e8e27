#include "CloudShareFixture.h"

#include <memory>

#include <kelcore/string/String.h>
#include <kelcore/utility/Keychain.h>
#include <vantroauth/jwt/AuthManager.h>
#include <vantrokelui/model/connector/SdkClient.h>
#include <vantrokelui/model/connector/SignIn.h>
#include <vantrokelui/sharedui/InitVantroCppSdk.h>
#include <vantrosdk/VantroClient.h>

namespace vantrokeluitest {

namespace integration = vantrokelui::model::VantroConnectorIntegration;

void CloudShareFixture::TearDown() {
    integration::ClearClient();
    vantrosdk::VantroClient::ResetForTesting();
    SignInServiceFixture::TearDown();
}

void CloudShareFixture::StartWorld(std::vector<std::string> extra) {
    extra.insert(extra.begin(), "--enable-test-hooks");
    StartService(std::move(extra));
    studio = AdminId({"account", "add", "--name", "Studio", "--owner", kUser, "--storage-limit",
                      std::to_string(std::uint64_t{1} << 34)});
    editors = AdminId({"team", "add", "--account", studio, "--name", "Editors", "--member", kUser});
    const auto ids = IdsIn(Admin({"project", "add", "--team", editors, "--name", "Alpha"}));
    ASSERT_GE(ids.size(), 2u) << "project add printed no project and folder id";
    alpha = ids[0];
    root = ids[1];
    vantrokelui::InitVantroCppSdk(kelcore::string::StdToUTF16String(kClientId),
                                  kelcore::string::StdToUTF16String(kRedirectUri));
}

std::string CloudShareFixture::HomeUser() {
    return kelcore::string::UTF16toStdString(kelcore::utility::Keychain::GetHomeUserID());
}

void CloudShareFixture::StoreToken(int accessTokenTtl) {
    const auto stored =
        vantroauth::jwt::StoreTokenAnswer(HomeUser(), IssueTokenAnswer(accessTokenTtl));
    ASSERT_TRUE(stored.IsSuccess()) << stored.GetMessage();
}

bool CloudShareFixture::SignInAndWait() {
    auto results = std::make_shared<Recorded<bool>>();
    integration::SignIn([results](bool signedIn) { results->Add(signedIn); });
    const auto values = results->WaitFor(1);
    EXPECT_EQ(values.size(), 1u) << "the sign-in callback was not called";
    return !values.empty() && values.front();
}

}  // namespace vantrokeluitest
