// How far a node of the cloud tree has loaded its children.
#pragma once

#include <cstdint>

namespace vantrokelui {

enum class FetchChildrenState : std::int32_t {
    NotFetched = 0,
    Fetching = 1,
    Fetched = 2,
};

}  // namespace vantrokelui
