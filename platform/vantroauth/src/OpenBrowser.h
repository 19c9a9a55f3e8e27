// Hands the authorize URL to the opener installed with SetBrowserOpener, or to the desktop's
// default application. Internal to the sign-in library; any thread.
#pragma once

#include <string>

namespace vantroauth::detail {

/// Calls the installed opener (outside any lock) and answers what it answered; an opener that
/// throws counts as one that refused.
bool OpenBrowser(const std::string& authorizeUrl);

}  // namespace vantroauth::detail
