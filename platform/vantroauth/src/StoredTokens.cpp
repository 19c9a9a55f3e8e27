#include "StoredTokens.h"

#include <boost/json/object.hpp>
#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <boost/json/value.hpp>

#include <cctype>
#include <optional>
#include <string_view>

#include <kelcore/config/kel_exception.h>

#include <vantroauth/ResultCodes.h>

namespace vantroauth {

namespace {

using kelcore::config::kel_exception;
using kelcore::config::ResultCode;

const boost::json::object& ParseObject(const std::string& json, ResultCode failureCode,
                                       boost::json::value& holder) {
    boost::system::error_code error;
    holder = boost::json::parse(json, error);
    if (error || !holder.is_object()) {
        throw kel_exception("the token answer is not a JSON object", failureCode);
    }
    return holder.as_object();
}

std::optional<std::string> StringMember(const boost::json::object& object, std::string_view name,
                                        ResultCode failureCode) {
    const auto* value = object.if_contains(name);
    if (!value || value->is_null()) {
        return std::nullopt;
    }
    if (!value->is_string()) {
        throw kel_exception("the member " + std::string(name) + " is not a string", failureCode);
    }
    return std::string(value->as_string());
}

std::optional<std::int64_t> IntegerMember(const boost::json::object& object, std::string_view name,
                                          ResultCode failureCode) {
    const auto* value = object.if_contains(name);
    if (!value || value->is_null()) {
        return std::nullopt;
    }
    if (value->is_int64()) {
        return value->as_int64();
    }
    if (value->is_uint64() && value->as_uint64() <= 0x7FFFFFFFFFFFFFFFull) {
        return static_cast<std::int64_t>(value->as_uint64());
    }
    throw kel_exception("the member " + std::string(name) + " is not an integer", failureCode);
}

bool IsBearer(std::string_view type) {
    constexpr std::string_view kBearer = "bearer";
    if (type.size() != kBearer.size()) {
        return false;
    }
    for (std::size_t i = 0; i < type.size(); ++i) {
        if (std::tolower(static_cast<unsigned char>(type[i])) != kBearer[i]) {
            return false;
        }
    }
    return true;
}

}  // namespace

StoredTokens StoredTokens::FromTokenAnswer(const std::string& json, ResultCode failureCode,
                                           std::chrono::system_clock::time_point now) {
    boost::json::value holder;
    const auto& object = ParseObject(json, failureCode, holder);
    StoredTokens tokens;
    const auto access = StringMember(object, "access_token", failureCode);
    if (!access || access->empty()) {
        throw kel_exception("the token answer has no access_token", failureCode);
    }
    tokens.accessToken = *access;
    if (const auto type = StringMember(object, "token_type", failureCode);
        type && !IsBearer(*type)) {
        throw kel_exception("the token answer is not of type Bearer", failureCode);
    }
    const auto expiresIn = IntegerMember(object, "expires_in", failureCode);
    if (!expiresIn || *expiresIn <= 0) {
        throw kel_exception("the token answer has no positive expires_in", failureCode);
    }
    tokens.lifetime = *expiresIn;
    const auto issued =
        std::chrono::duration_cast<std::chrono::seconds>(now.time_since_epoch()).count();
    tokens.expiresAt = issued + *expiresIn;
    tokens.refreshToken = StringMember(object, "refresh_token", failureCode).value_or("");
    return tokens;
}

std::string StoredTokens::ToJson() const {
    boost::json::object object;
    object["refresh_token"] = refreshToken;
    object["access_token"] = accessToken;
    object["expires_at"] = expiresAt;
    object["lifetime"] = lifetime;
    return boost::json::serialize(object);
}

StoredTokens StoredTokens::FromJson(const std::string& json) {
    boost::json::value holder;
    const auto& object = ParseObject(json, kResultStorageFailure, holder);
    StoredTokens tokens;
    tokens.refreshToken = StringMember(object, "refresh_token", kResultStorageFailure).value_or("");
    tokens.accessToken = StringMember(object, "access_token", kResultStorageFailure).value_or("");
    tokens.expiresAt = IntegerMember(object, "expires_at", kResultStorageFailure).value_or(0);
    tokens.lifetime = IntegerMember(object, "lifetime", kResultStorageFailure).value_or(0);
    return tokens;
}

}  // namespace vantroauth
