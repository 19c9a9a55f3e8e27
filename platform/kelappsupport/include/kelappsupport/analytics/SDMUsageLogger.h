// Where usage events go: one JSON object a line, appended to usage-events.jsonl in the user's
// state directory ($XDG_STATE_HOME/vantrokelui). Nothing is written when the user has opted
// out (the debug-database key "kelappsupport.UsageEventsOptOut" reads "true"), nor while a
// test captures events (UsageEventsCapturedForTesting). A failed write is logged, never
// thrown. Any thread.
//
//   SDMUsageLogger::LogEvent(event);
#pragma once

#include <filesystem>

#include <kelappsupport/analytics/SDMEvent.h>

namespace kelappsupport::analytics {

class SDMUsageLogger {
public:
    /// Records `event`. Any thread.
    static void LogEvent(const SDMEvent& event);

    /// The file that LogEvent appends to, read from the environment at each call. Any thread.
    static std::filesystem::path EventFilePath();

    /// The JSON line written for `event`, without the line end. Any thread.
    static std::string FormatEvent(const SDMEvent& event);

    SDMUsageLogger() = delete;
};

}  // namespace kelappsupport::analytics
