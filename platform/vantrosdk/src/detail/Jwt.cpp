#include "detail/Jwt.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>

#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>

namespace vantrosdk::detail {

namespace {

/// base64url without padding (padding tolerated); empty on any character outside the alphabet.
std::optional<std::string> DecodeBase64Url(std::string_view text) {
    while (!text.empty() && text.back() == '=') {
        text.remove_suffix(1);
    }
    std::string out;
    out.reserve(text.size() * 3 / 4);
    std::uint32_t bits = 0;
    int count = 0;
    for (const char c : text) {
        int value = 0;
        if (c >= 'A' && c <= 'Z') {
            value = c - 'A';
        } else if (c >= 'a' && c <= 'z') {
            value = c - 'a' + 26;
        } else if (c >= '0' && c <= '9') {
            value = c - '0' + 52;
        } else if (c == '-' || c == '+') {
            value = 62;
        } else if (c == '_' || c == '/') {
            value = 63;
        } else {
            return std::nullopt;
        }
        bits = (bits << 6) | static_cast<std::uint32_t>(value);
        count += 6;
        if (count >= 8) {
            count -= 8;
            out.push_back(static_cast<char>((bits >> count) & 0xff));
        }
    }
    return out;
}

std::optional<double> NumberClaim(const boost::json::object& claims, std::string_view name) {
    const auto* value = claims.if_contains(name);
    if (!value || !value->is_number()) {
        return std::nullopt;
    }
    const double number = value->to_number<double>();
    if (!std::isfinite(number)) {
        return std::nullopt;
    }
    return number;
}

std::chrono::system_clock::time_point FromEpochSeconds(double seconds) {
    return std::chrono::system_clock::time_point(
        std::chrono::duration_cast<std::chrono::system_clock::duration>(
            std::chrono::duration<double>(seconds)));
}

}  // namespace

std::optional<TokenTimes> ReadTokenTimes(std::string_view token) {
    const auto first = token.find('.');
    if (first == std::string_view::npos) {
        return std::nullopt;
    }
    const auto second = token.find('.', first + 1);
    if (second == std::string_view::npos) {
        return std::nullopt;
    }
    const auto payload = DecodeBase64Url(token.substr(first + 1, second - first - 1));
    if (!payload) {
        return std::nullopt;
    }
    boost::system::error_code error;
    const boost::json::value claims = boost::json::parse(*payload, error);
    if (error || !claims.is_object()) {
        return std::nullopt;
    }
    // Times past a few thousand years are nonsense, and would overflow the clock's duration.
    constexpr double kLatest = 1e11;
    const auto expires = NumberClaim(claims.as_object(), "exp");
    if (!expires || *expires < 0 || *expires > kLatest) {
        return std::nullopt;
    }
    TokenTimes times{FromEpochSeconds(*expires), std::nullopt};
    if (const auto issued = NumberClaim(claims.as_object(), "iat");
        issued && *issued >= 0 && *issued <= *expires) {
        times.issuedAt = FromEpochSeconds(*issued);
    }
    return times;
}

std::chrono::milliseconds RefreshMargin(const TokenTimes& times,
                                        std::chrono::system_clock::time_point now) {
    using std::chrono::milliseconds;
    const auto start = times.issuedAt.value_or(now);
    const auto life = std::max(milliseconds(0),
                               std::chrono::duration_cast<milliseconds>(times.expiresAt - start));
    return std::min(milliseconds(60'000), life / 10);
}

}  // namespace vantrosdk::detail
