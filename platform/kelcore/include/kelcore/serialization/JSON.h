// JSON in and out, over Boost.JSON. A parsed document is a std::any holding, by JSON kind:
//   object -> JSONObject (members keep their order), array -> JSONArray, string -> std::string
//   (UTF-8), integer -> std::int64_t (an integer beyond its range -> double), other number ->
//   double, true/false -> bool; null, and text that is empty or only whitespace -> an EMPTY any.
// A number too large for a double is refused rather than read as infinity, and Boost.JSON
// 1.81 does not round every decimal correctly, so a double may differ in its last bit from
// what strtod gives. Callers take an object with std::any_cast<const JSONObject&>, which
// throws std::bad_any_cast for any other kind; that is meant. Stateless: any thread.
//
//   std::any document = JSONParse(R"({"preset_name":"H.264"})");
//   std::string name = GetVariantInObject<std::string>(document, "preset_name");
#pragma once

#include <any>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>

#include <kelcore/serialization/parse_exception.h>

namespace kelcore::serialization {

/// Members in insertion order; build one with emplace and hand it to GetJSONString in a std::any.
using JSONObject = boost::json::object;
using JSONArray = boost::json::array;

/// Parses `text` as one JSON document (strict: no comments, no trailing commas, valid UTF-8,
/// at most 32 levels deep). Throws parse_exception when it is not valid JSON or holds a number
/// beyond the range of a double. Any thread.
std::any JSONParse(std::string_view text);

/// Serialises a std::any of the kinds JSONParse answers (an empty one as null) as compact JSON,
/// object members in their order, UTF-8 as it stands. Throws std::bad_any_cast for any other
/// content and std::domain_error for an infinite or NaN number, which JSON cannot express.
/// Any thread.
std::string GetJSONString(const std::any& value);

template <class T>
concept JSONMemberType =
    std::is_same_v<T, std::string> || std::is_same_v<T, bool> || std::is_same_v<T, std::int64_t> ||
    std::is_same_v<T, double> || std::is_same_v<T, JSONObject> || std::is_same_v<T, JSONArray>;

/// The member `key` of the object that `object` holds, as T; `defaultValue` when the object has
/// no such member or it is null. An integer member reads as double too, and a double member
/// as std::int64_t when it is integral and in range. Throws std::bad_any_cast when `object`
/// does not hold a JSONObject, parse_exception when the member is of another type. Any thread.
template <JSONMemberType T>
T GetVariantInObject(const std::any& object, std::string_view key, T defaultValue = {});

extern template std::string GetVariantInObject(const std::any&, std::string_view, std::string);
extern template bool GetVariantInObject(const std::any&, std::string_view, bool);
extern template std::int64_t GetVariantInObject(const std::any&, std::string_view, std::int64_t);
extern template double GetVariantInObject(const std::any&, std::string_view, double);
extern template JSONObject GetVariantInObject(const std::any&, std::string_view, JSONObject);
extern template JSONArray GetVariantInObject(const std::any&, std::string_view, JSONArray);

}  // namespace kelcore::serialization
