#include <kelui/skins/Theme.h>

#include <algorithm>
#include <atomic>

#include <QApplication>
#include <QPalette>

#include <kelui/ui/QtConversions.h>

namespace kelui::skins {

namespace {

std::atomic<bool> sRunningV7OrBeyond{true};

limner::ColorRGBA Mix(const QColor& from, const QColor& to, float amount) {
    const auto mix = [amount](double a, double b) {
        return static_cast<float>(a + (b - a) * static_cast<double>(amount));
    };
    return {mix(from.redF(), to.redF()), mix(from.greenF(), to.greenF()),
            mix(from.blueF(), to.blueF()), 1.0f};
}

}  // namespace

limner::ColorRGBA GetPaletteGrayColor(const Theme& theme, int index) {
    return theme
        .grays[static_cast<std::size_t>(std::clamp(index, 0, Theme::kPaletteGrayCount - 1))];
}

Theme GetApplicationTheme() {
    const QPalette palette = QApplication::palette();
    const QColor window = palette.color(QPalette::Window);
    const QColor text = palette.color(QPalette::WindowText);
    Theme theme;
    theme.dark = window.lightnessF() < 0.5;
    // Gray 1 is the panel itself; gray 0 lies a little beyond it, away from the text; grays 2
    // to 10 step towards the text, which gray 10 is.
    const QColor beyond = theme.dark ? window.darker(130) : window.lighter(106);
    theme.grays[0] = Mix(window, beyond, 1.0f);
    for (int index = 1; index < Theme::kPaletteGrayCount; ++index) {
        theme.grays[static_cast<std::size_t>(index)] =
            Mix(window, text, static_cast<float>(index - 1) / 9.0f);
    }
    theme.text = ui::FromQColor(text);
    theme.disabledText = ui::FromQColor(palette.color(QPalette::Disabled, QPalette::WindowText));
    theme.link = ui::FromQColor(palette.color(QPalette::Link));
    theme.accent = ui::FromQColor(palette.color(QPalette::Highlight));
    return theme;
}

bool IsRunningV7OrBeyond() {
    return sRunningV7OrBeyond.load();
}

void SetRunningV7OrBeyond(bool running) {
    sRunningV7OrBeyond.store(running);
}

}  // namespace kelui::skins
