// How a button's box is drawn from the theme: the fill, the border and the keyboard focus ring for
// each chrome type and state, light and dark alike. Kept apart from UI_Button so the colour
// choices read in one place. Private to the toolkit; main thread.
#pragma once

#include <cstdint>
#include <optional>

#include <kelcore/geom/RectT.h>
#include <kelui/limner/ColorRGBA.h>
#include <kelui/limner/Limner.h>
#include <kelui/skins/Theme.h>

namespace kelui::controls::detail {

/// How strongly disabled parts show: text, pictures, and the box.
inline constexpr float kDisabledTextOpacity = 0.5f;
inline constexpr float kDisabledImageOpacity = 0.4f;
inline constexpr float kDisabledChromeOpacity = 0.5f;
inline constexpr float kCornerRadius = 4.0f;

/// `color` with its alpha multiplied by `opacity`.
limner::ColorRGBA Faded(limner::ColorRGBA color, float opacity);
/// `from` moved by `amount` (0 to 1) towards `to`, alpha included.
limner::ColorRGBA Mix(const limner::ColorRGBA& from, const limner::ColorRGBA& to, float amount);
/// Text that reads on the theme's accent colour: white, or black on a very light accent.
limner::ColorRGBA GetTextOnAccent(const skins::Theme& theme);
/// The colour of keyboard focus rings.
limner::ColorRGBA GetFocusRingColor(const skins::Theme& theme);

/// What the owner chose for the box.
struct ButtonLook {
    std::uint32_t chromeType = 0;
    std::optional<limner::ColorRGBA> background;
    std::optional<limner::ColorRGBA> activeBackground;
    bool commitAppearance = false;
    bool borderNever = false;
    bool borderAlways = false;
    bool containerAlways = false;
};

/// The state of the button as it is drawn.
struct ButtonInteraction {
    bool enabled = true;
    bool hovered = false;
    bool pressed = false;
    bool focused = false;
};

/// Draws the box of a button in `rect`: fill, border and, when focused, the focus ring, which
/// keeps a thin line of `contentColor` between itself and a coloured fill so it always shows.
void DrawButtonChrome(limner::Limner& limner, const kelcore::geom::RectT<float>& rect,
                      const ButtonLook& look, const skins::Theme& theme,
                      const ButtonInteraction& interaction, const limner::ColorRGBA& contentColor);

}  // namespace kelui::controls::detail
