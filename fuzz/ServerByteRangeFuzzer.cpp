// Any Range header against any size parses without fault, and a partial answer always lies
// inside the representation: first + length <= size, length > 0, and its Content-Range names
// the same bytes. The first eight input bytes give the size, the rest is the header.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "http/ByteRange.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using vantroserver::http::ByteRange;
    std::uint64_t fileSize = 0;
    const std::size_t sizeBytes = size < sizeof fileSize ? size : sizeof fileSize;
    std::memcpy(&fileSize, data, sizeBytes);
    const std::string_view header(reinterpret_cast<const char*>(data) + sizeBytes,
                                  size - sizeBytes);
    const ByteRange range = ByteRange::Parse(header, fileSize);
    if (range.outcome != ByteRange::Outcome::Partial) {
        return 0;
    }
    if (range.length == 0 || range.first >= fileSize || range.length > fileSize - range.first) {
        std::abort();
    }
    const std::string expected = "bytes " + std::to_string(range.first) + "-" +
                                 std::to_string(range.Last()) + "/" + std::to_string(fileSize);
    if (range.ContentRange(fileSize) != expected) {
        std::abort();
    }
    return 0;
}
