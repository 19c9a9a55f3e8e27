#include <kelcore/debug/DebugDatabase.h>

#include <sys/stat.h>

#include <chrono>
#include <ctime>
#include <fstream>
#include <map>
#include <mutex>
#include <optional>

#include <boost/algorithm/string/trim.hpp>

#include "detail/Environment.h"

namespace kelcore::debug {
namespace {

using Entries = std::map<std::string, std::string, std::less<>>;

// What identifies one version of the file without reading it.
struct FileIdentity {
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = -1;
    std::timespec modified{};

    bool operator==(const FileIdentity& other) const {
        return device == other.device && inode == other.inode && size == other.size &&
               modified.tv_sec == other.modified.tv_sec &&
               modified.tv_nsec == other.modified.tv_nsec;
    }
};

std::optional<FileIdentity> Identify(const std::filesystem::path& path) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) {
        return std::nullopt;
    }
    return FileIdentity{info.st_dev, info.st_ino, info.st_size, info.st_mtim};
}

Entries ReadEntries(const std::filesystem::path& path) {
    Entries entries;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        boost::algorithm::trim(line);
        const auto equals = line.find('=');
        if (line.empty() || line.front() == '#' || equals == std::string::npos) {
            continue;
        }
        entries.insert_or_assign(boost::algorithm::trim_copy(line.substr(0, equals)),
                                 boost::algorithm::trim_copy(line.substr(equals + 1)));
    }
    return entries;
}

// File times tick at the kernel's clock granularity, so a rewrite of the same size within one
// tick keeps its time stamp; a version this young is read again rather than trusted.
constexpr auto kSettledAge = std::chrono::seconds(2);

bool IsSettled(const FileIdentity& identity, std::chrono::system_clock::time_point readAt) {
    const auto modified = std::chrono::system_clock::time_point(
        std::chrono::duration_cast<std::chrono::system_clock::duration>(
            std::chrono::seconds(identity.modified.tv_sec) +
            std::chrono::nanoseconds(identity.modified.tv_nsec)));
    return modified + kSettledAge < readAt;
}

}  // namespace

struct DebugDatabase::Cache {
    std::mutex mutex;
    std::filesystem::path path;
    std::optional<FileIdentity> identity;
    std::chrono::system_clock::time_point readAt;
    Entries entries;
};

DebugDatabase::DebugDatabase() : cache(std::make_unique<Cache>()) {}
DebugDatabase::~DebugDatabase() = default;

DebugDatabase& DebugDatabase::Instance() {
    // Leaked on purpose: static destructors elsewhere may still read switches at exit.
    static auto* instance = new DebugDatabase;
    return *instance;
}

std::filesystem::path DebugDatabase::FilePath() {
    if (auto path = kelcore::detail::GetEnvironment("KELCORE_DEBUG_DATABASE");
        path && !path->empty()) {
        return *path;
    }
    return kelcore::detail::XdgBaseDirectory("XDG_CONFIG_HOME", ".config") / "vantrokelui" /
           "debug.conf";
}

std::string DebugDatabase::EnvironmentName(std::string_view key) {
    std::string name = "KELDEBUG_";
    for (const char c : key) {
        const bool alphanumeric =
            (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
        name += alphanumeric ? c : '_';
    }
    return name;
}

std::string DebugDatabase::GetEntry(std::string_view key, std::string_view defaultText) const {
    if (auto value = kelcore::detail::GetEnvironment(EnvironmentName(key).c_str())) {
        return *value;
    }
    const auto path = FilePath();
    const auto identity = Identify(path);
    std::lock_guard lock(cache->mutex);
    const bool fresh = path == cache->path && identity == cache->identity &&
                       (!identity || IsSettled(*identity, cache->readAt));
    if (!fresh) {
        cache->readAt = std::chrono::system_clock::now();
        cache->entries = identity ? ReadEntries(path) : Entries{};
        cache->path = path;
        cache->identity = identity;
    }
    const auto found = cache->entries.find(key);
    return found != cache->entries.end() ? found->second : std::string(defaultText);
}

bool DebugDatabase::GetBoolEntry(std::string_view key, bool defaultValue) const {
    return GetEntry(key, defaultValue ? "true" : "false") == "true";
}

}  // namespace kelcore::debug
