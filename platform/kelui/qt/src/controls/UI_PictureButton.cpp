#include <kelui/controls/UI_PictureButton.h>

#include <algorithm>
#include <cmath>

#include <QFontMetricsF>
#include <QToolTip>

#include <kelui/ui/QtConversions.h>

namespace kelui::controls {

namespace {
constexpr float kPadding = 4.0f;
// Longer names wrap in their tooltip.
constexpr float kMaximumToolTipWidth = 300.0f;
}  // namespace

kelcore::geom::PointT<float> UI_PictureButton::UI_GetRecommendedSize(
    limner::Limner& /*measuring*/) {
    const auto picture = GetButtonImage();
    const float width = picture ? std::ceil(picture->GetWidth()) : 0.0f;
    const float height = picture ? std::ceil(picture->GetHeight()) : 0.0f;
    return {width + 2.0f * kPadding, height + 2.0f * kPadding};
}

void UI_PictureButton::TextFaceChanged() {
    UI_Button::TextFaceChanged();
    // The text is the tooltip until the owner gives the button one of its own.
    const kelcore::string::string current = UI_GetToolTip();
    if (current.empty() || current == textToolTip) {
        textToolTip = GetText();
        // A tooltip is as wide as it is told: a short name gets a snug one.
        const float width = static_cast<float>(std::ceil(
            QFontMetricsF(QToolTip::font()).horizontalAdvance(ui::ToQString(textToolTip))));
        UI_SetToolTip(textToolTip, std::min(width + 1.0f, kMaximumToolTipWidth));
    }
}

}  // namespace kelui::controls
