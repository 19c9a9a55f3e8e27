// Desktop sign-in to the service and the tokens that come of it, as free functions over one
// process-wide manager.
//
// Sign-in is the OAuth 2.0 authorization code with PKCE (S256) and a loopback redirect: a
// listener on 127.0.0.1 and a random port receives the code, the browser is opened through the
// replaceable opener (see BrowserOpener.h), the code is exchanged, and the refresh token is kept
// in the Secret Service. When no keyring answers, tokens live for this process only, unless the
// user opted in to a 0600 file under $XDG_CONFIG_HOME ("VantroAuth.AllowTokenFile" true in the
// debug database, or VANTRO_ALLOW_TOKEN_FILE=1), which is said in the log as a warning.
// Access tokens are refreshed ahead of their expiry; a refresh the service refuses signs the
// user out. No token, code or password is ever written to a log or a trace.
//
// Every function: any thread. Futures complete on kelcore's default executor, never inline.
//
//   vantroauth::jwt::InitializeAuthManager(clientId, redirectUri, EnvironmentType(0), "");
//   if (!vantroauth::jwt::AccessTokenExists(user).IsSuccess()) vantroauth::jwt::Login(user, {});
//   vantroauth::jwt::GetAccessToken(false).Then(executor, UseToken);
#pragma once

#include <chrono>
#include <functional>
#include <string>

#include <kelcore/async/Future.h>
#include <vantrocommon/EnvironmentType.h>
#include <vantrocommon/Response.h>

namespace vantroauth::jwt {

/// Starts (or restarts) the manager for a public client: `clientId`, and `redirectUri`, whose
/// path is kept while its host becomes 127.0.0.1 and its port the listener's. The service comes
/// from vantrocommon::ServiceEndpoint. `profile` keeps this process's stored tokens apart from
/// other profiles of the same user and client; empty is the default profile. Fails with
/// kResultStorageFailure only when the opted-in token file cannot be used.
vantrocommon::Response InitializeAuthManager(const std::string& clientId,
                                             const std::string& redirectUri,
                                             vantrocommon::EnvironmentType environment,
                                             const std::string& profile);

/// Success when tokens are held or stored for `userId` (a refresh token, or an access token
/// that has not expired). Makes `userId` the current user.
vantrocommon::Response AccessTokenExists(const std::string& userId);

/// The current user's access token. Refreshes it first when it is about to expire (or always,
/// with `forceRefresh`); while a Login runs, completes when it ends. Fails with
/// kResultNotSignedIn, kResultSessionEnded (the refresh was refused and the user is signed
/// out), kResultLoginFailed, or a transport code after the retry budget.
kelcore::async::Future<std::string> GetAccessToken(bool forceRefresh);

/// Starts the interactive sign-in for `userId` and returns without waiting for it. With a
/// function, answers success and later calls it once with 0 or the failure code. Without one
/// (an empty function), answers kResultLoginPending: the outcome comes through the next
/// GetAccessToken. A Login while another runs joins it. Fails at once with
/// kResultBrowserUnavailable or kResultNotInitialized.
vantrocommon::Response Login(const std::string& userId, std::function<void(int)> onFinished);

/// Signs the current user out: revokes the refresh token at the service (best effort), deletes
/// the stored tokens and stops a running Login. Success unless the stored tokens could not be
/// deleted.
vantrocommon::Response Logout();

/// Stores a token answer obtained elsewhere (the JSON of the service's token endpoint:
/// access_token, token_type, expires_in, refresh_token) as `userId`'s tokens, for command-line
/// sign-in without a browser. Fails with kResultStorageFailure or a parse failure code.
vantrocommon::Response StoreTokenAnswer(const std::string& userId, const std::string& tokenJson);

/// How long an interactive sign-in waits for the browser to come back before it fails with
/// kResultLoginFailed: 5 minutes unless set. Applies to the Logins started afterwards; measured
/// on kelcore's executor clock, so virtual time drives it in tests.
void SetLoginTimeout(std::chrono::milliseconds timeout);

}  // namespace vantroauth::jwt
