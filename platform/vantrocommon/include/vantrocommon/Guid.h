// The cloud libraries' own identifier: 16 bytes, nil by default. It meets the platform's
// kelcore::utility::Guid only through text (lower-case 8-4-4-4-12 hex). A plain value; any
// thread.
//
//   vantrocommon::Guid folder(folderText);          // nil when the text is not an id
//   if (!folder.IsNil()) request.url += folder.AsString();
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace vantrocommon {

class Guid {
public:
    using Bytes = std::array<std::uint8_t, 16>;

    /// The nil id.
    Guid() = default;
    explicit Guid(const Bytes& bytes) : bytes(bytes) {}
    /// Parses the 8-4-4-4-12 hex form (either case, optionally in braces); anything else gives
    /// the nil id, never an exception.
    explicit Guid(std::string_view text);

    /// A new random (version 4) id.
    static Guid CreateUnique();

    /// Lower-case 8-4-4-4-12 hex; the nil id reads "00000000-0000-0000-0000-000000000000".
    std::string AsString() const;
    bool IsNil() const;
    const Bytes& GetBytes() const { return bytes; }

    friend bool operator==(const Guid&, const Guid&) = default;
    friend auto operator<=>(const Guid&, const Guid&) = default;

private:
    Bytes bytes{};
};

}  // namespace vantrocommon

template <>
struct std::hash<vantrocommon::Guid> {
    std::size_t operator()(const vantrocommon::Guid& guid) const noexcept;
};
