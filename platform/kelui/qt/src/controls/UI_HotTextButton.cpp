#include <kelui/controls/UI_HotTextButton.h>

#include <kelui/ui/QtConversions.h>

#include "controls/ButtonLook.h"
#include "controls/LinkText.h"

namespace kelui::controls {

namespace {

detail::LinkTextLayout LayOut(const UI_HotTextButton& button) {
    const kelcore::geom::RectT<float> local = button.UI_GetLocalRectF();
    return detail::LayoutLinkText(ui::ToQString(button.GetText()), button.GetFontDescription(),
                                  {0.0f, 0.0f, local.width, local.height},
                                  button.GetTextAlignment(), button.GetTextTruncation());
}

}  // namespace

UI_HotTextButton::UI_HotTextButton() {
    SetPointingCursor(true);
}

kelcore::string::string UI_HotTextButton::GetDisplayedText() const {
    return ui::FromQString(LayOut(*this).shown);
}

kelcore::geom::PointT<float> UI_HotTextButton::UI_GetRecommendedSize(limner::Limner& measuring) {
    return detail::GetLinkRecommendedSize(measuring, GetText(), GetFontDescription());
}

void UI_HotTextButton::DrawChrome(limner::Limner& limner, const DrawState& state) {
    if (state.focused) {
        const kelcore::geom::RectT<float> local = UI_GetLocalRectF();
        detail::DrawLinkFocusRing(limner, LayOut(*this), {0.0f, 0.0f, local.width, local.height},
                                  detail::GetFocusRingColor(state.theme));
    }
}

void UI_HotTextButton::DrawContent(limner::Limner& limner, const DrawState& state,
                                   const limner::ColorRGBA& textColor) {
    detail::DrawLinkText(limner, LayOut(*this), GetFontDescription(), textColor,
                         state.enabled && state.hovered);
}

bool UI_HotTextButton::IsOnClickablePart(kelcore::geom::PointT<float> point) {
    return detail::IsOnLinkText(LayOut(*this), point);
}

limner::ColorRGBA UI_HotTextButton::GetContentColor(const DrawState& state) const {
    if (!state.enabled) {
        return state.theme.disabledText;
    }
    if (const auto custom = GetCustomThemeColor(kTextColorID)) {
        return *custom;
    }
    return GetTextColor().value_or(state.theme.link);
}

}  // namespace kelui::controls
