#include <vantrokelui/view/FolderPickerHeaderView.h>

#include <optional>
#include <utility>

#include <QWidget>

#include <kelui/limner/Path.h>
#include <kelui/limner/WidgetDrawingSupplier.h>
#include <kelui/skins/Theme.h>
#include <kelui/ui/UI_NodeManager.h>
#include <kelui/utils/FormRoundedRect.h>
#include <vantrokelui/sharedui/Measuring.h>
#include <vantrokelui/sharedui/ResourceManager.h>
#include <vantrokelui/viewmodel/ShareForReviewViewID.h>

namespace vantrokelui::view {

namespace {

using kelcore::geom::PointT;
using kelcore::geom::RectT;

kelui::skins::Theme ThemeOf(const kelui::ui::UI_Node& node) {
    const auto supplier = node.UI_GetDrawSupplierOrDefault();
    return supplier ? supplier->GetTheme() : kelui::skins::Theme{};
}

// The children only show; presses anywhere on the header belong to the header itself.
void LetPointerThrough(kelui::ui::UI_Node& node) {
    node.GetWidget()->setAttribute(Qt::WA_TransparentForMouseEvents, true);
}

}  // namespace

FolderPickerHeaderView::FolderPickerHeaderView(
    std::weak_ptr<CurrentViewIDNotifyingProperty> currentViewID_)
    : projectText(new kelui::controls::UI_StaticText),
      workspaceText(new kelui::controls::UI_StaticText),
      chevron(new kelui::controls::UI_StaticImage),
      projectIcon(new kelui::controls::UI_StaticImage),
      currentViewID(std::move(currentViewID_)) {
    projectText->SetFontStyleName("Bold");
    projectText->SetTextAlignment(limner::TextAlignment::Left);
    projectText->SetTextTruncation(static_cast<std::uint32_t>(limner::TextTruncation::End));
    workspaceText->SetTextAlignment(limner::TextAlignment::Left);
    workspaceText->SetTextTruncation(static_cast<std::uint32_t>(limner::TextTruncation::End));
    chevron->SetImageSupplyFunction(sharedui::BindImageSupplyFunction(
        kelui::skins::IsRunningV7OrBeyond() ? "S_ChevronLeft_18" : "S_Chevron_Left_6x8",
        &sharedui::GetResourceManager));
    projectIcon->SetImageSupplyFunction(
        sharedui::BindImageSupplyFunction("S_VantroProjectName_16", &sharedui::GetResourceManager));
    for (kelui::ui::UI_Node* child : {static_cast<kelui::ui::UI_Node*>(chevron.get()),
                                      static_cast<kelui::ui::UI_Node*>(projectIcon.get()),
                                      static_cast<kelui::ui::UI_Node*>(projectText.get()),
                                      static_cast<kelui::ui::UI_Node*>(workspaceText.get())}) {
        LetPointerThrough(*child);
        child->UI_Show(true);
    }
    // Both texts stay hidden until a project is known, so the header never shows stale names.
    projectText->UI_Show(false);
    workspaceText->UI_Show(false);
    ChildPushBack(chevron);
    ChildPushBack(projectIcon);
    ChildPushBack(projectText);
    ChildPushBack(workspaceText);
    GetWidget()->setCursor(Qt::PointingHandCursor);
    UI_Show(true);
}

FolderPickerHeaderView::~FolderPickerHeaderView() = default;

void FolderPickerHeaderView::SetNames(kelcore::string::string_view projectName,
                                      kelcore::string::string_view workspaceName) {
    projectText->SetText(projectName);
    workspaceText->SetText(workspaceName);
    projectText->UI_Show(true);
    workspaceText->UI_Show(true);
    SetAccessibleName(kelcore::string::string(projectName));
    LayOut();
}

PointT<float> FolderPickerHeaderView::UI_GetRecommendedSize(limner::Limner& /*measuring*/) {
    return {310.0f, 20.0f};
}

void FolderPickerHeaderView::UI_SetLocalRectF(const RectT<float>& rect) {
    UI_ControlView::UI_SetLocalRectF(rect);
    LayOut();
}

void FolderPickerHeaderView::LayOut() {
    // Children sit in the header's own coordinates.
    const RectT<float> bounds = UI_GetLocalRectF();
    const float x = 0.0f;
    const float w = bounds.width;
    const float h = bounds.height;
    const bool newSkin = kelui::skins::IsRunningV7OrBeyond();

    const float cx = x + (newSkin ? 14.0f : 7.0f);
    const float ch = newSkin ? 19.0f : 9.0f;
    // The chevron keeps its artwork's own size (18 x 18, or 6 x 8 on the older skin): the
    // picture is scaled into its rectangle, and anything smaller squashes it out of sight.
    const PointT<float> chevronSize =
        newSkin ? PointT<float>{18.0f, 18.0f} : PointT<float>{6.0f, 8.0f};
    chevron->UI_SetLocalRectF({cx, (h - ch) / 2.0f, chevronSize.x, chevronSize.y});

    const float ix = cx + 16.13f;
    projectIcon->UI_SetLocalRectF({ix, (h - 13.12f) / 2.0f, 13.29f, 13.12f});

    const float tx = ix + 17.88f;
    const float h1 = sharedui::GetRecommendedSize(projectText).y;
    const float h2 =
        workspaceText->UI_IsViewVisible() ? sharedui::GetRecommendedSize(workspaceText).y : 0.0f;
    const float ty = (h - h1 - 2.0f - h2) / 2.0f;
    projectText->UI_SetLocalRectF({tx, ty, w - tx, h1});
    workspaceText->UI_SetLocalRectF({tx, ty + h1, w - tx, h2});
}

void FolderPickerHeaderView::UI_Draw(limner::Limner& limner) {
    if (!hovered) {
        return;
    }
    const RectT<float> bounds = UI_GetLocalRectF();
    limner::Path path;
    kelui::utils::FormRoundedRect(path, {0.0f, 0.0f, bounds.width, bounds.height}, 2.0f);
    limner.FillPath(path, kelui::skins::GetPaletteGrayColor(ThemeOf(*this), 4));
}

bool FolderPickerHeaderView::UI_DoPointerEvent(const kelui::ui::PointerEvent& event) {
    switch (event.GetAction()) {
        case kelui::ui::PointerEvent::kEnter:
            SetHovered(true);
            break;
        case kelui::ui::PointerEvent::kLeave:
            SetHovered(false);
            break;
        case kelui::ui::PointerEvent::kDown:
            if (event.GetButton() == 1) {
                if (const auto property = currentViewID.lock()) {
                    property->SetCurrentViewID(ShareForReviewViewID::SelectProject);
                }
            }
            break;
        default:
            break;
    }
    return false;
}

void FolderPickerHeaderView::SetHovered(bool hover) {
    if (hovered == hover) {
        return;
    }
    hovered = hover;
    const std::optional<limner::ColorRGBA> color =
        hovered ? std::optional(kelui::skins::GetPaletteGrayColor(ThemeOf(*this), 9))
                : std::nullopt;
    projectText->SetTextColor(color);
    workspaceText->SetTextColor(color);
    UI_Invalidate();
}

}  // namespace vantrokelui::view
