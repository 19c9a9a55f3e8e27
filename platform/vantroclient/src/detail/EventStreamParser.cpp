#include "detail/EventStreamParser.h"

namespace vantro::detail {

std::vector<EventStreamParser::Frame> EventStreamParser::Feed(std::string_view bytes) {
    std::vector<Frame> frames;
    for (const char c : bytes) {
        // A line ends with "\r\n", "\n" or "\r"; the "\n" of a "\r\n" split between two pieces
        // must not end a second, empty line.
        if (afterCarriageReturn) {
            afterCarriageReturn = false;
            if (c == '\n') {
                continue;
            }
        }
        if (c == '\r' || c == '\n') {
            afterCarriageReturn = c == '\r';
            TakeLine(partial, frames);
            partial.clear();
        } else {
            partial += c;
        }
    }
    return frames;
}

void EventStreamParser::TakeLine(std::string_view line, std::vector<Frame>& frames) {
    if (line.empty()) {
        if (hasData || !type.empty()) {
            frames.push_back({false, type.empty() ? std::string("message") : type, data});
        }
        type.clear();
        data.clear();
        hasData = false;
        return;
    }
    if (line.front() == ':') {
        line.remove_prefix(1);
        if (!line.empty() && line.front() == ' ') {
            line.remove_prefix(1);
        }
        frames.push_back({true, std::string(line), {}});
        return;
    }
    const auto colon = line.find(':');
    const std::string_view field = line.substr(0, colon);
    std::string_view value =
        colon == std::string_view::npos ? std::string_view() : line.substr(colon + 1);
    if (!value.empty() && value.front() == ' ') {
        value.remove_prefix(1);
    }
    if (field == "event") {
        type = value;
    } else if (field == "data") {
        if (hasData) {
            data += '\n';
        }
        data += value;
        hasData = true;
    }
    // "id", "retry" and unknown fields mean nothing to this client.
}

}  // namespace vantro::detail
