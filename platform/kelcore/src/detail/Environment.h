// The process environment, the user database and the XDG base directories, shared by the
// implementation files that place the product's files (cache, log, debug database).
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

namespace kelcore::detail {

/// The variable's value, or nothing when it is not set.
std::optional<std::string> GetEnvironment(const char* name);

struct UserRecord {
    std::string name;
    std::string home;
};

/// The user database's entry for `uid`, or nothing when it has none.
std::optional<UserRecord> LookUpUser(uid_t uid);

/// $HOME when it is absolute, else the user's home from the user database, else the system's
/// temporary directory: never empty.
std::filesystem::path HomeDirectory();

/// $`variable` when it holds an absolute path (XDG ignores relative ones), else
/// HomeDirectory()/`underHome`.
std::filesystem::path XdgBaseDirectory(const char* variable, const char* underHome);

/// Makes `directory` and each missing level above it with mode 0700, as XDG asks for the
/// directories it makes (std::filesystem cannot pass a mode). Answers the first failure.
std::error_code CreatePrivateDirectories(const std::filesystem::path& directory);

}  // namespace kelcore::detail
