// The header row at the top of every screen: "Share for review:" in bold, the asset's icon, the
// sequence's name (cut at its end when long, italic when there is no icon) and, when the screen
// has any, a "more" menu at the right. Always 310 wide and 20 high. Owned by its screen; main
// thread.
//
//   boost::intrusive_ptr<WorkflowLabel> label(new WorkflowLabel(
//       viewModel->GetAssetTypeIcon(), GetPreShowMenuFunction(), GetPostShowMenuFunction(),
//       {MakeSignOutItem(viewModel)}));
//   label->SetName(u"Sequence 1");
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include <boost/intrusive_ptr.hpp>

#include <kelui/controls/UI_PicturePopup.h>
#include <kelui/controls/UI_StaticText.h>
#include <kelui/ui/ConstMessage.h>
#include <kelui/ui/UI_SubView.h>
#include <vantrokelui/sharedui/SizedStaticImage.h>
#include <vantrokelui/view/MenuItem.h>

namespace vantrokelui::view {

class WorkflowLabel final : public kelui::ui::UI_SubView {
public:
    using PopupFunction = std::function<void(kelui::controls::UI_Popup&)>;

    WorkflowLabel(const std::shared_ptr<std::function<void(kelui::ui::ConstMessage*)>>& icon,
                  PopupFunction preShow, PopupFunction postShow,
                  const std::vector<MenuItem>& items);

    /// Places title, icon, name and menu; does nothing until the label has a drawing supplier.
    void UI_SetLocalRectF(const kelcore::geom::RectT<float>& rect) override;
    /// Always (310, 20).
    kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring) override;

    /// Shows `name` as the sequence's name.
    void SetName(const kelcore::string::string& name);

    static constexpr float kTitleMaxWidth = 155.0f;

    // The parts, for the screens' tests and for screen readers' order.
    const boost::intrusive_ptr<sharedui::SizedStaticImage>& GetIconImage() const {
        return iconImage;
    }
    const boost::intrusive_ptr<kelui::controls::UI_StaticText>& GetNameText() const {
        return nameText;
    }
    const boost::intrusive_ptr<kelui::controls::UI_StaticText>& GetTitleText() const {
        return titleText;
    }
    const boost::intrusive_ptr<kelui::controls::UI_PicturePopup>& GetMenuPopup() const {
        return menuPopup;
    }

private:
    void OnMenuCommand();

    boost::intrusive_ptr<sharedui::SizedStaticImage> iconImage;
    boost::intrusive_ptr<kelui::controls::UI_StaticText> nameText;
    boost::intrusive_ptr<kelui::controls::UI_StaticText> titleText;
    boost::intrusive_ptr<kelui::controls::UI_PicturePopup> menuPopup;
    std::vector<MenuItem> menuItems;
};

}  // namespace vantrokelui::view
