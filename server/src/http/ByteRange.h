// Reads the `Range` header of a request for one representation of known size. Only one range
// of bytes is served: a header with several ranges, another unit or a syntax error is ignored
// and the whole representation is sent, as HTTP allows. Stateless; any thread.
//
//   auto range = ByteRange::Parse("bytes=-500", fileSize);
//   if (range.outcome == ByteRange::Outcome::Partial) Send(range.first, range.length);
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vantroserver::http {

class ByteRange {
public:
    enum class Outcome {
        Whole,          ///< No usable Range header: answer 200 with everything.
        Partial,        ///< Answer 206 with bytes [first, first + length).
        Unsatisfiable,  ///< Answer 416 with `Content-Range: bytes */size`.
    };

    Outcome outcome = Outcome::Whole;
    std::uint64_t first = 0;
    std::uint64_t length = 0;

    /// The range `header` (the field's value, possibly empty) asks of `size` bytes.
    static ByteRange Parse(std::string_view header, std::uint64_t size);

    /// `bytes FIRST-LAST/SIZE` for a partial answer.
    std::string ContentRange(std::uint64_t size) const;
    /// The last byte of a partial answer.
    std::uint64_t Last() const { return first + length - 1; }
};

}  // namespace vantroserver::http
