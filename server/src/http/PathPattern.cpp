#include "http/PathPattern.h"

#include <stdexcept>

namespace vantroserver::http {

PathPattern::PathPattern(std::string_view pattern) : text(pattern) {
    if (pattern.empty() || pattern.front() != '/') {
        throw std::invalid_argument("path pattern must start with '/': " + text);
    }
    if (pattern == "/") {
        return;
    }
    std::string_view rest = pattern.substr(1);
    while (true) {
        const auto slash = rest.find('/');
        const std::string_view part = rest.substr(0, slash);
        if (part.empty()) {
            throw std::invalid_argument("empty segment in path pattern: " + text);
        }
        if (part == "*") {
            segments.push_back({Segment::Kind::Wildcard, {}});
        } else if (part.front() == '{') {
            if (part.size() < 3 || part.back() != '}') {
                throw std::invalid_argument("bad capture in path pattern: " + text);
            }
            segments.push_back(
                {Segment::Kind::Capture, std::string(part.substr(1, part.size() - 2))});
        } else {
            segments.push_back({Segment::Kind::Literal, std::string(part)});
        }
        if (slash == std::string_view::npos) {
            break;
        }
        rest = rest.substr(slash + 1);
    }
}

std::optional<PathPattern::Captures> PathPattern::Match(
    const std::vector<std::string>& pathSegments) const {
    if (pathSegments.size() != segments.size()) {
        return std::nullopt;
    }
    Captures captures;
    for (std::size_t i = 0; i < segments.size(); ++i) {
        const Segment& segment = segments[i];
        switch (segment.kind) {
            case Segment::Kind::Literal:
                if (pathSegments[i] != segment.text) {
                    return std::nullopt;
                }
                break;
            case Segment::Kind::Capture:
                captures.emplace(segment.text, pathSegments[i]);
                break;
            case Segment::Kind::Wildcard:
                break;
        }
    }
    return captures;
}

}  // namespace vantroserver::http
