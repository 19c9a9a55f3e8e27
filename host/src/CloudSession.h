// The host's start of the cloud side: the service address (a --service option over
// VANTRO_SERVICE_URL), the SDK's start-up with the desktop client, and a quiet sign-in through
// the panel's view model from the stored token, which never opens a browser: a command that
// needs an interactive sign-in says so and lets the user run `vantro-share login`.
//
// Static functions; main thread (they pump the main loop while they wait).
//
//   CloudSession::UseService(option);
//   CloudSession::Start();
//   if (const auto failure = CloudSession::SignInQuietly(loop, viewModel, false)) ...
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "MainLoop.h"

namespace vantrokelui::viewmodel {
class ShareForReviewViewModel;
}

namespace vantroshare {

class CloudSession {
public:
    /// The desktop client the service registers by default, and the loopback redirect it uses.
    static constexpr const char* kClientId = "vantrokelui-desktop";
    static constexpr const char* kRedirectUri = "http://127.0.0.1/callback";

    /// Points the process at `url` when not empty (it overrides VANTRO_SERVICE_URL).
    static void UseService(const std::string& url);
    /// The API base URL the process talks to.
    static std::string ServiceURL();
    /// Starts the SDK and the sign-in library for the desktop client.
    static void Start();
    /// The user id tokens are stored under: the account the host runs as.
    static std::string HomeUser();
    /// Whether a token is stored for HomeUser.
    static bool HasStoredToken();

    /// Signs `viewModel` in from the stored token: through StartShareForReviewPopup when
    /// `asPanel`, else through its Login; waits until the user is known. The failure's message,
    /// or nothing on success.
    static std::optional<std::string> SignInQuietly(
        MainLoop& loop,
        const std::shared_ptr<vantrokelui::viewmodel::ShareForReviewViewModel>& viewModel,
        bool asPanel);

    /// A view model for the commands that only read the tree: no sequence is open and no encoder
    /// is asked for, so the panel's opening decision stops before any share.
    static std::shared_ptr<vantrokelui::viewmodel::ShareForReviewViewModel> BrowsingViewModel();

    /// "not signed in to URL; run `vantro-share login` first".
    static std::string NotSignedInMessage();
};

}  // namespace vantroshare
