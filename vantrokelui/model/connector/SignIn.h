// The sign-in entries of the newer back end, called by the panel's view model: an interactive
// sign-in that makes the SDK client from the token, a quiet one that only reports a stored
// token, sign-out, and whether a token is stored. They work through the sign-in library
// (vantroauth::jwt) with the id of the user the host runs as.
//
//   VantroConnectorIntegration::SignIn([weak](bool signedIn) { ... });   // off the main thread
#pragma once

#include <functional>

namespace vantrokelui::model::VantroConnectorIntegration {

/// Main thread (or the continuation of SignInQuiet). Keeps `callback`, replacing the one held,
/// and asks for the access token: with one, the SDK client is made or reused and given it, and
/// `callback` hears whether it took it; without one the interactive sign-in starts. `callback`
/// runs on the token future's executor, never on the main thread by itself; after a sign-in
/// that ends without a token it is not called.
void SignIn(const std::function<void(bool)>& callback);

/// Main thread. When a token is stored for the user, fetches it and then calls `callback` (on
/// the token future's executor). Without a stored token nothing happens, ever.
void SignInQuiet(std::function<void()> callback);

/// Main thread. Signs out of the sign-in library; when that succeeds and a SignIn callback is
/// held, calls it with false and drops the SDK client. A failed sign-out changes nothing.
void SignOut();

/// Any thread. Whether a token is stored for the user.
bool IsSignedIn();

}  // namespace vantrokelui::model::VantroConnectorIntegration
