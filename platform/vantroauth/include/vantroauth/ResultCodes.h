// Result codes of the sign-in library (0xBB59xxxx), negative as the platform's codes are.
#pragma once

#include <kelcore/config/ResultCode.h>

namespace vantroauth {

using kelcore::config::MakeResultCode;

/// Login with no completion function: the browser is open and the sign-in goes on without the
/// caller. Its outcome is delivered through the token: the next GetAccessToken completes when
/// the user has finished (with the new token) or when the sign-in failed or timed out. This is
/// how a caller that passes no function carries a completed interactive sign-in back.
inline constexpr kelcore::config::ResultCode kResultLoginPending = MakeResultCode(0xBB590001);
/// The browser could not be opened (the opener refused or failed to start).
inline constexpr kelcore::config::ResultCode kResultBrowserUnavailable =
    MakeResultCode(0xBB590002);
/// No one is signed in: no access token and no refresh token.
inline constexpr kelcore::config::ResultCode kResultNotSignedIn = MakeResultCode(0xBB590003);
/// The service refused the refresh token (revoked, rotated or expired); the user was signed out.
inline constexpr kelcore::config::ResultCode kResultSessionEnded = MakeResultCode(0xBB590004);
/// The interactive sign-in did not finish in time, or the browser came back with an error or a
/// wrong state.
inline constexpr kelcore::config::ResultCode kResultLoginFailed = MakeResultCode(0xBB590005);
/// A sign-in function was called before InitializeAuthManager.
inline constexpr kelcore::config::ResultCode kResultNotInitialized = MakeResultCode(0xBB590006);
/// The token store (keyring or token file) could not be read or written.
inline constexpr kelcore::config::ResultCode kResultStorageFailure = MakeResultCode(0xBB590007);

}  // namespace vantroauth
