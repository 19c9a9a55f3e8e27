// Reading the environment and the XDG base directories, shared by the implementation files.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

namespace kelcore::detail {

/// The variable's value, or nothing when it is not set.
inline std::optional<std::string> GetEnvironment(const char* name) {
    const char* value = std::getenv(name);
    return value ? std::optional<std::string>(value) : std::nullopt;
}

/// $`variable` when it holds an absolute path (relative ones are ignored, as XDG asks), else
/// $HOME/`underHome`; empty when neither is known.
inline std::filesystem::path XdgBaseDirectory(const char* variable, const char* underHome) {
    if (auto value = GetEnvironment(variable); value && !value->empty() && value->front() == '/') {
        return *value;
    }
    if (auto home = GetEnvironment("HOME"); home && !home->empty()) {
        return std::filesystem::path(*home) / underHome;
    }
    return {};
}

}  // namespace kelcore::detail
