// How Login shows the service's sign-in page: a function given the authorize URL that answers
// whether a browser could be started. The default hands the URL to
// kelcore::utility::OpenFileInDefaultApplication (xdg-open); tests install one that signs in
// against a local server, and a headless host one that prints the URL. Any thread.
#pragma once

#include <functional>
#include <string>

namespace vantroauth {

using BrowserOpener = std::function<bool(const std::string& authorizeUrl)>;

/// Replaces the opener for the whole process; an empty function restores the default.
void SetBrowserOpener(BrowserOpener opener);

}  // namespace vantroauth
