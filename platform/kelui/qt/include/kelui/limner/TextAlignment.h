// Horizontal placement of text inside its rectangle. Text is always centred vertically on its
// line box.
#pragma once

#include <cstdint>

namespace limner {

enum class TextAlignment : std::uint32_t { Left = 0, Center = 1, Right = 2 };

}  // namespace limner
