// Raising and reading failures. Contract violations go through ThrowError and never return;
// asynchronous failures are read back as result codes with ExtractResultFromException.
#pragma once

#include <exception>
#include <string_view>
#include <typeinfo>

#include <kelcore/config/ResultCode.h>
#include <kelcore/config/kel_exception.h>

namespace kelcore::config {

/// Throws a kel_exception whose text is the localised form of `localizedKey` (a key of the
/// form "$$$/Path/Name=Default text", or plain text, which is used as it stands).
[[noreturn]] void ThrowError(std::string_view localizedKey,
                             ResultCode code = kResultContractViolation);

/// Throws a kel_exception with kResultNullPointer naming the type that was null.
[[noreturn]] void DoThrowNullPtrException(std::string_view typeName);
[[noreturn]] inline void DoThrowNullPtrException(const std::type_info& type) {
    DoThrowNullPtrException(type.name());
}

/// 0 for a null pointer; the code of a kel_exception; a fixed negative code for any other
/// exception. Never throws, and never answers a non-negative code for a real exception.
ResultCode ExtractResultFromException(const std::exception_ptr& error) noexcept;

}  // namespace kelcore::config
