// The strip on the end screen that offers to replace what was shared: a note that the sequence
// changed since its last share and an "Update shared content" button, which shares the sequence
// again as a new version under the same link, to the stored location with the stored preset.
// Owned by the end screen, which shows it only while the sequence is modified and sizes it from
// GetTextHeight. Main thread.
//
//   boost::intrusive_ptr<UpdateContentView> update(new UpdateContentView(viewModel));
//   update->UI_SetLocalRectF({0.0f, y, 340.0f, update->GetTextHeight() + 38.0f});
#pragma once

#include <memory>

#include <boost/intrusive_ptr.hpp>

#include <kelcore/geom/RectT.h>
#include <kelui/controls/UI_StaticText.h>
#include <kelui/controls/UI_TextButton.h>
#include <kelui/ui/UI_SubView.h>
#include <vantrokelui/viewmodel/ShareForReviewViewModel.h>

namespace vantrokelui::view {

class UpdateContentView final : public kelui::ui::UI_SubView {
public:
    /// Makes the note and the button, shown; the strip itself stays hidden until its owner
    /// shows it.
    explicit UpdateContentView(std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel);
    ~UpdateContentView() override;

    /// Places the note at (15, 10) across the 310-pixel column, as high as its wrapped text, and
    /// the button 10 pixels below it across the column, 20 high.
    void UI_SetLocalRectF(const kelcore::geom::RectT<float>& rect) override;

    /// The height of the note wrapped at 310 pixels, not rounded to whole pixels.
    float GetTextHeight() const;

    // The parts, for tests and for screen readers' order.
    const boost::intrusive_ptr<kelui::controls::UI_StaticText>& GetNotifyingText() const {
        return notifyingText;
    }
    const boost::intrusive_ptr<kelui::controls::UI_TextButton>& GetUpdateButton() const {
        return updateButton;
    }

private:
    /// Starts the new version: no storage check and no preset write, since an update keeps the
    /// location and the preset stored with the sequence.
    void OnUpdateClicked();

    boost::intrusive_ptr<kelui::controls::UI_StaticText> notifyingText;
    boost::intrusive_ptr<kelui::controls::UI_TextButton> updateButton;
    std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel;
};

}  // namespace vantrokelui::view
