// Raised by File::Delete when a file stays on disk. Its code is kResultFileDeleteFailed; the
// debug data holds the path under kDebugFilePath and the system's error number under
// kDebugErrno.
//
//   try { file.Delete(); } catch (const file_delete_exception&) { /* keep going */ }
#pragma once

#include <string>

#include <kelcore/config/kel_exception.h>

namespace kelcore::filesupport {

/// The result code of a file that could not be deleted.
inline constexpr config::ResultCode kResultFileDeleteFailed = config::MakeResultCode(0xF0100001);

inline constexpr const char* kDebugFilePath = "kDebugFilePath";
inline constexpr const char* kDebugErrno = "kDebugErrno";

class file_delete_exception : public config::kel_exception {
public:
    file_delete_exception(const std::string& path, int errorNumber);
};

}  // namespace kelcore::filesupport
