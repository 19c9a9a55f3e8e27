// Any bytes, read as UTF-8 and as UTF-16 text, parse without fault; a Guid that parses
// round-trips through its canonical text.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include <kelcore/utility/Guid.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using kelcore::utility::Guid;
    const std::string_view utf8(reinterpret_cast<const char*>(data), size);
    const Guid fromUtf8(utf8);
    if (!fromUtf8.IsNil() && Guid(fromUtf8.AsStdString()) != fromUtf8) {
        std::abort();
    }
    std::u16string units(size / 2, u'\0');
    std::memcpy(units.data(), data, units.size() * sizeof(char16_t));
    const Guid fromUtf16{std::u16string_view(units)};
    if (!fromUtf16.IsNil() && Guid(fromUtf16.AsString()) != fromUtf16) {
        std::abort();
    }
    return 0;
}
