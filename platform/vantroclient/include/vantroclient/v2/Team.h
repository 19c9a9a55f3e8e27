// A team (a workspace, to the panel) of an account. A plain value; any thread.
#pragma once

#include <optional>
#include <string>

#include <kelcore/utility/Guid.h>

namespace vantro::v2 {

struct Team {
    kelcore::utility::Guid id;
    kelcore::utility::Guid accountID;
    /// Empty when the answer had none.
    std::optional<std::string> name;
};

}  // namespace vantro::v2
