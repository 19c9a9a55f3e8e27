// Feeds arbitrary bytes to JSONParse; whatever parses must serialise and parse back to the same
// text, and nothing but parse_exception may escape.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include <kelcore/serialization/JSON.h>

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
    if (once != twice) {
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
