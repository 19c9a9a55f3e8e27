// How a line is stroked: its width in pixels and its colour. A plain value; any thread.
//
//   limner->StrokePath(path, limner::Pen{1.0f, GetPaletteGrayColor(theme, 4)});
#pragma once

#include <kelui/limner/ColorRGBA.h>

namespace limner {

struct Pen {
    float width = 1.0f;
    ColorRGBA color{0.0f, 0.0f, 0.0f, 1.0f};

    friend constexpr bool operator==(const Pen&, const Pen&) = default;
};

}  // namespace limner
