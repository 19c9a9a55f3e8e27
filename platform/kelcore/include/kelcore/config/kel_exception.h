// The platform's exception: a message, a 32-bit result code and optional debug data. Every
// failure that crosses a kelcore API as an exception is one of these (or derives from it), so
// ExtractResultFromException can always recover a code.
//
//   kel_exception error("Vantro client name not set", MakeResultCode(0xF865001E));
//   error.AddAdditionalData({{kDebugSourceLine, std::int64_t{44}}});
//   throw error;
#pragma once

#include <cstdint>
#include <exception>
#include <map>
#include <string>
#include <variant>

#include <kelcore/config/ResultCode.h>

namespace kelcore::config {

/// Keys of the debug entries that AddAdditionalData commonly carries.
inline constexpr const char* kDebugExpression = "kDebugExpression";
inline constexpr const char* kDebugSourceFunction = "kDebugSourceFunction";
inline constexpr const char* kDebugSourceLine = "kDebugSourceLine";
inline constexpr const char* kDebugSourceFile = "kDebugSourceFile";

class kel_exception : public std::exception {
public:
    using AdditionalValue = std::variant<std::string, std::int64_t>;
    using AdditionalData = std::map<std::string, AdditionalValue, std::less<>>;

    kel_exception(std::string text, ResultCode code);

    const char* what() const noexcept override { return text.c_str(); }
    const std::string& GetText() const noexcept { return text; }
    ResultCode GetCode() const noexcept { return code; }

    /// Merges entries into the debug data; an existing key is overwritten.
    void AddAdditionalData(const AdditionalData& data);
    const AdditionalData& GetAdditionalData() const noexcept { return additionalData; }

private:
    std::string text;
    ResultCode code;
    AdditionalData additionalData;
};

}  // namespace kelcore::config
