// An account the user belongs to, or sees through projects shared with them. The service sends
// storage_used and storage_limit beside the other members; the limit is kept in `plan`. A plain
// value, filled leniently (a missing or mistyped member stays empty). Any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <vantrocommon/Guid.h>
#include <vantrosdk/AccountPlan.h>

namespace vantrosdk {

struct Account {
    vantrocommon::Guid id;
    std::string name;
    /// Bytes in use; empty when the answer does not carry it.
    std::optional<std::uint64_t> storageUsed;
    /// Present when the answer carries storage_limit.
    std::optional<AccountPlan> plan;
    /// False when the user only sees the account through projects shared with them.
    bool member = false;
};

}  // namespace vantrosdk
