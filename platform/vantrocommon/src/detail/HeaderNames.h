// Header-name spelling shared by the transport (which stores reply fields) and Reply (which
// looks them up): ASCII upper case, whatever case the field travelled in. Any thread.
#pragma once

#include <string>
#include <string_view>

namespace vantrocommon::detail {

/// `name` with ASCII letters upper-cased; other bytes stay as they are.
std::string UpperCaseHeaderName(std::string_view name);

}  // namespace vantrocommon::detail
