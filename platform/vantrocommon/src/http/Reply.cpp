#include <vantrocommon/http/Reply.h>

#include "detail/HeaderNames.h"

namespace vantrocommon::http {

const std::string* Reply::Header(std::string_view name) const {
    const auto found = headers.find(detail::UpperCaseHeaderName(name));
    return found == headers.end() ? nullptr : &found->second;
}

}  // namespace vantrocommon::http
