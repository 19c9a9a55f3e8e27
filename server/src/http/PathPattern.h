// A route's path shape, such as `/v2/assets/{id}/children`: literal segments, `{name}` captures
// one segment, `*` matches one segment without capturing. Immutable once parsed; any thread.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantroserver::http {

class PathPattern {
public:
    using Captures = std::map<std::string, std::string, std::less<>>;

    /// Throws std::invalid_argument for a pattern that does not start with '/' or holds an
    /// empty segment or an unterminated capture.
    explicit PathPattern(std::string_view pattern);

    /// The captures when `segments` (percent-decoded path segments) fit the pattern.
    std::optional<Captures> Match(const std::vector<std::string>& segments) const;
    const std::string& Text() const { return text; }

private:
    struct Segment {
        enum class Kind { Literal, Capture, Wildcard } kind;
        std::string text;  ///< The literal, or the capture's name.
    };
    std::string text;
    std::vector<Segment> segments;
};

}  // namespace vantroserver::http
