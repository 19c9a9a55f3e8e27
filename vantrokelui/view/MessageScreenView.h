// The common body of the panel's message screens (no encoder, no sequence, storage full): the
// header row with the sign-out menu at the top of the column, and one description that ends a
// bottom margin above the screen's bottom. Each screen says its icon, how its name is set, its
// text and its height. Owned by the section that shows the screen; main thread.
//
//   NoAssetView::NoAssetView(std::shared_ptr<ShareForReviewViewModel> model)
//       : MessageScreenView(model, nullptr, {MakeSignOutItem(model)}, {text, 1}, 70.0f) {}
#pragma once

#include <memory>
#include <vector>

#include <boost/intrusive_ptr.hpp>

#include <kelcore/geom/PointT.h>
#include <kelcore/geom/RectT.h>
#include <kelcore/string/String.h>
#include <kelui/controls/UI_StaticText.h>
#include <kelui/ui/UI_PictureSupplyMessage.h>
#include <vantrokelui/view/MenuItem.h>
#include <vantrokelui/view/PopupBaseView.h>
#include <vantrokelui/view/WorkflowLabel.h>

namespace vantrokelui::view {

class MessageScreenView : public PopupBaseView {
public:
    ~MessageScreenView() override;

    /// Keeps `rect`; with a drawing supplier, puts the label at (15, 10) and the description
    /// across the column, a margin of 15 above the bottom. Without one, the children stay.
    void UI_SetLocalRectF(const kelcore::geom::RectT<float>& rect) override;
    /// 340 wide, as high as the screen said when it was made.
    kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring) override;

    // The parts, for tests and for screen readers' order.
    const boost::intrusive_ptr<WorkflowLabel>& GetWorkflowLabel() const { return workflowLabel; }
    const boost::intrusive_ptr<kelui::controls::UI_StaticText>& GetDescriptionText() const {
        return descriptionText;
    }

protected:
    /// The screen's message.
    struct Description {
        kelcore::string::string text;
        /// The lines it is given, 15 high each; 0 gives it as many as it wraps to at the
        /// column's width.
        int lines = 0;
    };

    /// Builds the label with `icon` (none: the name is set in italics, as a message) and
    /// `menu`, and the description, and shows itself. The screen sets the label's name.
    MessageScreenView(std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel,
                      const kelui::ui::ImageSupplyFunction& icon, const std::vector<MenuItem>& menu,
                      const Description& description, float height);

private:
    boost::intrusive_ptr<WorkflowLabel> workflowLabel;
    boost::intrusive_ptr<kelui::controls::UI_StaticText> descriptionText;
    int descriptionLines;
    float height;
};

}  // namespace vantrokelui::view
