#include <kelappsupport/analytics/SDMUsageLogger.h>

#include <chrono>
#include <ctime>
#include <fstream>
#include <mutex>
#include <optional>
#include <vector>

#include <boost/json.hpp>

#include <kelappsupport/analytics/UsageEventsCapturedForTesting.h>
#include <kelcore/debug/DebugDatabase.h>
#include <kelcore/filesupport/CommonDirs.h>
#include <kelcore/logging/Logging.h>
#include <kelcore/string/String.h>

namespace kelappsupport::analytics {

namespace {

constexpr const char* kOptOutKey = "kelappsupport.UsageEventsOptOut";

// One lock for the file and the capture, so lines never interleave and a capture sees whole
// events in order.
std::mutex sMutex;
std::optional<std::vector<SDMEvent>> sCaptured;

std::string UtcTimestamp() {
    const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    std::tm utc{};
    gmtime_r(&now, &utc);
    char text[sizeof "2026-01-01T00:00:00Z"];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &utc);
    return text;
}

}  // namespace

std::filesystem::path SDMUsageLogger::EventFilePath() {
    return std::filesystem::path(
               kelcore::string::UTF16toStdString(kelcore::filesupport::commondirs::UserStateDir())) /
           "usage-events.jsonl";
}

std::string SDMUsageLogger::FormatEvent(const SDMEvent& event) {
    boost::json::object data;
    for (const SDMEvent::Field& field : event.GetFields()) {
        boost::json::value& section = data[field.section];
        if (!section.is_object()) {
            section = boost::json::object();
        }
        section.as_object()[field.key] = field.value;
    }
    boost::json::object line;
    line["time"] = UtcTimestamp();
    line["category"] = event.GetCategory();
    line["subcategory"] = event.GetSubcategory();
    line["type"] = event.GetType();
    line["subtype"] = event.GetSubtype();
    line["data"] = std::move(data);
    return boost::json::serialize(line);
}

void SDMUsageLogger::LogEvent(const SDMEvent& event) {
    {
        const std::lock_guard lock(sMutex);
        if (sCaptured) {
            sCaptured->push_back(event);
            return;
        }
    }
    if (kelcore::debug::DebugDatabase::Instance().GetBoolEntry(kOptOutKey, false)) {
        return;
    }
    const std::string text = FormatEvent(event) + "\n";
    const std::filesystem::path path = EventFilePath();
    const std::lock_guard lock(sMutex);
    std::ofstream file(path, std::ios::app | std::ios::binary);
    file << text;
    file.flush();
    if (!file) {
        kelcore::logging::LogWarning("Cannot write the usage event " + event.GetSubtype() +
                                     " to " + path.string());
    }
}

UsageEventsCapturedForTesting::UsageEventsCapturedForTesting() {
    const std::lock_guard lock(sMutex);
    sCaptured.emplace();
}

UsageEventsCapturedForTesting::~UsageEventsCapturedForTesting() {
    const std::lock_guard lock(sMutex);
    sCaptured.reset();
}

std::vector<SDMEvent> UsageEventsCapturedForTesting::Events() const {
    const std::lock_guard lock(sMutex);
    return sCaptured ? *sCaptured : std::vector<SDMEvent>{};
}

}  // namespace kelappsupport::analytics
