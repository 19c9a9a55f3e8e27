// Diagnostic trace lines by category and level. Each category has a trace level (0, the
// default, is off); a line of level L is written when 1 <= L <= that level. Levels come from
// KELCORE_TRACE, read at the first use ("VantroNative=5,Other=2"; "*=N" sets the level of every
// category without its own), and from SetTraceLevel. Lines go to the log (see
// kelcore/logging/Logging.h) as "[category] text". All functions: any thread.
//
//   if (TraceEnabled("VantroNative", 5)) {   // cache this against TraceChangeCount()
//       Trace("VantroNative", 5, "Token refresh failed\n");
//   }
#pragma once

#include <cstdint>
#include <string_view>

namespace kelcore::debug {

/// Writes `text` when tracing is enabled for `category` at `level`; does nothing otherwise,
/// and then costs no lock while no category is traced at `level`. One trailing line end is
/// dropped, since the log ends each line itself.
void Trace(std::string_view category, int level, std::string_view text);

/// Whether Trace(category, level, ...) would write. With `checkCategory` false the category's
/// own setting is ignored and the answer is that of the "*" level, which applies to every
/// category without its own; callers normally pass true.
bool TraceEnabled(std::string_view category, int level, bool checkCategory = true);

/// A number that moves each time a trace level is set or reset, so a caller may cache
/// TraceEnabled and ask again only when this has changed.
std::uint32_t TraceChangeCount();

/// Sets the trace level of `category` ("*" for the default of every category without its
/// own); 0 turns it off.
void SetTraceLevel(std::string_view category, int level);

/// Drops every level set so far and reads KELCORE_TRACE again. Malformed entries are skipped
/// with a warning in the log.
void ResetTraceSettings();

}  // namespace kelcore::debug
