// 32-bit result codes shared by every layer. Success is 0; every failure is negative when read
// as int32_t (the top bit is set), so callers test "result < 0".
#pragma once

#include <cstdint>

namespace kelcore::config {

using ResultCode = std::int32_t;

/// Turns the unsigned spelling used in tables (0xF3610004) into the signed code.
constexpr ResultCode MakeResultCode(std::uint32_t bits) {
    return static_cast<ResultCode>(bits);
}

inline constexpr ResultCode kResultSuccess = 0;
inline constexpr ResultCode kResultUnknownFailure = MakeResultCode(0xF0000001);
inline constexpr ResultCode kResultOutOfMemory = MakeResultCode(0xF0000002);
inline constexpr ResultCode kResultNullPointer = MakeResultCode(0xF0000003);
inline constexpr ResultCode kResultContractViolation = MakeResultCode(0xF0000004);
inline constexpr ResultCode kResultStandardException = MakeResultCode(0xF0000005);
inline constexpr ResultCode kResultParseError = MakeResultCode(0xF0000006);
inline constexpr ResultCode kResultFutureNotReady = MakeResultCode(0xF3610002);
inline constexpr ResultCode kResultFutureCancelled = MakeResultCode(0xF3610004);

}  // namespace kelcore::config
