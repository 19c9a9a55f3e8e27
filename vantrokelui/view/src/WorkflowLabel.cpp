#include <vantrokelui/view/WorkflowLabel.h>

#include <algorithm>

#include <kelcore/config/Localizer.h>
#include <vantrokelui/sharedui/ResourceManager.h>

namespace vantrokelui::view {

using kelcore::geom::PointT;
using kelcore::geom::RectT;

WorkflowLabel::WorkflowLabel(
    const std::shared_ptr<std::function<void(kelui::ui::ConstMessage*)>>& icon,
    PopupFunction preShow, PopupFunction postShow, const std::vector<MenuItem>& items)
    : iconImage(new sharedui::SizedStaticImage),
      nameText(new kelui::controls::UI_StaticText),
      titleText(new kelui::controls::UI_StaticText),
      menuPopup(new kelui::controls::UI_PicturePopup),
      menuItems(items) {
    titleText->SetFontStyleName("Bold");
    titleText->SetText(kelcore::config::Localizer::Get().GetString(
        "$$$/Corvane/vantrokelui/view/VantroShare/ReviewInVantroView/ShareForReview=Share for "
        "review:"));
    titleText->UI_Show(true);
    ChildPushBack(titleText);

    nameText->SetTextTruncation(2);
    nameText->UI_Show(true);
    if (!icon) {
        nameText->SetFontStyleName("Italic");
    }
    ChildPushBack(nameText);

    iconImage->SetImageSupplyFunction(icon);
    iconImage->UI_Show(icon != nullptr);
    ChildPushBack(iconImage);

    menuPopup->SetButtonChromeType(10);
    menuPopup->SetImageSupplyFunction(
        sharedui::BindImageSupplyFunction("MoreSmallList_18", &sharedui::GetResourceManager));
    for (std::size_t index = 0; index < menuItems.size(); ++index) {
        menuPopup->AddItem(menuItems[index].label, -1);
        menuPopup->DisableItem(static_cast<int>(index), !menuItems[index].enabled);
    }
    menuPopup->UI_Show(!menuItems.empty());
    ChildPushBack(menuPopup);
    // The popup lives in this label's child list, so the label outlives its notifications.
    menuPopup->NotifyWhenChanged([this] { OnMenuCommand(); });
    menuPopup->SetPreShowMenuCallback(std::move(preShow));
    menuPopup->SetPostShowMenuCallback(std::move(postShow));
}

void WorkflowLabel::OnMenuCommand() {
    const int index = menuPopup->GetValue();
    if (index >= 0 && static_cast<std::size_t>(index) < menuItems.size()) {
        const MenuItem item = menuItems[static_cast<std::size_t>(index)];
        if (item.action) {
            item.action();
        }
    }
    // The menu never rests on an entry: every choice is a command.
    menuPopup->SetValue(-1);
}

PointT<float> WorkflowLabel::UI_GetRecommendedSize(limner::Limner& /*measuring*/) {
    return {310.0f, 20.0f};
}

void WorkflowLabel::UI_SetLocalRectF(const RectT<float>& rect) {
    UI_SubView::UI_SetLocalRectF(rect);
    const auto supplier = UI_GetDrawSupplier();
    if (!supplier) {
        return;
    }
    const auto measuring = supplier->GetMeasuringLimner();
    const float titleWidth =
        std::min(titleText->UI_GetRecommendedSize(*measuring).x, kTitleMaxWidth);
    titleText->UI_SetLocalRectF({0.0f, 2.5f, titleWidth, 14.0f});
    float x = titleWidth + 8.0f;
    iconImage->UI_SetLocalRectF({x, 1.0f, 14.0f, 14.0f});
    if (iconImage->UI_IsShown()) {
        x += 20.0f;
    }
    menuPopup->UI_SetLocalRectF({292.0f, 1.0f, 18.0f, 18.0f});
    const float menuRoom = menuPopup->UI_IsShown() ? 26.0f : 0.0f;
    nameText->UI_SetLocalRectF({x, 2.5f, 310.0f - x - menuRoom, 14.0f});
}

void WorkflowLabel::SetName(const kelcore::string::string& name) {
    nameText->SetValue(name);
    UI_Invalidate();
}

}  // namespace vantrokelui::view
