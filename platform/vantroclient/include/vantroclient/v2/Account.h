// An account as the service describes it. A plain value; any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <kelcore/utility/Guid.h>

namespace vantro::v2 {

struct Account {
    kelcore::utility::Guid id;
    /// Empty when the answer had none.
    std::optional<std::string> name;
    kelcore::utility::Guid ownerID;
    std::uint64_t storageUsed = 0;
    std::uint64_t storageLimit = 0;
    /// False when the user only sees the account through projects shared with them.
    bool member = true;
};

}  // namespace vantro::v2
