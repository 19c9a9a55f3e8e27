#include <vantrokelui/view/UpdateContentView.h>

#include <utility>

#include <kelcore/config/Localizer.h>
#include <kelui/limner/FontDescription.h>
#include <kelui/ui/UI_NodeManager.h>
#include <kelui/ui/UI_WeakNodePtr.h>
#include <vantrokelui/model/ShareModel.h>
#include <vantrokelui/utility/SDMLogging.h>

namespace vantrokelui::view {

using kelcore::geom::RectT;

namespace {

constexpr float kColumnLeft = 15.0f;
constexpr float kColumnWidth = 310.0f;
constexpr float kTextTop = 10.0f;
constexpr float kButtonGap = 10.0f;
constexpr float kButtonHeight = 20.0f;

}  // namespace

UpdateContentView::UpdateContentView(std::shared_ptr<viewmodel::ShareForReviewViewModel> model)
    : notifyingText(new kelui::controls::UI_StaticText),
      updateButton(new kelui::controls::UI_TextButton),
      viewModel(std::move(model)) {
    const auto& localizer = kelcore::config::Localizer::Get();
    notifyingText->SetMultiLine(true);
    notifyingText->SetText(localizer.GetString(
        "$$$/Corvane/vantrokelui/view/VantroShare/UpdateContentView/NotifyingText=You made "
        "changes since this sequence was last shared"));
    notifyingText->UI_Show(true);
    ChildPushBack(notifyingText);

    updateButton->SetText(localizer.GetString(
        "$$$/Corvane/vantrokelui/view/VantroShare/UpdateContentView/UpdateContentButton=Update "
        "shared content"));
    updateButton->UI_Show(true);
    const kelui::ui::UI_WeakNodePtr<UpdateContentView> weakSelf(this);
    updateButton->NotifyWhenChanged([weakSelf] {
        if (const auto self = weakSelf.Lock()) {
            self->OnUpdateClicked();
        }
    });
    ChildPushBack(updateButton);
}

UpdateContentView::~UpdateContentView() = default;

void UpdateContentView::OnUpdateClicked() {
    utility::SDMLogging::LogShareStart(utility::SDMLogging::ShareStartKind::UpdateContent);
    model::ProcessAssetForReview();
}

float UpdateContentView::GetTextHeight() const {
    const auto supplier = notifyingText->UI_GetDrawSupplierOrDefault();
    limner::FontDescription face = notifyingText->GetFontDescription();
    face.family = limner::ValidateFontName(face.family);
    return supplier->GetFont(face)->GetWrappedTextHeight(notifyingText->GetText(), kColumnWidth,
                                                         -1);
}

void UpdateContentView::UI_SetLocalRectF(const RectT<float>& rect) {
    UI_SubView::UI_SetLocalRectF(rect);
    const float textHeight = GetTextHeight();
    notifyingText->UI_SetLocalRectF({kColumnLeft, kTextTop, kColumnWidth, textHeight});
    updateButton->UI_SetLocalRectF(
        {kColumnLeft, textHeight + kTextTop + kButtonGap, kColumnWidth, kButtonHeight});
}

}  // namespace vantrokelui::view
