#include <kelui/controls/UI_PicturePopup.h>

#include <algorithm>

#include <QPoint>
#include <QWidget>

#include <kelcore/config/Localizer.h>

namespace kelui::controls {

using kelcore::geom::PointT;
using kelcore::geom::RectT;

namespace {
constexpr float kPictureButtonSize = 18.0f;
}

PointT<float> UI_PicturePopup::UI_GetRecommendedSize(limner::Limner& /*measuring*/) {
    return {kPictureButtonSize, kPictureButtonSize};
}

void UI_PicturePopup::UI_Draw(limner::Limner& limner) {
    const skins::Theme theme = GetTheme();
    DrawChrome(limner, theme, true);
    const auto picture = GetSuppliedPicture();
    if (!picture || picture->GetWidth() <= 0.0f || picture->GetHeight() <= 0.0f) {
        return;
    }
    const RectT<float> bounds = UI_GetLocalRectF();
    const float scale =
        std::min({1.0f, bounds.width / picture->GetWidth(), bounds.height / picture->GetHeight()});
    const float width = picture->GetWidth() * scale;
    const float height = picture->GetHeight() * scale;
    limner.DrawImage(
        *picture, {(bounds.width - width) / 2.0f, (bounds.height - height) / 2.0f, width, height},
        UI_IsEnabled() ? 1.0f : 0.4f);
}

QPoint UI_PicturePopup::GetMenuPosition(int menuWidth) const {
    const QWidget* widget = GetWidget();
    return widget->mapToGlobal(QPoint(widget->width() - menuWidth, widget->height()));
}

kelcore::string::string UI_PicturePopup::GetFallbackAccessibleName() const {
    return kelcore::config::Localizer::Get().GetString(
        "$$$/Corvane/kelui/controls/UI_PicturePopup/More=More");
}

}  // namespace kelui::controls
