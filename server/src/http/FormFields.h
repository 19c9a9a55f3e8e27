// Name/value pairs of a query string or an application/x-www-form-urlencoded body, decoded
// ('+' reads as a space). Stateless; any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vantroserver::http {

class FormFields {
public:
    using Fields = std::vector<std::pair<std::string, std::string>>;

    /// Nothing when `text` is not a valid query (a bad percent escape, say).
    static std::optional<Fields> Parse(std::string_view text);
    /// The first value of `name`, if present.
    static std::optional<std::string_view> Find(const Fields& fields, std::string_view name);
};

}  // namespace vantroserver::http
