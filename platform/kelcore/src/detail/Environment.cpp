#include "detail/Environment.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <vector>

namespace kelcore::detail {

std::optional<std::string> GetEnvironment(const char* name) {
    const char* value = std::getenv(name);
    return value ? std::optional<std::string>(value) : std::nullopt;
}

std::optional<UserRecord> LookUpUser(uid_t uid) {
    const long suggested = sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> buffer(suggested > 0 ? static_cast<std::size_t>(suggested) : 1024);
    passwd entry{};
    passwd* found = nullptr;
    int error = 0;
    while ((error = getpwuid_r(uid, &entry, buffer.data(), buffer.size(), &found)) == ERANGE &&
           buffer.size() < (1u << 20)) {
        buffer.resize(buffer.size() * 2);
    }
    if (error != 0 || found == nullptr) {
        return std::nullopt;
    }
    return UserRecord{found->pw_name ? found->pw_name : "", found->pw_dir ? found->pw_dir : ""};
}

std::filesystem::path HomeDirectory() {
    if (auto home = GetEnvironment("HOME"); home && home->starts_with('/')) {
        return *home;
    }
    if (auto user = LookUpUser(geteuid()); user && user->home.starts_with('/')) {
        return user->home;
    }
    return std::filesystem::temp_directory_path();
}

std::filesystem::path XdgBaseDirectory(const char* variable, const char* underHome) {
    if (auto value = GetEnvironment(variable); value && value->starts_with('/')) {
        return *value;
    }
    return HomeDirectory() / underHome;
}

std::error_code CreatePrivateDirectories(const std::filesystem::path& directory) {
    std::vector<std::filesystem::path> missing;
    std::error_code error;
    for (auto level = directory; !level.empty() && !std::filesystem::exists(level, error);
         level = level.parent_path()) {
        missing.push_back(level);
        if (level == level.parent_path()) {
            break;
        }
    }
    for (auto level = missing.rbegin(); level != missing.rend(); ++level) {
        if (mkdir(level->c_str(), 0700) != 0 && errno != EEXIST) {
            return {errno, std::generic_category()};
        }
    }
    return {};
}

}  // namespace kelcore::detail
