// The answer to a Request: the status (any status, errors included, is a reply; only a failed
// exchange fails the future), the header fields and the body. A plain value.
#pragma once

#include <string>
#include <string_view>

#include <vantrocommon/http/HeaderMap.h>

namespace vantrocommon::http {

struct Reply {
    int status = 0;
    /// Names upper-cased, see HeaderMap.h.
    HeaderMap headers{};
    std::string body{};
    /// "1.1" or "2", as negotiated.
    std::string httpVersion{};

    /// The field `name` (any case), or null.
    const std::string* Header(std::string_view name) const;
    bool IsSuccessStatus() const { return status >= 200 && status < 300; }
};

}  // namespace vantrocommon::http
