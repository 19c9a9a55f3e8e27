#include "support/SignInServiceFixture.h"

#include "support/AwaitFuture.h"

#include <boost/json/parse.hpp>

#include <fstream>
#include <sstream>

#include <kelcore/config/ResultCode.h>
#include <kelcore/logging/Logging.h>
#include <vantroauth/BrowserOpener.h>
#include <vantroauth/jwt/AuthManager.h>

namespace testsupport {

void SignInServiceFixture::SetUp() {
    const auto& root = directory.Path();
    for (const char* name : {"home", "config", "state", "data", "cache", "runtime"}) {
        std::filesystem::create_directories(root / name);
        std::filesystem::permissions(root / name, std::filesystem::perms::owner_all);
    }
    SetEnvironment("HOME", (root / "home").string());
    SetEnvironment("XDG_CONFIG_HOME", (root / "config").string());
    SetEnvironment("XDG_STATE_HOME", (root / "state").string());
    SetEnvironment("XDG_DATA_HOME", (root / "data").string());
    SetEnvironment("XDG_CACHE_HOME", (root / "cache").string());
    SetEnvironment("XDG_RUNTIME_DIR", (root / "runtime").string());
    SetEnvironment("KELCORE_DEBUG_DATABASE", (root / "debug.conf").string());
    // Nothing listens there: no keyring answers unless a test starts one.
    SetEnvironment("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + (root / "no-bus").string());
    SetEnvironment("DISPLAY", std::nullopt);
    SetEnvironment("VANTRO_ALLOW_TOKEN_FILE", std::nullopt);
    SetEnvironment("KELDEBUG_VantroAuth_AllowTokenFile", std::nullopt);
    SetEnvironment("VANTRO_CA_FILE", std::nullopt);
    kelcore::logging::ResetLoggingForTesting();
}

void SignInServiceFixture::TearDown() {
    vantroauth::SetBrowserOpener({});
    VantroServerFixture::TearDown();
}

void SignInServiceFixture::SetEnvironment(const std::string& name,
                                          std::optional<std::string> value) {
    environment.push_back(std::make_unique<ScopedEnvironmentVariable>(name, std::move(value)));
}

void SignInServiceFixture::StartService(std::vector<std::string> extra) {
    AddUser(kUser, kPassword);
    StartServer(std::move(extra));
    SetEnvironment("VANTRO_SERVICE_URL", Url(""));
}

vantrocommon::Response SignInServiceFixture::Initialize() {
    return vantroauth::jwt::InitializeAuthManager(kClientId, kRedirectUri,
                                                  vantrocommon::EnvironmentType::Configured, "");
}

SignInServiceFixture::Outcome SignInServiceFixture::Await(
    const kelcore::async::Future<std::string>& future) {
    if (!WaitFor(future)) {
        ADD_FAILURE() << "the future did not complete";
        return {kelcore::config::kResultFutureNotReady, {}};
    }
    Outcome outcome;
    outcome.result = kelcore::async::ResultOf(future);
    if (outcome.result == 0) {
        outcome.value = future.Get();
    }
    return outcome;
}

std::string SignInServiceFixture::IssueTokenAnswer(int accessTokenTtl) {
    return Admin(
        {"token", "issue", "--user", kUser, "--access-token-ttl", std::to_string(accessTokenTtl)});
}

std::filesystem::path SignInServiceFixture::TokenFile() const {
    return directory.Path() / "config" / "vantrokelui" / "tokens.json";
}

std::string SignInServiceFixture::StoredRefreshToken(const std::string& user) const {
    std::ifstream file(TokenFile());
    if (!file) {
        return {};
    }
    std::stringstream text;
    text << file.rdbuf();
    boost::system::error_code error;
    const auto document = boost::json::parse(text.str(), error);
    if (error || !document.is_object()) {
        return {};
    }
    for (const auto& entry : document.at("tokens").as_array()) {
        if (entry.at("user").as_string() == user) {
            return std::string(entry.at("refresh_token").as_string());
        }
    }
    return {};
}

long SignInServiceFixture::MeStatus(const std::string& accessToken) {
    return client.Get(Url("/v2/me"), Bearer(accessToken)).status;
}

long SignInServiceFixture::RefreshStatus(const std::string& refreshToken) {
    return Refresh(refreshToken).status;
}

}  // namespace testsupport
