// A 128-bit identifier: of host projects and sequences, of cloud assets, folders and links, and
// of share jobs. A plain value, copied freely; any thread. The default is the nil Guid, which
// stands for "none". Its text is the canonical 8-4-4-4-12 hex form.
//
//   const Guid job = Guid::CreateUnique();
//   const Guid same(job.AsString());   // malformed text would give the nil Guid
//   assert(same == job && !same.IsNil());
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>

#include <kelcore/string/String.h>

namespace kelcore::utility {

class Guid {
public:
    /// The nil Guid (all zero). Any thread.
    constexpr Guid() noexcept = default;
    /// The Guid whose bytes 0-7 are `high` and 8-15 are `low`, most significant first. Any thread.
    constexpr Guid(std::uint64_t high, std::uint64_t low) noexcept : high(high), low(low) {}
    /// Parses "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx" in either case, optionally in braces.
    /// Anything else gives the nil Guid; never throws. Any thread.
    explicit Guid(string::string_view text) noexcept;
    /// The same from UTF-8 text. Any thread.
    explicit Guid(std::string_view text) noexcept;

    /// A new random (version 4) Guid. Any thread.
    static Guid CreateUnique();

    /// True for the all-zero Guid. Any thread.
    constexpr bool IsNil() const noexcept { return high == 0 && low == 0; }
    /// Lower-case canonical text without braces, UTF-16. Any thread.
    string::string AsString() const;
    /// Lower-case canonical text without braces, UTF-8. Any thread.
    std::string AsStdString() const;

    constexpr std::uint64_t High() const noexcept { return high; }
    constexpr std::uint64_t Low() const noexcept { return low; }

    /// Equal when both 64-bit halves are; ordered by the high half, then the low one.
    friend constexpr bool operator==(const Guid&, const Guid&) noexcept = default;
    friend constexpr std::strong_ordering operator<=>(const Guid&, const Guid&) noexcept = default;

private:
    std::uint64_t high = 0;
    std::uint64_t low = 0;
};

/// Prints the canonical text, as AsStdString.
std::ostream& operator<<(std::ostream& out, const Guid& guid);

}  // namespace kelcore::utility

template <>
struct std::hash<kelcore::utility::Guid> {
    std::size_t operator()(const kelcore::utility::Guid& guid) const noexcept;
};
