// The row that offers the review link: the link itself (cut at its end when long, opening the
// review page when clicked) and a "Copy link" button that puts it on the clipboard and says so
// with a toast. Reads the link once, when it is made: the row is remade with the screen that
// holds it. Owned by that screen (the end screen or the progress screen); main thread.
//
//   boost::intrusive_ptr<CopyLinkSection> row(new CopyLinkSection(viewModel));
//   ChildPushBack(row);
//   row->UI_SetLocalRectF({15.0f, y, 310.0f, 20.0f});
#pragma once

#include <memory>

#include <boost/intrusive_ptr.hpp>

#include <kelcore/geom/PointT.h>
#include <kelcore/geom/RectT.h>
#include <kelui/controls/UI_HotTextURL.h>
#include <kelui/controls/UI_PictureButton.h>
#include <kelui/controls/UI_PictureTextButton.h>
#include <kelui/ui/UI_SubView.h>
#include <vantrokelui/viewmodel/ShareForReviewViewModel.h>

namespace vantrokelui::view {

class CopyLinkSection final : public kelui::ui::UI_SubView {
public:
    /// The widest the link may be, so that it never runs into the Copy button.
    static constexpr float kMaxLinkWidth = 196.0f;
    /// The Copy button's width, at the row's right end.
    static constexpr float kCopyButtonWidth = 86.0f;

    /// Makes the link from the view model's ReviewLinkURL of this moment, and the Copy button;
    /// shows both and itself.
    explicit CopyLinkSection(std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel);
    ~CopyLinkSection() override;

    /// Places the link at the left, as wide as its text up to kMaxLinkWidth, and the Copy
    /// button at the right; does nothing to them until the row has a drawing supplier.
    void UI_SetLocalRectF(const kelcore::geom::RectT<float>& rect) override;
    /// Always (310, 20).
    kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring) override;

    // The parts, for tests and for screen readers' order.
    const boost::intrusive_ptr<kelui::controls::UI_PictureTextButton>& GetCopyButton() const {
        return copyButton;
    }
    const boost::intrusive_ptr<kelui::controls::UI_HotTextURL>& GetLinkText() const {
        return linkText;
    }

private:
    /// Reports the copy, puts the link on the clipboard and shows the "Copied" toast. A
    /// clipboard that refuses the text is not noticed: the toast shows all the same.
    void OnCopyLink();
    /// Opens the location's settings page in the browser. The row offers no control for it.
    void OnOpenSettings();

    std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel;
    boost::intrusive_ptr<kelui::controls::UI_PictureTextButton> copyButton;
    // Made with the row and never shown: the row has no settings link.
    boost::intrusive_ptr<kelui::controls::UI_PictureButton> settingsButton;
    boost::intrusive_ptr<kelui::controls::UI_HotTextURL> linkText;
};

}  // namespace vantrokelui::view
