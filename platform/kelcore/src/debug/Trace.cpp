#include <kelcore/debug/Trace.h>

#include <algorithm>
#include <atomic>
#include <charconv>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include <boost/algorithm/string/split.hpp>
#include <boost/algorithm/string/trim.hpp>

#include <kelcore/logging/Logging.h>

#include "detail/Environment.h"

namespace kelcore::debug {
namespace {

constexpr std::string_view kEveryCategory = "*";

struct StringHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const noexcept {
        return std::hash<std::string_view>{}(text);
    }
};

struct TraceSettings {
    // Fills `levels` from KELCORE_TRACE; the caller holds the lock or owns the object alone.
    std::vector<std::string> LoadEnvironment() {
        std::vector<std::string> malformed;
        levels.clear();
        defaultLevel = 0;
        const auto text = kelcore::detail::GetEnvironment("KELCORE_TRACE");
        if (!text) {
            UpdateHighestLevel();
            return malformed;
        }
        std::vector<std::string> entries;
        boost::algorithm::split(entries, *text, [](char c) { return c == ','; });
        for (auto& entry : entries) {
            boost::algorithm::trim(entry);
            if (entry.empty()) {
                continue;
            }
            const auto equals = entry.find('=');
            int level = 0;
            if (equals != std::string::npos) {
                auto category = boost::algorithm::trim_copy(entry.substr(0, equals));
                auto value = boost::algorithm::trim_copy(entry.substr(equals + 1));
                const auto* end = value.data() + value.size();
                const auto parsed = std::from_chars(value.data(), end, level);
                if (!category.empty() && parsed.ec == std::errc{} && parsed.ptr == end &&
                    level >= 0) {
                    SetLocked(category, level);
                    continue;
                }
            }
            malformed.push_back(entry);
        }
        UpdateHighestLevel();
        return malformed;
    }

    void SetLocked(std::string_view category, int level) {
        if (category == kEveryCategory) {
            defaultLevel = level;
        } else {
            levels.insert_or_assign(std::string(category), level);
        }
    }

    void UpdateHighestLevel() {
        int highest = defaultLevel;
        for (const auto& [category, level] : levels) {
            highest = std::max(highest, level);
        }
        highestLevel.store(highest, std::memory_order_release);
    }

    int LevelOf(std::string_view category, bool checkCategory) const {
        std::shared_lock lock(mutex);
        if (checkCategory) {
            if (const auto found = levels.find(category); found != levels.end()) {
                return found->second;
            }
        }
        return defaultLevel;
    }

    mutable std::shared_mutex mutex;
    std::unordered_map<std::string, int, StringHash, std::equal_to<>> levels;
    int defaultLevel = 0;
    // The highest level of any category: lines above it are dropped without taking the lock.
    std::atomic<int> highestLevel{0};
    std::atomic<std::uint32_t> changeCount{0};
};

void WarnMalformed(const std::vector<std::string>& malformed) {
    for (const auto& entry : malformed) {
        logging::LogWarning("KELCORE_TRACE: skipped the malformed entry \"" + entry + "\"");
    }
}

TraceSettings& Settings() {
    // Leaked on purpose: static destructors elsewhere may still trace at exit.
    static auto* settings = [] {
        auto* created = new TraceSettings;
        WarnMalformed(created->LoadEnvironment());
        return created;
    }();
    return *settings;
}

}  // namespace

bool TraceEnabled(std::string_view category, int level, bool checkCategory) {
    auto& settings = Settings();
    if (level < 1 || level > settings.highestLevel.load(std::memory_order_acquire)) {
        return false;
    }
    return level <= settings.LevelOf(category, checkCategory);
}

void Trace(std::string_view category, int level, std::string_view text) {
    if (!TraceEnabled(category, level)) {
        return;
    }
    if (text.ends_with('\n')) {
        text.remove_suffix(text.ends_with("\r\n") ? 2 : 1);
    }
    std::string line;
    line.reserve(category.size() + text.size() + 3);
    line.append("[").append(category).append("] ").append(text);
    logging::Log(logging::Severity::Trace, line);
}

std::uint32_t TraceChangeCount() {
    return Settings().changeCount.load(std::memory_order_acquire);
}

void SetTraceLevel(std::string_view category, int level) {
    auto& settings = Settings();
    {
        std::unique_lock lock(settings.mutex);
        settings.SetLocked(category, std::max(level, 0));
        settings.UpdateHighestLevel();
        settings.changeCount.fetch_add(1, std::memory_order_acq_rel);
    }
}

void ResetTraceSettings() {
    auto& settings = Settings();
    std::vector<std::string> malformed;
    {
        std::unique_lock lock(settings.mutex);
        malformed = settings.LoadEnvironment();
        settings.changeCount.fetch_add(1, std::memory_order_acq_rel);
    }
    WarnMalformed(malformed);
}

}  // namespace kelcore::debug
