// What of a URL may reach a log or an error message: scheme, host, port and path. The query
// and fragment may carry codes or signed parameters, and user information a password, so
// they are cut. Any thread.
#pragma once

#include <string>
#include <string_view>

namespace vantrocommon::detail {

/// `url` without user information, query and fragment.
std::string LoggableUrl(std::string_view url);

}  // namespace vantrocommon::detail
