#include "CloudSession.h"

#include <cstdlib>

#include <kelcore/debug/DebugDatabase.h>
#include <kelcore/string/String.h>
#include <kelcore/threads/MainThread.h>
#include <kelcore/utility/Keychain.h>
#include <vantroauth/BrowserOpener.h>
#include <vantrocommon/ServiceEndpoint.h>
#include <vantrokelui/model/connector/SignIn.h>
#include <vantrokelui/nodes/VantroUser.h>
#include <vantrokelui/sharedui/InitVantroCppSdk.h>
#include <vantrokelui/viewmodel/ShareForReviewViewModel.h>

namespace vantroshare {

namespace {

constexpr std::chrono::seconds kSignInLimit{60};

}  // namespace

void CloudSession::UseService(const std::string& url) {
    if (!url.empty()) {
        ::setenv("VANTRO_SERVICE_URL", url.c_str(), 1);
    }
}

std::string CloudSession::ServiceURL() {
    return vantrocommon::ServiceEndpoint::Resolve().apiBase;
}

void CloudSession::Start() {
    vantrokelui::InitVantroCppSdk(kelcore::string::StdToUTF16String(kClientId),
                                  kelcore::string::StdToUTF16String(kRedirectUri));
}

std::string CloudSession::HomeUser() {
    return kelcore::string::UTF16toStdString(kelcore::utility::Keychain::GetHomeUserID());
}

bool CloudSession::HasStoredToken() {
    return vantrokelui::model::VantroConnectorIntegration::IsSignedIn();
}

std::shared_ptr<vantrokelui::viewmodel::ShareForReviewViewModel> CloudSession::BrowsingViewModel() {
    auto viewModel = vantrokelui::viewmodel::ShareForReviewViewModel::Create();
    viewModel->SetAssetDataMethods(
        [](kelcore::utility::Guid&, kelcore::utility::Guid&) { return false; },
        [](const kelcore::utility::Guid&, const kelcore::utility::Guid&,
           const kelcore::string::string&, kelcore::string::string&) { return false; },
        [](const kelcore::utility::Guid&, const kelcore::utility::Guid&,
           const kelcore::string::string&, const kelcore::string::string&) { return false; },
        [](const kelcore::utility::Guid&, const kelcore::utility::Guid&,
           const kelcore::string::string&) { return false; });
    viewModel->SetAssetProcessorInstalledMethod([] { return false; });
    return viewModel;
}

std::string CloudSession::NotSignedInMessage() {
    return "not signed in to " + ServiceURL() + "; run `vantro-share login` first";
}

std::optional<std::string> CloudSession::SignInQuietly(
    MainLoop& loop,
    const std::shared_ptr<vantrokelui::viewmodel::ShareForReviewViewModel>& viewModel,
    bool asPanel) {
    if (!HasStoredToken()) {
        return NotSignedInMessage();
    }
    // A stored token the service no longer honours would start the browser sign-in; a command
    // line run says so instead.
    auto browserWanted = std::make_shared<std::atomic<bool>>(false);
    vantroauth::SetBrowserOpener([browserWanted](const std::string&) {
        browserWanted->store(true);
        kelcore::threads::AsyncCallFromMainThread([] {});
        return false;
    });
    const auto userBinding = viewModel->AddUserBinding([](const auto&) {});
    if (asPanel) {
        viewModel->StartShareForReviewPopup();
        // The older back end has no quiet sign-in: the panel opens on its sign-in prompt, whose
        // button fetches the user with the stored token, no browser needed.
        const bool olderBackEnd = !kelcore::debug::DebugDatabase::Instance().GetBoolEntry(
            "VantroNative.UseVantroCppSdk", true);
        if (olderBackEnd &&
            viewModel->GetCurrentViewID() == vantrokelui::ShareForReviewViewID::SigninPrompt) {
            viewModel->Login();
        }
    } else {
        viewModel->Login();
    }
    const bool signedIn = loop.RunUntil(
        [&] {
            return browserWanted->load() || loop.Interrupted() ||
                   viewModel->GetUser()->GetID() != kelcore::utility::Guid();
        },
        kSignInLimit);
    vantroauth::SetBrowserOpener({});
    if (browserWanted->load()) {
        return "the stored sign-in for " + ServiceURL() +
               " is no longer accepted; run `vantro-share login` again";
    }
    if (loop.Interrupted()) {
        return std::string("interrupted");
    }
    if (!signedIn) {
        return "signing in to " + ServiceURL() + " did not finish; is the service running?";
    }
    return std::nullopt;
}

}  // namespace vantroshare
