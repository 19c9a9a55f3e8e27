// Result codes of the cloud libraries, in the platform's 32-bit form (negative on failure).
// 0xBB58xxxx belong to transport and SDK, 0xBB59xxxx to sign-in. Failures of futures carry
// them as kelcore::config::kel_exception, so ExtractResultFromException reads them back.
#pragma once

#include <kelcore/config/ResultCode.h>

namespace vantrocommon {

using kelcore::config::MakeResultCode;

/// The connection could not be made, or broke before a whole answer came.
inline constexpr kelcore::config::ResultCode kResultNetworkFailure = MakeResultCode(0xBB580001);
/// No answer within the request's time limit, or the transfer stalled.
inline constexpr kelcore::config::ResultCode kResultTimedOut = MakeResultCode(0xBB580002);
/// The server's certificate was refused (TLS verification is always on).
inline constexpr kelcore::config::ResultCode kResultTlsFailure = MakeResultCode(0xBB580003);
/// A request body's file could not be read (missing, shorter than its range, unreadable).
inline constexpr kelcore::config::ResultCode kResultFileError = MakeResultCode(0xBB580004);
/// The answer could not be understood (not the JSON or headers that were expected).
inline constexpr kelcore::config::ResultCode kResultBadResponse = MakeResultCode(0xBB580005);
/// The server answered with an error status (the response records carry the status).
inline constexpr kelcore::config::ResultCode kResultHttpError = MakeResultCode(0xBB580006);
/// The retry budget is spent; the last failure is in the message.
inline constexpr kelcore::config::ResultCode kResultRetriesExhausted = MakeResultCode(0xBB580007);
/// A request was made before the client had what it needs (no token, not initialised).
inline constexpr kelcore::config::ResultCode kResultNotReady = MakeResultCode(0xBB580008);
/// An argument was refused before anything was sent (nil id, empty path, unknown transfer).
inline constexpr kelcore::config::ResultCode kResultInvalidArgument = MakeResultCode(0xBB580009);
/// A transfer was cancelled by its owner (TransferManager::UploadCancel, a cancelled request).
inline constexpr kelcore::config::ResultCode kResultCancelled = MakeResultCode(0xBB580011);

}  // namespace vantrocommon
