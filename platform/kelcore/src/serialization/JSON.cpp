#include <kelcore/serialization/JSON.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <boost/json/value.hpp>

namespace kelcore::serialization {
namespace {

std::any ToAny(boost::json::value&& value) {
    switch (value.kind()) {
        case boost::json::kind::null:
            return {};
        case boost::json::kind::bool_:
            return value.get_bool();
        case boost::json::kind::int64:
            return value.get_int64();
        case boost::json::kind::uint64:
            // Only integers above INT64_MAX arrive here; one number type keeps callers simple.
            return static_cast<double>(value.get_uint64());
        case boost::json::kind::double_:
            return value.get_double();
        case boost::json::kind::string:
            return std::string(value.get_string());
        case boost::json::kind::array:
            return JSONArray(std::move(value.get_array()));
        case boost::json::kind::object:
            break;
    }
    return JSONObject(std::move(value.get_object()));
}

// The parser reads an out-of-range number as infinity, and the serialiser would write that
// as "Infinity", which no JSON parser accepts.
bool HasNonFiniteNumber(const boost::json::value& value);

bool HasNonFiniteNumber(const JSONArray& array) {
    return std::any_of(array.begin(), array.end(),
                       [](const auto& element) { return HasNonFiniteNumber(element); });
}

bool HasNonFiniteNumber(const JSONObject& object) {
    return std::any_of(object.begin(), object.end(),
                       [](const auto& member) { return HasNonFiniteNumber(member.value()); });
}

bool HasNonFiniteNumber(const boost::json::value& value) {
    switch (value.kind()) {
        case boost::json::kind::double_:
            return !std::isfinite(value.get_double());
        case boost::json::kind::array:
            return HasNonFiniteNumber(value.get_array());
        case boost::json::kind::object:
            return HasNonFiniteNumber(value.get_object());
        default:
            return false;
    }
}

template <class T>
std::string Serialize(const T& value) {
    if (HasNonFiniteNumber(value)) {
        throw std::domain_error("JSON cannot express an infinite or NaN number");
    }
    return boost::json::serialize(value);
}

bool IsJSONWhitespace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

template <class T>
constexpr const char* KindName() {
    if constexpr (std::is_same_v<T, std::string>) {
        return "a string";
    } else if constexpr (std::is_same_v<T, bool>) {
        return "a boolean";
    } else if constexpr (std::is_same_v<T, std::int64_t>) {
        return "an integer";
    } else if constexpr (std::is_same_v<T, double>) {
        return "a number";
    } else if constexpr (std::is_same_v<T, JSONObject>) {
        return "an object";
    } else {
        return "an array";
    }
}

}  // namespace

std::any JSONParse(std::string_view text) {
    if (std::all_of(text.begin(), text.end(), IsJSONWhitespace)) {
        return {};
    }
    boost::json::error_code error;
    auto value = boost::json::parse(text, error);
    if (error) {
        throw parse_exception("Invalid JSON: " + error.message());
    }
    if (HasNonFiniteNumber(value)) {
        throw parse_exception("Invalid JSON: a number is out of range");
    }
    return ToAny(std::move(value));
}

std::string GetJSONString(const std::any& value) {
    if (!value.has_value()) {
        return "null";
    }
    if (const auto* object = std::any_cast<JSONObject>(&value)) {
        return Serialize(*object);
    }
    if (const auto* array = std::any_cast<JSONArray>(&value)) {
        return Serialize(*array);
    }
    if (const auto* text = std::any_cast<std::string>(&value)) {
        return boost::json::serialize(boost::json::value(std::string_view(*text)));
    }
    if (const auto* number = std::any_cast<double>(&value)) {
        return Serialize(boost::json::value(*number));
    }
    if (const auto* integer = std::any_cast<std::int64_t>(&value)) {
        return boost::json::serialize(boost::json::value(*integer));
    }
    if (const auto* flag = std::any_cast<bool>(&value)) {
        return *flag ? "true" : "false";
    }
    if (const auto* any = std::any_cast<boost::json::value>(&value)) {
        return Serialize(*any);
    }
    throw std::bad_any_cast();
}

template <JSONMemberType T>
T GetVariantInObject(const std::any& object, std::string_view key, T defaultValue) {
    const auto& members = std::any_cast<const JSONObject&>(object);
    const auto* member = members.if_contains(key);
    if (!member || member->is_null()) {
        return defaultValue;
    }
    if constexpr (std::is_same_v<T, std::string>) {
        if (const auto* text = member->if_string()) {
            return std::string(*text);
        }
    } else if constexpr (std::is_same_v<T, bool>) {
        if (const auto* flag = member->if_bool()) {
            return *flag;
        }
    } else if constexpr (std::is_same_v<T, JSONObject>) {
        if (const auto* child = member->if_object()) {
            return *child;
        }
    } else if constexpr (std::is_same_v<T, JSONArray>) {
        if (const auto* child = member->if_array()) {
            return *child;
        }
    } else {
        boost::json::error_code error;
        const auto number = member->to_number<T>(error);
        if (!error) {
            return number;
        }
    }
    throw parse_exception("JSON member \"" + std::string(key) + "\" is not " + KindName<T>());
}

template std::string GetVariantInObject(const std::any&, std::string_view, std::string);
template bool GetVariantInObject(const std::any&, std::string_view, bool);
template std::int64_t GetVariantInObject(const std::any&, std::string_view, std::int64_t);
template double GetVariantInObject(const std::any&, std::string_view, double);
template JSONObject GetVariantInObject(const std::any&, std::string_view, JSONObject);
template JSONArray GetVariantInObject(const std::any&, std::string_view, JSONArray);

}  // namespace kelcore::serialization
