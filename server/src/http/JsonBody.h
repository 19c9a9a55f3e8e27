// Reads a request body that must be a JSON object, for every route that takes JSON. Refuses
// anything else with a message fit for a 400 answer. Stateless; any thread.
#pragma once

#include <boost/json/object.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "http/RequestContext.h"

namespace vantroserver::http {

class JsonBody {
public:
    /// The body as an object; nothing, with `error` filled, when the content type is not JSON,
    /// the text does not parse, nests too deep or is not an object.
    static std::optional<boost::json::object> ParseObject(const RequestContext& context,
                                                          std::string& error);
    /// The same over raw text (used by the fuzzer).
    static std::optional<boost::json::object> ParseObjectText(std::string_view text,
                                                              std::string& error);
};

}  // namespace vantroserver::http
