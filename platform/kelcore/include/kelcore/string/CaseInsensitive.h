// Orders names the way people read them: case does not matter and runs of digits count by
// their value, so "Clip 2" sorts before "clip 10". Stateless; any thread.
//
//   std::sort(names.begin(), names.end(), [](const auto& a, const auto& b) {
//       return kelcore::string::CaseInsensitive::NaturalStringLessThan(a, b);
//   });
#pragma once

#include <kelcore/string/String.h>

namespace kelcore::string {

struct CaseInsensitive {
    /// True when `a` comes before `b` in natural, case-insensitive order. Letters compare by
    /// their simple case folding, code point by code point (a surrogate pair is one code point);
    /// runs of ASCII digits compare by numeric value, however long. Names that are equal so far
    /// are ordered by fewer leading zeros first, then by their UTF-16 code units, so only
    /// identical strings compare equal. Never allocates. Any thread.
    static bool NaturalStringLessThan(string_view a, string_view b) noexcept;
};

}  // namespace kelcore::string
