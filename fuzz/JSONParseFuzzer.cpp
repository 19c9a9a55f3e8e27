// Feeds arbitrary bytes to JSONParse. Nothing but parse_exception may escape, and whatever
// parses must serialise and parse back to the same document; a double may move by an ulp or
// so, since the parser does not round every decimal correctly.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>

#include <kelcore/serialization/JSON.h>

namespace {

bool SameDocument(const boost::json::value& a, const boost::json::value& b) {
    if (a.is_double() && b.is_double()) {
        return std::abs(a.get_double() - b.get_double()) <=
               1e-15 * std::max(std::abs(a.get_double()), std::abs(b.get_double()));
    }
    if (a.kind() != b.kind()) {
        return false;
    }
    if (a.is_array()) {
        const auto& x = a.get_array();
        const auto& y = b.get_array();
        return x.size() == y.size() && std::equal(x.begin(), x.end(), y.begin(), SameDocument);
    }
    if (a.is_object()) {
        const auto& x = a.get_object();
        const auto& y = b.get_object();
        return x.size() == y.size() &&
               std::equal(x.begin(), x.end(), y.begin(), [](const auto& m, const auto& n) {
                   return m.key() == n.key() && SameDocument(m.value(), n.value());
               });
    }
    return a == b;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kelcore::serialization;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    std::any document;
    try {
        document = JSONParse(text);
    } catch (const parse_exception&) {
        return 0;
    }
    const std::string once = GetJSONString(document);
    const std::string twice = GetJSONString(JSONParse(once));
    if (!SameDocument(boost::json::parse(once), boost::json::parse(twice))) {
        std::abort();
    }
    if (const auto* object = std::any_cast<JSONObject>(&document); object && !object->empty()) {
        try {
            GetVariantInObject<std::string>(document, object->begin()->key());
        } catch (const parse_exception&) {
        }
    }
    return 0;
}
