#include "web/WebSessionCookie.h"

#include <charconv>

#include "security/Digest.h"
#include "security/Encoding.h"
#include "security/Random.h"

namespace vantroserver::web {

namespace {

std::int64_t SecondsOf(store::Timestamp timestamp) {
    return std::chrono::duration_cast<std::chrono::seconds>(timestamp.time_since_epoch()).count();
}

/// The value of cookie `name` in a `Cookie` header (`a=1; b=2`).
std::optional<std::string_view> CookieValue(std::string_view header, std::string_view name) {
    while (!header.empty()) {
        const auto end = header.find(';');
        std::string_view pair = header.substr(0, end);
        header = end == std::string_view::npos ? std::string_view{} : header.substr(end + 1);
        while (!pair.empty() && pair.front() == ' ') {
            pair.remove_prefix(1);
        }
        const auto equals = pair.find('=');
        if (equals != std::string_view::npos && pair.substr(0, equals) == name) {
            return pair.substr(equals + 1);
        }
    }
    return std::nullopt;
}

}  // namespace

WebSessionCookie::WebSessionCookie(std::string_view signingKey,
                                   std::function<store::Timestamp()> clock)
    // A key of its own, so a cookie's signature can never pass for a token's or the reverse.
    : key(security::HmacSha256(signingKey, "vantro-server web session")), clock(std::move(clock)) {}

std::string WebSessionCookie::Sign(std::string_view payload) const {
    return security::Base64UrlEncode(security::HmacSha256(key, payload));
}

std::string WebSessionCookie::Issue(std::string_view userId) const {
    const std::string payload =
        std::string(userId) + "." + std::to_string(SecondsOf(clock()) + kLifetime.count());
    return payload + "." + Sign(payload);
}

std::string WebSessionCookie::SetCookieHeader(std::string_view userId, bool secure) const {
    std::string header =
        std::string(kName) + "=" + Issue(userId) +
        "; Path=/; HttpOnly; SameSite=Lax; Max-Age=" + std::to_string(kLifetime.count());
    if (secure) {
        header += "; Secure";
    }
    return header;
}

std::optional<std::string> WebSessionCookie::UserOf(std::string_view cookieHeader) const {
    const auto value = CookieValue(cookieHeader, kName);
    if (!value) {
        return std::nullopt;
    }
    const auto lastDot = value->rfind('.');
    if (lastDot == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view payload = value->substr(0, lastDot);
    if (!security::ConstantTimeEquals(Sign(payload), value->substr(lastDot + 1))) {
        return std::nullopt;
    }
    const auto dot = payload.find('.');
    if (dot == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view userId = payload.substr(0, dot);
    const std::string_view expiry = payload.substr(dot + 1);
    std::int64_t expiresAt = 0;
    const auto [end, error] =
        std::from_chars(expiry.data(), expiry.data() + expiry.size(), expiresAt);
    if (error != std::errc{} || end != expiry.data() + expiry.size() ||
        SecondsOf(clock()) >= expiresAt || !security::IsWellFormedId(userId)) {
        return std::nullopt;
    }
    return std::string(userId);
}

}  // namespace vantroserver::web
