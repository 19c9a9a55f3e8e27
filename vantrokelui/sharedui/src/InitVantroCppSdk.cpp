#include <vantrokelui/sharedui/InitVantroCppSdk.h>

#include <algorithm>
#include <mutex>

#include <kelcore/config/ProcessBeginEndNotificationRegistrar.h>
#include <kelcore/config/kel_exception.h>
#include <vantroauth/jwt/AuthManager.h>
#include <vantrosdk/EnvironmentType.h>

namespace vantrokelui {

namespace {

constexpr kelcore::config::ResultCode kResultClientNameNotSet =
    kelcore::config::MakeResultCode(0xF865001E);

// Written at start-up and by process begin, read at sign-in; the design lets them go without a
// lock because those never overlap, but a small mutex keeps them race-free for certain.
std::mutex sValuesMutex;
std::string sClientId;
std::string sRedirectUri;
std::string sVantroClientName;

void ReadClientName(const kelcore::config::ProcessParameters& parameters) {
    const auto found = std::find_if(
        parameters.begin(), parameters.end(),
        [](const auto& parameter) { return parameter.name == kVantroClientNameParameter; });
    std::string name;
    if (found != parameters.end() && found->HoldsText()) {
        name = kelcore::string::StdToUTF8String(*found->Text());
    }
    const std::lock_guard lock(sValuesMutex);
    sVantroClientName = std::move(name);
}

const kelcore::config::ProcessBeginEndNotificationRegistrar sClientNameRegistrar(ReadClientName);

}  // namespace

void InitVantroCppSdk(const kelcore::string::string& applicationClient,
                      const kelcore::string::string& redirectUri) {
    if (applicationClient.empty() || redirectUri.empty()) {
        return;
    }
    std::string clientId = kelcore::string::UTF16toStdString(applicationClient);
    std::string redirect = kelcore::string::UTF16toStdString(redirectUri);
    {
        const std::lock_guard lock(sValuesMutex);
        sClientId = clientId;
        sRedirectUri = redirect;
    }
    // The answer is not looked at: a sign-in library that failed to start answers every later
    // call with a failure, which the sign-in flow already handles.
    vantroauth::jwt::InitializeAuthManager(clientId, redirect, vantrosdk::EnvironmentType(0), "");
}

std::string GetVantroClientName() {
    std::string name;
    {
        const std::lock_guard lock(sValuesMutex);
        name = sVantroClientName;
    }
    if (name.empty()) {
        kelcore::config::kel_exception error("Vantro client name not set", kResultClientNameNotSet);
        error.AddAdditionalData({
            {kelcore::config::kDebugExpression, std::string("sVantroClientName.empty()")},
            {kelcore::config::kDebugSourceFunction,
             std::string("vantrokelui::GetVantroClientName")},
            {kelcore::config::kDebugSourceLine, std::int64_t{44}},
            {kelcore::config::kDebugSourceFile, std::string("sharedui\\src\\InitVantroCppSdk")},
        });
        throw error;
    }
    return name;
}

namespace detail {

std::string GetApplicationClient() {
    const std::lock_guard lock(sValuesMutex);
    return sClientId;
}

std::string GetApplicationRedirectUri() {
    const std::lock_guard lock(sValuesMutex);
    return sRedirectUri;
}

}  // namespace detail

}  // namespace vantrokelui
