// The top of the folder step: the project's name in bold over its workspace's name, a chevron
// and the project icon. It is also the way back: a primary-button press moves the panel to the
// project step, and it highlights while the pointer is over it. Owned by the folder step
// (boost::intrusive_ptr); it holds CurrentViewID only weakly. Main thread.
//
//   header->SetNames(u"Promo", u"Team");
//   header->UI_SetLocalRectF({0, 0, 340, 50});
#pragma once

#include <memory>

#include <boost/intrusive_ptr.hpp>

#include <kelcore/geom/PointT.h>
#include <kelcore/geom/RectT.h>
#include <kelcore/string/String.h>
#include <kelui/controls/UI_ControlView.h>
#include <kelui/controls/UI_StaticImage.h>
#include <kelui/controls/UI_StaticText.h>
#include <kelui/ui/PointerEvent.h>
#include <vantrokelui/utility/CurrentViewIDNotifyingProperty.h>

namespace vantrokelui::view {

class FolderPickerHeaderView final : public kelui::controls::UI_ControlView {
public:
    /// A header whose press writes 2 (the project step) into `currentViewID`; it does nothing
    /// once that property has gone.
    explicit FolderPickerHeaderView(std::weak_ptr<CurrentViewIDNotifyingProperty> currentViewID);
    ~FolderPickerHeaderView() override;

    /// Shows `projectName` and `workspaceName`, both texts shown, and lays out again.
    void SetNames(kelcore::string::string_view projectName,
                  kelcore::string::string_view workspaceName);

    /// Whether the pointer is over the header.
    bool IsHovered() const { return hovered; }

    const boost::intrusive_ptr<kelui::controls::UI_StaticText>& GetProjectText() const {
        return projectText;
    }
    const boost::intrusive_ptr<kelui::controls::UI_StaticText>& GetWorkspaceText() const {
        return workspaceText;
    }
    const boost::intrusive_ptr<kelui::controls::UI_StaticImage>& GetChevron() const {
        return chevron;
    }
    const boost::intrusive_ptr<kelui::controls::UI_StaticImage>& GetProjectIcon() const {
        return projectIcon;
    }

    /// (310, 20).
    kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring) override;
    /// Places chevron, icon and the two texts inside the new rectangle.
    void UI_SetLocalRectF(const kelcore::geom::RectT<float>& rect) override;
    /// The hover highlight; the children draw themselves.
    void UI_Draw(limner::Limner& limner) override;
    /// Enter and leave toggle the highlight; a primary press goes back to the project step.
    /// Always false, so the event goes on.
    bool UI_DoPointerEvent(const kelui::ui::PointerEvent& event) override;

private:
    void SetHovered(bool hover);
    void LayOut();

    boost::intrusive_ptr<kelui::controls::UI_StaticText> projectText;
    boost::intrusive_ptr<kelui::controls::UI_StaticText> workspaceText;
    boost::intrusive_ptr<kelui::controls::UI_StaticImage> chevron;
    boost::intrusive_ptr<kelui::controls::UI_StaticImage> projectIcon;
    bool hovered = false;
    std::weak_ptr<CurrentViewIDNotifyingProperty> currentViewID;
};

}  // namespace vantrokelui::view
