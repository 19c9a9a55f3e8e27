#include "http/ByteRange.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace vantroserver::http {

namespace {

std::string_view TrimSpaces(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) {
        text.remove_prefix(1);
    }
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) {
        text.remove_suffix(1);
    }
    return text;
}

/// Digits only (no sign, no spaces); nothing for an empty text or a value past 64 bits.
std::optional<std::uint64_t> ParseDigits(std::string_view text) {
    if (text.empty()) {
        return std::nullopt;
    }
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return value;
}

bool StartsWithUnit(std::string_view header) {
    constexpr std::string_view kUnit = "bytes=";
    if (header.size() < kUnit.size()) {
        return false;
    }
    for (std::size_t i = 0; i < kUnit.size(); ++i) {
        const char c = header[i];
        const char lower = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        if (lower != kUnit[i]) {
            return false;
        }
    }
    return true;
}

}  // namespace

ByteRange ByteRange::Parse(std::string_view header, std::uint64_t size) {
    const ByteRange whole{};
    const ByteRange unsatisfiable{Outcome::Unsatisfiable, 0, 0};
    header = TrimSpaces(header);
    if (!StartsWithUnit(header)) {
        return whole;
    }
    const std::string_view rangeSet = TrimSpaces(header.substr(6));
    // Several ranges would need a multipart answer; one whole answer serves them all.
    if (rangeSet.find(',') != std::string_view::npos) {
        return whole;
    }
    const std::size_t dash = rangeSet.find('-');
    if (dash == std::string_view::npos) {
        return whole;
    }
    const std::string_view firstText = rangeSet.substr(0, dash);
    const std::string_view lastText = rangeSet.substr(dash + 1);
    if (firstText.empty()) {
        // A suffix: the last n bytes, or all of them when the file is shorter.
        const auto suffix = ParseDigits(lastText);
        if (!suffix) {
            return whole;
        }
        if (*suffix == 0 || size == 0) {
            return unsatisfiable;
        }
        const std::uint64_t length = std::min(*suffix, size);
        return ByteRange{Outcome::Partial, size - length, length};
    }
    const auto first = ParseDigits(firstText);
    if (!first) {
        return whole;
    }
    std::uint64_t last = 0;
    if (lastText.empty()) {
        last = size == 0 ? 0 : size - 1;
    } else {
        const auto parsed = ParseDigits(lastText);
        if (!parsed || *parsed < *first) {
            return whole;
        }
        last = size == 0 ? 0 : std::min(*parsed, size - 1);
    }
    if (*first >= size) {
        return unsatisfiable;
    }
    return ByteRange{Outcome::Partial, *first, last - *first + 1};
}

std::string ByteRange::ContentRange(std::uint64_t size) const {
    return "bytes " + std::to_string(first) + "-" + std::to_string(Last()) + "/" +
           std::to_string(size);
}

}  // namespace vantroserver::http
