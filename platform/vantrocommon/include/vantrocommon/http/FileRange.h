// A request body read from part of a file: `length` bytes from `offset`, streamed from disk as
// the transport sends them, never held in memory. A plain value.
#pragma once

#include <cstdint>
#include <string>

namespace vantrocommon::http {

struct FileRange {
    std::string path{};
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
};

}  // namespace vantrocommon::http
