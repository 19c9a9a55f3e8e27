// One named value of the parameters that the host hands to every library at process begin
// (see ProcessBeginEndNotificationRegistrar). The value is empty (std::monostate), a flag, a
// 64-bit integer or UTF-8 text; a name nobody set is empty with an empty value.
//
//   if (const auto* text = parameter.Text()) { clientName = *text; }
#pragma once

#include <cstdint>
#include <string>
#include <variant>

namespace kelcore::config::detail {

struct Parameter {
    using Value = std::variant<std::monostate, bool, std::int64_t, std::string>;

    std::string name;
    Value value;

    /// Whether the value is text.
    bool HoldsText() const noexcept { return std::holds_alternative<std::string>(value); }
    /// The text of the value, or null when the value is not text.
    const std::string* Text() const noexcept { return std::get_if<std::string>(&value); }
};

}  // namespace kelcore::config::detail
