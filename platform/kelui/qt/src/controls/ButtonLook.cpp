#include "controls/ButtonLook.h"

#include <algorithm>

#include <kelui/controls/UI_Button.h>

namespace kelui::controls::detail {

using kelcore::geom::RectT;

namespace {

constexpr limner::ColorRGBA kBlack{0.0f, 0.0f, 0.0f, 1.0f};
constexpr limner::ColorRGBA kWhite{1.0f, 1.0f, 1.0f, 1.0f};

float Luminance(const limner::ColorRGBA& color) {
    return 0.2126f * color.red + 0.7152f * color.green + 0.0722f * color.blue;
}

RectT<float> Inset(const RectT<float>& rect, float by) {
    return {rect.x + by, rect.y + by, std::max(rect.width - 2.0f * by, 0.0f),
            std::max(rect.height - 2.0f * by, 0.0f)};
}

limner::Path RoundedRect(const RectT<float>& rect, float radius) {
    limner::Path path;
    path.AddRoundedRect(rect, std::min({radius, rect.width / 2.0f, rect.height / 2.0f}));
    return path;
}

// The fills of a button's box at rest, hovered and pressed.
struct Fills {
    limner::ColorRGBA rest;
    limner::ColorRGBA hovered;
    limner::ColorRGBA pressed;
};

Fills GetBoxFills(const ButtonLook& look, const skins::Theme& theme) {
    using skins::GetPaletteGrayColor;
    if (look.background) {
        const limner::ColorRGBA active = look.activeBackground.value_or(
            Mix(*look.background, theme.dark ? kWhite : kBlack, 0.08f));
        return {*look.background, active, Mix(active, kBlack, 0.12f)};
    }
    if (look.commitAppearance) {
        return {theme.accent, Mix(theme.accent, theme.dark ? kWhite : kBlack, 0.08f),
                Mix(theme.accent, kBlack, 0.18f)};
    }
    // Light: a near-white box on the panel; dark: a box a step lighter than the panel.
    Fills fills =
        theme.dark ? Fills{Mix(GetPaletteGrayColor(theme, 2), GetPaletteGrayColor(theme, 1), 0.25f),
                           GetPaletteGrayColor(theme, 2),
                           Mix(GetPaletteGrayColor(theme, 1), GetPaletteGrayColor(theme, 2), 0.3f)}
                   : Fills{GetPaletteGrayColor(theme, 0),
                           Mix(GetPaletteGrayColor(theme, 0), GetPaletteGrayColor(theme, 2), 0.25f),
                           Mix(GetPaletteGrayColor(theme, 1), GetPaletteGrayColor(theme, 2), 0.5f)};
    if (look.activeBackground) {
        fills.hovered = *look.activeBackground;
        fills.pressed = Mix(*look.activeBackground, kBlack, 0.12f);
    }
    return fills;
}

}  // namespace

limner::ColorRGBA Faded(limner::ColorRGBA color, float opacity) {
    color.alpha *= opacity;
    return color;
}

limner::ColorRGBA Mix(const limner::ColorRGBA& from, const limner::ColorRGBA& to, float amount) {
    const auto mix = [amount](float a, float b) { return a + (b - a) * amount; };
    return {mix(from.red, to.red), mix(from.green, to.green), mix(from.blue, to.blue),
            mix(from.alpha, to.alpha)};
}

limner::ColorRGBA GetTextOnAccent(const skins::Theme& theme) {
    return Luminance(theme.accent) > 0.7f ? kBlack : kWhite;
}

limner::ColorRGBA GetFocusRingColor(const skins::Theme& theme) {
    return theme.accent;
}

void DrawButtonChrome(limner::Limner& limner, const RectT<float>& rect, const ButtonLook& look,
                      const skins::Theme& theme, const ButtonInteraction& interaction,
                      const limner::ColorRGBA& contentColor) {
    const Fills fills = GetBoxFills(look, theme);
    const limner::ColorRGBA boxFill = interaction.pressed   ? fills.pressed
                                      : interaction.hovered ? fills.hovered
                                                            : fills.rest;
    // Flat chromes shade themselves with the text colour, so the shade suits any panel.
    const limner::ColorRGBA shade = Faded(theme.text, interaction.pressed   ? 0.16f
                                                      : interaction.hovered ? 0.08f
                                                                            : 0.0f);
    const bool coloured = look.background || look.commitAppearance;

    std::optional<limner::ColorRGBA> fill;
    bool border = false;
    switch (look.chromeType) {
        case UI_Button::kChromeQuiet:
            if (look.containerAlways) {
                fill = boxFill;
            } else if (interaction.pressed) {
                fill = shade;
            }
            border = interaction.hovered || interaction.pressed;
            break;
        case UI_Button::kChromeBorderlessIcon:
            if (look.containerAlways) {
                fill = boxFill;
            } else if (interaction.hovered || interaction.pressed) {
                fill = shade;
            }
            break;
        default:
            fill = boxFill;
            border = true;
            break;
    }
    border = !look.borderNever && (border || look.borderAlways);

    const float opacity = interaction.enabled ? 1.0f : kDisabledChromeOpacity;
    if (fill) {
        limner.FillPath(RoundedRect(rect, kCornerRadius), Faded(*fill, opacity));
    }
    if (border) {
        const limner::ColorRGBA color = coloured && fill ? Mix(*fill, kBlack, 0.15f)
                                        : theme.dark
                                            ? Mix(skins::GetPaletteGrayColor(theme, 3),
                                                  skins::GetPaletteGrayColor(theme, 4), 0.3f)
                                            : Mix(skins::GetPaletteGrayColor(theme, 2),
                                                  skins::GetPaletteGrayColor(theme, 3), 0.6f);
        limner.StrokePath(RoundedRect(Inset(rect, 0.5f), kCornerRadius - 0.5f),
                          limner::Pen{1.0f, Faded(color, opacity)});
    }
    if (interaction.focused) {
        limner.StrokePath(RoundedRect(Inset(rect, 1.0f), kCornerRadius - 1.0f),
                          limner::Pen{2.0f, GetFocusRingColor(theme)});
        if (coloured && fill) {
            limner.StrokePath(RoundedRect(Inset(rect, 2.5f), kCornerRadius - 2.5f),
                              limner::Pen{1.0f, Faded(contentColor, 0.9f)});
        }
    }
}

}  // namespace kelui::controls::detail
