// One asset of a review link as it reads now: the asset that was added (a file or a version
// stack), the stack it belongs to if any, and the file to show, which for a stacked asset is
// always the stack's newest version. A value read from the store; any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "store/Asset.h"

namespace vantroserver::store {

struct ReviewLinkItem {
    Asset added;                        ///< As added: a file or a version stack.
    std::optional<Asset> versionStack;  ///< The stack of a stacked item.
    std::optional<Asset> current;       ///< The file shown; empty for a stack with no versions.
    std::int64_t versionCount = 0;      ///< Files in the stack; 0 for a file outside any stack.
    std::int64_t position = 0;          ///< Order of adding, from 1.
};

}  // namespace vantroserver::store
