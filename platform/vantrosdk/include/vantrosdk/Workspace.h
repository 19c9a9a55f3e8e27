// A workspace (the service's team) of an account. A plain value, filled leniently. Any thread.
#pragma once

#include <string>

#include <vantrocommon/Guid.h>

namespace vantrosdk {

struct Workspace {
    vantrocommon::Guid id;
    std::string name;
    vantrocommon::Guid accountId;
};

}  // namespace vantrosdk
