// What an account may hold: its storage limit in bytes. Part of Account; a plain value. Any
// thread.
#pragma once

#include <cstdint>
#include <optional>

namespace vantrosdk {

struct AccountPlan {
    /// Empty when the service did not say.
    std::optional<std::uint64_t> storageLimit;
};

}  // namespace vantrosdk
