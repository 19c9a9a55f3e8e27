// The process's log: error, warning and information lines, and the trace lines of
// kelcore::debug::Trace, written through one logger to stderr and to a log file at
// $XDG_STATE_HOME/vantrokelui/vantrokelui.log (else ~/.local/state/vantrokelui/...). The file and
// its directory (mode 0700) are created on the first line written; when the file cannot be
// opened the log goes to stderr only and says so once. Any thread.
//
//   try { Parse(text); } catch (const std::exception& e) { LogException("Loader::Read", e); }
#pragma once

#include <exception>
#include <filesystem>
#include <string_view>

namespace kelcore::logging {

enum class Severity { Trace, Info, Warning, Error };

/// Writes one line of `text` as it stands: braces are not format placeholders. Any thread.
void Log(Severity severity, std::string_view text);
inline void LogError(std::string_view text) {
    Log(Severity::Error, text);
}
inline void LogWarning(std::string_view text) {
    Log(Severity::Warning, text);
}
inline void LogInfo(std::string_view text) {
    Log(Severity::Info, text);
}

/// Writes one error line "<where>: <what>", followed by " (code 0x........)" when `e` is a
/// config::kel_exception. Any thread.
void LogException(std::string_view where, const std::exception& e);
/// The same for a captured exception; an exception that is not a std::exception is written as
/// "unknown exception". Does nothing for a null pointer. Any thread.
void LogException(std::string_view where, const std::exception_ptr& error);

/// Where the log file goes, from the environment as it is now. Any thread.
std::filesystem::path LogFilePath();

/// Closes the log; the next line opens it again at LogFilePath(), so a test can point
/// XDG_STATE_HOME elsewhere. Sinks installed by CapturedLogForTesting stay. Any thread.
void ResetLoggingForTesting();

}  // namespace kelcore::logging
