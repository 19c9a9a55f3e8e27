#include <vantrocommon/Guid.h>

#include <kelcore/utility/Guid.h>

namespace vantrocommon {
namespace {

Guid FromPlatform(const kelcore::utility::Guid& guid) {
    Guid::Bytes bytes{};
    for (int i = 0; i < 8; ++i) {
        bytes[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(guid.High() >> (56 - 8 * i));
        bytes[static_cast<std::size_t>(8 + i)] =
            static_cast<std::uint8_t>(guid.Low() >> (56 - 8 * i));
    }
    return Guid(bytes);
}

std::uint64_t Half(const Guid::Bytes& bytes, std::size_t first) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < 8; ++i) {
        value = value << 8 | bytes[first + i];
    }
    return value;
}

}  // namespace

// The platform's parser accepts exactly the forms this type documents, so both agree on what
// an id is.
Guid::Guid(std::string_view text) : Guid(FromPlatform(kelcore::utility::Guid(text))) {}

Guid Guid::CreateUnique() {
    return FromPlatform(kelcore::utility::Guid::CreateUnique());
}

std::string Guid::AsString() const {
    static constexpr char kHex[] = "0123456789abcdef";
    std::string text;
    text.reserve(36);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) {
            text += '-';
        }
        text += kHex[bytes[i] >> 4];
        text += kHex[bytes[i] & 0x0F];
    }
    return text;
}

bool Guid::IsNil() const {
    return bytes == Bytes{};
}

}  // namespace vantrocommon

std::size_t std::hash<vantrocommon::Guid>::operator()(
    const vantrocommon::Guid& guid) const noexcept {
    const auto& bytes = guid.GetBytes();
    // Random ids are uniform already; the mix keeps sequential or hand-made ids spread too.
    std::uint64_t value = vantrocommon::Half(bytes, 0) * 0x9E3779B97F4A7C15ULL;
    value ^= vantrocommon::Half(bytes, 8) + 0x632BE59BD9B4E019ULL + (value << 6) + (value >> 2);
    return static_cast<std::size_t>(value);
}
