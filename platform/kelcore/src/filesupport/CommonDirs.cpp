#include <kelcore/filesupport/CommonDirs.h>

#include <kelcore/logging/Logging.h>

#include "detail/Environment.h"

namespace kelcore::filesupport::commondirs {

string::string UserCacheDir() {
    const auto directory =
        kelcore::detail::XdgBaseDirectory("XDG_CACHE_HOME", ".cache") / "vantrokelui";
    // The cache holds the user's renders: each level it makes is private.
    if (const auto error = kelcore::detail::CreatePrivateDirectories(directory)) {
        logging::LogError("Cannot create the cache directory " + directory.string() + ": " +
                          error.message());
    }
    return string::StdToUTF16String(directory.native());
}

}  // namespace kelcore::filesupport::commondirs
