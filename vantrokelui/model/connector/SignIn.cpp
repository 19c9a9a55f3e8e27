#include <vantrokelui/model/connector/SignIn.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include <kelcore/async/Executors.h>
#include <kelcore/async/Future.h>
#include <kelcore/config/ErrorHandling.h>
#include <kelcore/debug/Trace.h>
#include <kelcore/string/String.h>
#include <kelcore/utility/Keychain.h>
#include <vantroauth/ResultCodes.h>
#include <vantroauth/jwt/AuthManager.h>
#include <vantrokelui/model/connector/SdkClient.h>
#include <vantrokelui/sharedui/InitVantroCppSdk.h>
#include <vantrosdk/VantroClient.h>
#include <vantrosdk/VantroConfig.h>

namespace vantrokelui::model::VantroConnectorIntegration {

namespace {

using kelcore::async::Future;

std::mutex sSignInCallbackMutex;
std::function<void(bool)> sSignInCallback;

void SetSignInCallback(std::function<void(bool)> callback) {
    const std::lock_guard lock(sSignInCallbackMutex);
    sSignInCallback = std::move(callback);
}

std::function<void(bool)> CopySignInCallback() {
    const std::lock_guard lock(sSignInCallbackMutex);
    return sSignInCallback;
}

std::string HomeUserId() {
    return kelcore::string::UTF16toStdString(kelcore::utility::Keychain::GetHomeUserID());
}

// Continuations of a token run where the sign-in library completes it, else on the default pool.
std::shared_ptr<kelcore::threads::AsyncExecutor> ExecutorOf(const Future<std::string>& token) {
    if (auto executor = token.GetExecutor()) {
        return executor;
    }
    return kelcore::async::GetDefaultExecutor();
}

// Whether the refresh failure line is traced, asked again only when trace settings moved.
bool RefreshFailureTraced() {
    static std::atomic<std::uint32_t> sCheckedAtChange{~std::uint32_t{0}};
    static std::atomic<std::uint8_t> sEnabled{0};
    const std::uint32_t change = kelcore::debug::TraceChangeCount();
    if (sCheckedAtChange.load(std::memory_order_acquire) != change) {
        sEnabled.store(kelcore::debug::TraceEnabled("VantroNative", 5, true) ? 1 : 0,
                       std::memory_order_relaxed);
        sCheckedAtChange.store(change, std::memory_order_release);
    }
    return sEnabled.load(std::memory_order_relaxed) != 0;
}

void OnTokenRefreshRequested(const std::string& /*unused*/) {
    Future<std::string> token = vantroauth::jwt::GetAccessToken(false);
    token.Then(ExecutorOf(token), [](const Future<std::string>& answered) {
        if (kelcore::config::ExtractResultFromException(answered) < 0) {
            if (RefreshFailureTraced()) {
                kelcore::debug::Trace("VantroNative", 5, "Vantro token refresh failed\n");
            }
            return;
        }
        if (const auto client = GetClient()) {
            client->UpdateAccessToken(answered.Get());
        }
    });
}

// True when a token was there, whether or not the client took it.
bool InitClientFromToken(const Future<std::string>& token) {
    if (kelcore::config::ExtractResultFromException(token) < 0) {
        return false;
    }
    const std::string& accessToken = token.Get();
    const vantrosdk::VantroConfig config(detail::GetApplicationClient());
    if (!vantrosdk::VantroClient::Get()) {
        vantrosdk::VantroClient::Initialize(config, &OnTokenRefreshRequested);
    }
    SetClient(vantrosdk::VantroClient::Get());
    const auto client = GetClient();
    const bool taken = client && client->UpdateAccessToken(accessToken).IsSuccess();
    if (const auto callback = CopySignInCallback()) {
        callback(taken);
    }
    return true;
}

}  // namespace

void SignIn(const std::function<void(bool)>& callback) {
    SetSignInCallback(callback);
    Future<std::string> token = vantroauth::jwt::GetAccessToken(false);
    token.Then(ExecutorOf(token), [](const Future<std::string>& answered) {
        if (InitClientFromToken(answered)) {
            return;
        }
        const vantrocommon::Response login =
            vantroauth::jwt::Login(HomeUserId(), std::function<void(int)>());
        if (login.IsSuccess() || login.GetResult() != vantroauth::kResultLoginPending) {
            return;
        }
        // The browser is open; the sign-in's outcome arrives as the next token.
        Future<std::string> pending = vantroauth::jwt::GetAccessToken(false);
        pending.Then(ExecutorOf(pending),
                     [](const Future<std::string>& signedIn) { InitClientFromToken(signedIn); });
    });
}

void SignInQuiet(std::function<void()> callback) {
    if (!vantroauth::jwt::AccessTokenExists(HomeUserId()).IsSuccess()) {
        return;
    }
    Future<std::string> token = vantroauth::jwt::GetAccessToken(false);
    token.Then(ExecutorOf(token),
               [callback = std::move(callback)](const Future<std::string>& answered) {
                   if (kelcore::config::ExtractResultFromException(answered) < 0) {
                       return;
                   }
                   if (callback) {
                       callback();
                   }
               });
}

void SignOut() {
    if (!vantroauth::jwt::Logout().IsSuccess()) {
        return;
    }
    if (const auto callback = CopySignInCallback()) {
        callback(false);
        ClearClient();
    }
}

bool IsSignedIn() {
    return vantroauth::jwt::AccessTokenExists(HomeUserId()).IsSuccess();
}

}  // namespace vantrokelui::model::VantroConnectorIntegration
