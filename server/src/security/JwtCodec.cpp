#include "security/JwtCodec.h"

#include <boost/json.hpp>

#include <stdexcept>

#include "security/Digest.h"
#include "security/Encoding.h"

namespace vantroserver::security {

namespace {

constexpr std::string_view kHeader = R"({"alg":"HS256","typ":"JWT"})";

std::optional<std::string> StringMember(const boost::json::object& object, std::string_view name) {
    const auto* value = object.if_contains(name);
    if (value == nullptr || !value->is_string()) {
        return std::nullopt;
    }
    return std::string(value->get_string());
}

std::optional<std::int64_t> IntegerMember(const boost::json::object& object,
                                          std::string_view name) {
    const auto* value = object.if_contains(name);
    if (value == nullptr) {
        return std::nullopt;
    }
    if (value->is_int64()) {
        return value->get_int64();
    }
    if (value->is_uint64() && value->get_uint64() <= static_cast<std::uint64_t>(INT64_MAX)) {
        return static_cast<std::int64_t>(value->get_uint64());
    }
    return std::nullopt;
}

}  // namespace

JwtCodec::JwtCodec(std::string key) : key(std::move(key)) {
    if (this->key.size() < 32) {
        throw std::invalid_argument("the signing key must be at least 32 bytes");
    }
}

std::string JwtCodec::Sign(const AccessTokenClaims& claims) const {
    boost::json::object payload;
    payload["sub"] = claims.subject;
    payload["client_id"] = claims.clientId;
    if (!claims.familyId.empty()) {
        payload["fam"] = claims.familyId;
    }
    payload["iat"] = claims.issuedAt;
    payload["exp"] = claims.expiresAt;
    std::string signingInput =
        Base64UrlEncode(kHeader) + "." + Base64UrlEncode(boost::json::serialize(payload));
    const std::string signature = Base64UrlEncode(HmacSha256(key, signingInput));
    return signingInput + "." + signature;
}

JwtVerification JwtCodec::Verify(std::string_view token, std::int64_t nowSeconds) const {
    JwtVerification result;
    const std::size_t firstDot = token.find('.');
    if (firstDot == std::string_view::npos) {
        return result;
    }
    const std::size_t secondDot = token.find('.', firstDot + 1);
    if (secondDot == std::string_view::npos ||
        token.find('.', secondDot + 1) != std::string_view::npos) {
        return result;
    }
    const std::string_view signingInput = token.substr(0, secondDot);
    const auto header = Base64UrlDecode(token.substr(0, firstDot));
    const auto payload = Base64UrlDecode(token.substr(firstDot + 1, secondDot - firstDot - 1));
    const auto signature = Base64UrlDecode(token.substr(secondDot + 1));
    if (!header || !payload || !signature) {
        return result;
    }

    // The header is parsed rather than compared byte for byte so that key order does not
    // matter, but anything but HS256 is refused: no "none", no algorithm confusion.
    boost::system::error_code error;
    const boost::json::value headerValue = boost::json::parse(*header, error);
    if (error || !headerValue.is_object()) {
        return result;
    }
    const auto algorithm = StringMember(headerValue.get_object(), "alg");
    if (!algorithm || *algorithm != "HS256") {
        return result;
    }

    if (!ConstantTimeEquals(HmacSha256(key, signingInput), *signature)) {
        result.status = JwtStatus::BadSignature;
        return result;
    }

    const boost::json::value payloadValue = boost::json::parse(*payload, error);
    if (error || !payloadValue.is_object()) {
        return result;
    }
    const auto& object = payloadValue.get_object();
    const auto subject = StringMember(object, "sub");
    const auto clientId = StringMember(object, "client_id");
    const auto issuedAt = IntegerMember(object, "iat");
    const auto expiresAt = IntegerMember(object, "exp");
    if (!subject || !clientId || !issuedAt || !expiresAt) {
        return result;
    }
    result.claims.subject = *subject;
    result.claims.clientId = *clientId;
    result.claims.familyId = StringMember(object, "fam").value_or("");
    result.claims.issuedAt = *issuedAt;
    result.claims.expiresAt = *expiresAt;
    result.status = nowSeconds < *expiresAt ? JwtStatus::Valid : JwtStatus::Expired;
    return result;
}

}  // namespace vantroserver::security
