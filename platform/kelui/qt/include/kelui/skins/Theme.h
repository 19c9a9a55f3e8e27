// The colours a node draws with, taken from the desktop's palette: eleven grays from the panel's
// background towards its text (gray 0 is the farthest from the text, gray 10 the text itself),
// so the same index reads well in light and dark themes. A plain value; any thread.
//
//   const auto& theme = supplier->GetTheme();
//   limner.FillRect(bounds, kelui::skins::GetPaletteGrayColor(theme, 1));
#pragma once

#include <array>

#include <kelui/limner/ColorRGBA.h>

namespace kelui::skins {

struct Theme {
    static constexpr int kPaletteGrayCount = 11;

    bool dark = false;
    std::array<limner::ColorRGBA, kPaletteGrayCount> grays{};
    limner::ColorRGBA text{0.0f, 0.0f, 0.0f, 1.0f};
    limner::ColorRGBA disabledText{0.5f, 0.5f, 0.5f, 1.0f};
    limner::ColorRGBA link{0.15f, 0.5f, 0.92f, 1.0f};
    limner::ColorRGBA accent{0.15f, 0.5f, 0.92f, 1.0f};

    friend bool operator==(const Theme&, const Theme&) = default;
};

/// Gray `index` of `theme`, clamped to 0..10.
limner::ColorRGBA GetPaletteGrayColor(const Theme& theme, int index);

/// The theme of the application's palette now (light or dark as its window colour is).
/// Main thread; needs a QApplication.
Theme GetApplicationTheme();

/// Whether the toolkit draws its current skin (flat controls, larger chevrons). True unless a
/// test or host says otherwise. Any thread.
bool IsRunningV7OrBeyond();
/// Chooses the skin; for hosts that keep the older look and for tests of both. Any thread.
void SetRunningV7OrBeyond(bool running);

}  // namespace kelui::skins
