// A review link: a named selection of a project's files that anyone holding its URL can watch.
// A plain value, filled leniently. Any thread.
#pragma once

#include <optional>
#include <string>

#include <vantrocommon/Guid.h>

namespace vantrosdk {

struct ReviewLink {
    std::optional<vantrocommon::Guid> id;
    /// The absolute URL to hand out.
    std::optional<std::string> url;
    std::string name;
    vantrocommon::Guid projectId;
    int itemCount = 0;
};

}  // namespace vantrosdk
