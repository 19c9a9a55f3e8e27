// Raised when text is not valid JSON, or a JSON member is not of the type asked for. Its code
// is config::kResultParseError, so ExtractResultFromException reads it as a failure.
#pragma once

#include <string>
#include <utility>

#include <kelcore/config/kel_exception.h>

namespace kelcore::serialization {

class parse_exception : public config::kel_exception {
public:
    explicit parse_exception(std::string text)
        : kel_exception(std::move(text), config::kResultParseError) {}
};

}  // namespace kelcore::serialization
