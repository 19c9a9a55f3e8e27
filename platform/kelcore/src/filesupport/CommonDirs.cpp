#include <kelcore/filesupport/CommonDirs.h>

#include <string>

#include <kelcore/logging/Logging.h>

#include "detail/Environment.h"

namespace kelcore::filesupport::commondirs {

namespace {

string::string PrivateProductDirectory(const char* variable, const char* underHome,
                                       const char* what) {
    const auto directory = kelcore::detail::XdgBaseDirectory(variable, underHome) / "vantrokelui";
    // These hold the user's renders and records: each level made here is private.
    if (const auto error = kelcore::detail::CreatePrivateDirectories(directory)) {
        logging::LogError(std::string("Cannot create the ") + what + " directory " +
                          directory.string() + ": " + error.message());
    }
    return string::StdToUTF16String(directory.native());
}

}  // namespace

string::string UserCacheDir() {
    return PrivateProductDirectory("XDG_CACHE_HOME", ".cache", "cache");
}

string::string UserStateDir() {
    return PrivateProductDirectory("XDG_STATE_HOME", ".local/state", "state");
}

string::string UserConfigDir() {
    return PrivateProductDirectory("XDG_CONFIG_HOME", ".config", "configuration");
}

}  // namespace kelcore::filesupport::commondirs
