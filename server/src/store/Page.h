// One page of a listing and how it was asked for. Listings are ordered by name, then id, so a
// page is stable while nothing is added. Values; any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vantroserver::store {

/// Skip `offset` rows, return at most `limit`.
struct PageRequest {
    std::uint64_t offset = 0;
    std::size_t limit = 100;
};

template <typename T>
struct Page {
    std::vector<T> items;
    std::uint64_t total = 0;  ///< Rows in the whole listing, not just this page.
};

}  // namespace vantroserver::store
