// Reads a text/event-stream as its bytes arrive, in pieces of any size, and gives back whole
// frames: events (their `event:` type and `data:` lines) and comments (lines starting with ':').
// One parser per stream; used on one thread at a time (the transport's I/O thread).
//
//   for (const auto& frame : parser.Feed(chunk)) { if (!frame.comment) Handle(frame); }
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vantro::detail {

class EventStreamParser {
public:
    struct Frame {
        bool comment = false;
        /// The event's type ("message" when the frame named none); a comment's text.
        std::string type;
        /// The data lines joined with '\n'.
        std::string data;
    };

    /// Takes the next bytes; answers the frames they complete, in order.
    std::vector<Frame> Feed(std::string_view bytes);

private:
    void TakeLine(std::string_view line, std::vector<Frame>& frames);

    std::string partial;  // bytes after the last line end
    bool afterCarriageReturn = false;
    std::string type;
    std::string data;
    bool hasData = false;
};

}  // namespace vantro::detail
