// One page of a listing and how it was asked for. Listings are ordered by name, then id, so a
// page is stable while nothing is added. Values; any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace vantroserver::store {

/// Skip `offset` rows, return at most `limit`.
struct PageRequest {
    std::uint64_t offset = 0;
    std::size_t limit = 100;
};

/// The request's offset and limit as SQLite integers (values beyond its range are clamped, which
/// reads as "past the end").
inline std::int64_t SqlOffset(const PageRequest& page) {
    constexpr auto kMax = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    return static_cast<std::int64_t>(page.offset > kMax ? kMax : page.offset);
}
inline std::int64_t SqlLimit(const PageRequest& page) {
    constexpr auto kMax = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    return static_cast<std::int64_t>(page.limit > kMax ? kMax : page.limit);
}

template <typename T>
struct Page {
    std::vector<T> items;
    std::uint64_t total = 0;  ///< Rows in the whole listing, not just this page.
};

}  // namespace vantroserver::store
