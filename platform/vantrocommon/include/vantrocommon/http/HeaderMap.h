// Response header fields by name. Names are stored upper-cased (ASCII), since HTTP names are
// case-insensitive and HTTP/2 sends them lower-case while the service writes them upper-case;
// a lookup of "X-RATELIMIT-LIMIT" finds the field however it travelled. Repeated fields are
// joined with ", ". A plain value.
#pragma once

#include <map>
#include <string>

namespace vantrocommon::http {

using HeaderMap = std::map<std::string, std::string>;

}  // namespace vantrocommon::http
