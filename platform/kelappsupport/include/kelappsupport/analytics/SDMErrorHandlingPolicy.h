// What a usage event does with a field it cannot take (an empty section or key).
#pragma once

#include <cstdint>

namespace kelappsupport::analytics {

enum class SDMErrorHandlingPolicy : std::int32_t {
    /// The logger decides: the field is dropped and a warning logged.
    kLoggerDecides = 0,
    /// The caller asked to hear of it: std::invalid_argument is thrown.
    kThrow = 1,
};

}  // namespace kelappsupport::analytics
