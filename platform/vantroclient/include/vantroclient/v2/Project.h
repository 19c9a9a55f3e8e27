// A project of a team, with the id of its root folder. A plain value; any thread.
#pragma once

#include <optional>
#include <string>

#include <kelcore/utility/Guid.h>

namespace vantro::v2 {

struct Project {
    kelcore::utility::Guid id;
    kelcore::utility::Guid teamID;
    kelcore::utility::Guid accountID;
    /// Empty when the answer had none.
    std::optional<std::string> name;
    kelcore::utility::Guid rootAssetID;
};

}  // namespace vantro::v2
