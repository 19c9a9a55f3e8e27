#include <kelcore/filesupport/CommonDirs.h>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <vector>

#include <spdlog/spdlog.h>

namespace kelcore::filesupport::commondirs {
namespace {
namespace fs = std::filesystem;

constexpr const char* kProductDirectory = "vantrokelui";

// The XDG rules ignore relative values.
const char* AbsoluteEnvironmentPath(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr && value[0] == '/' ? value : nullptr;
}

fs::path HomeDirectory() {
    if (const char* home = AbsoluteEnvironmentPath("HOME")) {
        return home;
    }
    const long suggested = sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> buffer(suggested > 0 ? static_cast<std::size_t>(suggested) : 1024);
    passwd entry{};
    passwd* found = nullptr;
    while (getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) == ERANGE &&
           buffer.size() < (1u << 20)) {
        buffer.resize(buffer.size() * 2);
    }
    if (found != nullptr && found->pw_dir != nullptr && found->pw_dir[0] == '/') {
        return found->pw_dir;
    }
    return fs::temp_directory_path();
}

// std::filesystem::create_directories takes no mode, and the cache holds the user's renders:
// each missing level is made private as the XDG rules ask.
void CreatePrivateDirectories(const fs::path& directory) {
    std::vector<fs::path> missing;
    std::error_code error;
    for (fs::path level = directory; !level.empty() && !fs::exists(level, error);
         level = level.parent_path()) {
        missing.push_back(level);
        if (level == level.parent_path()) {
            break;
        }
    }
    for (auto level = missing.rbegin(); level != missing.rend(); ++level) {
        if (mkdir(level->c_str(), 0700) != 0 && errno != EEXIST) {
            spdlog::error("cannot create the cache directory {}: {}", level->string(),
                          std::generic_category().message(errno));
            return;
        }
    }
}

}  // namespace

string::string UserCacheDir() {
    const char* cacheHome = AbsoluteEnvironmentPath("XDG_CACHE_HOME");
    const fs::path base = cacheHome != nullptr ? fs::path(cacheHome) : HomeDirectory() / ".cache";
    const fs::path directory = base / kProductDirectory;
    CreatePrivateDirectories(directory);
    return string::StdToUTF16String(directory.native());
}

}  // namespace kelcore::filesupport::commondirs
