// A colour of the toolkit's drawing layer: four float channels from 0 to 1. A plain value.
//
//   const limner::ColorRGBA blue{38 / 255.0f, 127 / 255.0f, 235 / 255.0f, 1.0f};
#pragma once

namespace limner {

struct ColorRGBA {
    float red = 0.0f;
    float green = 0.0f;
    float blue = 0.0f;
    float alpha = 0.0f;

    /// Channel by channel as floats, red first; a NaN channel is never equal.
    friend constexpr bool operator==(const ColorRGBA&, const ColorRGBA&) = default;
};

}  // namespace limner
