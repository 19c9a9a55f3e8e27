#include <kelui/controls/UI_ProgressBar.h>

#include <algorithm>
#include <cstdint>

#include <QPalette>
#include <QProgressBar>

#include <kelui/ui/QtConversions.h>

namespace kelui::controls {

namespace {

// The Qt bar counts in percent: its accessible value, and the value-change events that screen
// readers hear, are then the percentage rather than the caller's units.
constexpr int kPercent = 100;

QProgressBar* BarOf(QWidget* widget) {
    return qobject_cast<QProgressBar*>(widget);
}

}  // namespace

UI_ProgressBar::UI_ProgressBar() : UI_ControlView(new QProgressBar) {
    QProgressBar* bar = BarOf(GetWidget());
    bar->setTextVisible(false);
    bar->setRange(0, kPercent);
    bar->setValue(0);
}

void UI_ProgressBar::SetProgress(int newValue, int newMaximum) {
    maximum = std::max(newMaximum, 0);
    value = std::clamp(newValue, 0, maximum);
    valueUnknown = false;
    if (QProgressBar* bar = BarOf(GetWidget())) {
        // Never 0 to 0, which is Qt's busy look: an empty job shows an empty bar.
        bar->setRange(0, kPercent);
        bar->setValue(maximum > 0 ? static_cast<int>(std::int64_t{value} * kPercent / maximum) : 0);
    }
}

void UI_ProgressBar::SetValueUnknown() {
    value = 0;
    maximum = 0;
    valueUnknown = true;
    if (QProgressBar* bar = BarOf(GetWidget())) {
        bar->setRange(0, 0);
        bar->setValue(0);
    }
}

void UI_ProgressBar::SetCustomThemeColor(std::uint32_t id, limner::ColorRGBA color) {
    customColors[id] = color;
    if (id != kTrackColorID) {
        return;
    }
    if (QWidget* widget = GetWidget()) {
        // Styles paint the track with Base (Fusion) or Window; only these two roles are set, so
        // the others keep following the application's palette.
        QPalette palette;
        palette.setColor(QPalette::Base, ui::ToQColor(color));
        palette.setColor(QPalette::Window, ui::ToQColor(color));
        widget->setPalette(palette);
    }
}

std::optional<limner::ColorRGBA> UI_ProgressBar::GetCustomThemeColor(std::uint32_t id) const {
    const auto found = customColors.find(id);
    if (found == customColors.end()) {
        return std::nullopt;
    }
    return found->second;
}

kelcore::geom::PointT<float> UI_ProgressBar::UI_GetRecommendedSize(limner::Limner& /*measuring*/) {
    return {UI_GetLocalRectF().width, kBarHeight};
}

}  // namespace kelui::controls
