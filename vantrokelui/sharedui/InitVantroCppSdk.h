// Start-up of the newer cloud SDK: the values the host hands over (application client and
// redirect URI, read by the host from its own keys), the start of the sign-in library, and the
// client name that the host passes as a process parameter. Process-wide; see each function for
// its thread.
//
//   vantrokelui::InitVantroCppSdk(u"vantrokelui-desktop", u"http://127.0.0.1/callback");
//   const std::string name = vantrokelui::GetVantroClientName();   // throws when never given
#pragma once

#include <string>

#include <kelcore/string/String.h>

namespace vantrokelui {

/// Names of the host's keys for the two values InitVantroCppSdk takes; this library reads
/// neither, the host does.
inline constexpr const char* kApplicationClientKey = "VantroAuth.ApplicationClient";
inline constexpr const char* kApplicationRedirectUriKey = "VantroAuth.ApplicationRedirectUri";
/// The process parameter that carries the client name at process begin.
inline constexpr const char* kVantroClientNameParameter = "vantrokelui.kVantroClientName";

/// Main thread, at start-up. Stores both values and starts the sign-in library with them.
/// Does nothing at all when either is empty.
void InitVantroCppSdk(const kelcore::string::string& applicationClient,
                      const kelcore::string::string& redirectUri);

/// Any thread. The client name from process begin. Throws kel_exception "Vantro client name not
/// set" (0xF865001E) when the process has not begun or had no such text parameter.
std::string GetVantroClientName();

namespace detail {

/// Any thread. Copies of the stored values; empty before InitVantroCppSdk (or after one that
/// was given an empty value).
std::string GetApplicationClient();
std::string GetApplicationRedirectUri();

}  // namespace detail

}  // namespace vantrokelui
