#include <vantrokelui/view/ReviewInVantroView.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <utility>

#include <kelcore/config/Localizer.h>
#include <kelui/ui/MouseEvent.h>
#include <kelui/ui/UI_WeakNodePtr.h>
#include <kelui/ui/WeakNodeFunction.h>
#include <vantrokelui/model/EncoderPresetModel.h>
#include <vantrokelui/model/ShareModel.h>
#include <vantrokelui/nodes/VantroFolder.h>
#include <vantrokelui/nodes/VantroUser.h>
#include <vantrokelui/sharedui/Measuring.h>
#include <vantrokelui/utility/SDMLogging.h>
#include <vantrokelui/view/MenuItems.h>

namespace vantrokelui::view {

using kelcore::geom::PointT;
using kelcore::geom::RectT;
using kelcore::string::string;
using viewmodel::ShareForReviewViewModel;

namespace {

constexpr float kViewWidth = 340.0f;
constexpr float kColumnLeft = 15.0f;
constexpr float kColumnWidth = 310.0f;
constexpr float kColumnRight = kColumnLeft + kColumnWidth;
constexpr float kLabelTop = 10.0f;
constexpr float kGapBelowLabel = 12.0f;
constexpr float kRowGap = 13.0f;
constexpr float kLabelToLinkGap = 2.0f;
constexpr float kBottomMargin = 15.0f;

// The link's measure: path truncation keeps both the account and the folder in sight.
constexpr std::uint32_t kPathTruncation = 3;

string Localized(std::string_view key) {
    return kelcore::config::Localizer::Get().GetString(key);
}

}  // namespace

ReviewInVantroView::ReviewInVantroView(std::shared_ptr<ShareForReviewViewModel> model)
    : PopupBaseView(std::move(model)),
      workflowLabel(new WorkflowLabel(viewModel->GetAssetTypeIcon(), GetPreShowMenuFunction(),
                                      GetPostShowMenuFunction(), {MakeSignOutItem(viewModel)})),
      descriptionText(new kelui::controls::UI_StaticText),
      locationLabel(new kelui::controls::UI_StaticText),
      locationButton(new kelui::controls::UI_HotTextButton),
      presetPopup(new kelui::controls::UI_Popup),
      shareButton(new kelui::controls::UI_TextButton) {
    workflowLabel->UI_Show(true);
    {
        const kelui::ui::UI_WeakNodePtr<WorkflowLabel> weakLabel(workflowLabel);
        bindings.push_back(viewModel->AddActiveAssetNameBinding([weakLabel](const string& name) {
            if (const auto label = weakLabel.Lock()) {
                label->SetName(name);
            }
        }));
    }

    descriptionText->SetText(Localized(
        viewModel->GetCreateNewLinkMode()
            ? "$$$/Corvane/vantrokelui/view/VantroShare/ReviewInVantroView/LinkClearedText=You "
              "can only access the latest shared link for this sequence from Corvane. Go to "
              "Vantro to find all shared links."
            : "$$$/Corvane/vantrokelui/view/VantroShare/ReviewInVantroView/"
              "FeatureDescription=Export the current sequence and upload to the cloud for review "
              "in Vantro."));
    descriptionText->SetMultiLine(true);
    descriptionText->UI_Show(true);

    locationLabel->SetText(
        Localized("$$$/Corvane/vantrokelui/view/VantroShare/ReviewInVantroView/"
                  "Location=Location:"));
    locationLabel->UI_Show(true);

    const std::shared_ptr<VantroUser> user = viewModel->GetUser();
    bindings.push_back(user->AddSelectionPathBinding(
        kelui::ui::WeakNodeFunction(this, &ReviewInVantroView::OnLocationPathChanged)));

    locationButton->SetTextTruncation(kPathTruncation);
    locationButton->UI_Show(true);
    // Fixed for the life of this screen: a new choice of folder comes back through a new view.
    locationTarget = user->GetSelection() ? ShareForReviewViewID::SelectFolder
                                          : ShareForReviewViewID::SelectProject;
    SetClickNavigation(locationButton, locationTarget);
    locationButton->NotifyWhenChanged(
        kelui::ui::WeakNodeFunction(this, &ReviewInVantroView::OnLocationActivated));

    // Wide enough for the longest preset name, so that picking another never moves the popup.
    presetPopup->SetPickerMeasureStrategy(kelui::controls::UI_Popup::kMeasureWidestItem);
    presetPopup->SetButtonChromeType(kelui::controls::UI_Popup::kChromeBorderless);
    presetPopup->SetPreShowMenuCallback(GetPreShowMenuFunction());
    presetPopup->SetPostShowMenuCallback(GetPostShowMenuFunction());
    presetPopup->UI_Show(true);
    presetPopup->NotifyWhenChanged(
        kelui::ui::WeakNodeFunction(this, &ReviewInVantroView::OnPresetPicked));

    // The list first, then the choice in it: deliveries keep the order of the binds.
    bindings.push_back(viewModel->AddEncoderPresetsBinding(
        kelui::ui::WeakNodeFunction(this, &ReviewInVantroView::OnPresetsChanged)));
    bindings.push_back(viewModel->AddSelectedEncoderPresetBinding(
        kelui::ui::WeakNodeFunction(this, &ReviewInVantroView::OnSelectedPresetChanged)));

    shareButton->SetFontStyleName("Bold");
    shareButton->SetText(
        Localized("$$$/Corvane/vantrokelui/view/VantroShare/ReviewInVantroView/Share=Share"));
    shareButton->SetDisabled(false);
    shareButton->NotifyWhenChanged(
        kelui::ui::WeakNodeFunction(this, &ReviewInVantroView::OnShareClicked));
    shareButton->UI_Show(true);

    ChildPushBack(workflowLabel);
    ChildPushBack(descriptionText);
    ChildPushBack(locationLabel);
    ChildPushBack(locationButton);
    ChildPushBack(presetPopup);
    ChildPushBack(shareButton);
    UI_Show(true);
}

ReviewInVantroView::~ReviewInVantroView() = default;

void ReviewInVantroView::OnLocationPathChanged(const string& path) {
    if (viewModel->GetUser()->GetSelection()) {
        locationButton->SetText(path);
        locationButton->UI_SetToolTip(path, kToolTipWidth);
        shareButton->UI_SetEnabled(true);
        shareButton->UI_SetToolTip(string(), kToolTipWidth);
    } else {
        locationButton->SetText(
            Localized("$$$/Corvane/vantrokelui/view/VantroShare/ReviewInVantroView/"
                      "SelectVantroLocation=Select Vantro Location..."));
        locationButton->UI_SetToolTip(string(), kToolTipWidth);
        shareButton->UI_SetEnabled(false);
        shareButton->UI_SetToolTip(
            Localized("$$$/Corvane/vantrokelui/view/VantroShare/ReviewInVantroView/"
                      "SelectVantroLocationToShare=Select a Vantro location to share"),
            kToolTipWidth);
    }
    ApplyLayout();
}

void ReviewInVantroView::OnPresetsChanged(
    const utility::SharedPtrVector<EncoderPresetModel>& presets) {
    presetPopup->DeleteAllItems();
    for (const std::shared_ptr<EncoderPresetModel>& preset : presets) {
        presetPopup->AddItem(preset ? preset->GetPresetName() : string(), -1);
    }
    ApplyLayout();
}

void ReviewInVantroView::OnPresetPicked() {
    const utility::SharedPtrVector<EncoderPresetModel> presets = viewModel->GetEncoderPresets();
    const int index = presetPopup->GetValue();
    if (index >= 0 && static_cast<std::size_t>(index) < presets.size()) {
        viewModel->SetSelectedEncoderPreset(presets[static_cast<std::size_t>(index)]);
    }
}

void ReviewInVantroView::OnSelectedPresetChanged(
    const std::shared_ptr<EncoderPresetModel>& preset) {
    if (preset) {
        const utility::SharedPtrVector<EncoderPresetModel> presets = viewModel->GetEncoderPresets();
        const string path = preset->GetPresetPath();
        for (std::size_t index = 0; index < presets.size(); ++index) {
            // Matched by file, not by object: the list may have been rebuilt since the choice.
            if (presets[index] && presets[index]->GetPresetPath() == path) {
                presetPopup->SetValue(static_cast<int>(index));
                break;
            }
        }
    }
    ApplyLayout();
}

void ReviewInVantroView::OnShareClicked() {
    const bool newLink = viewModel->GetCreateNewLinkMode();
    utility::SDMLogging::LogShareStart(newLink ? utility::SDMLogging::ShareStartKind::NewLink
                                               : utility::SDMLogging::ShareStartKind::FirstShare);
    // The answer may come on the back end's executor, after this screen has gone: it reaches
    // only the view model, and only while the view model lives.
    const std::weak_ptr<ShareForReviewViewModel> weakModel(viewModel);
    viewModel->CheckStorageLimitOnSelectedAccount([weakModel](bool exceeded) {
        const std::shared_ptr<ShareForReviewViewModel> model = weakModel.lock();
        if (!model) {
            return;
        }
        if (exceeded) {
            model->SetCurrentViewID(ShareForReviewViewID::StorageLimitExceeded);
            return;
        }
        model->WriteSelectedEncoderPresetToSequence();
        model::ProcessAssetForReview();
    });
}

void ReviewInVantroView::OnLocationActivated() {
    const kelui::ui::MouseEvent press(kelui::ui::PointerEvent::kDown, 1, {0.0f, 0.0f}, 0);
    bool handled = false;
    OnNavigationClick(locationButton.get(), press, handled, locationTarget);
}

void ReviewInVantroView::ApplyLayout() {
    UI_SizeChanged(UI_GetLocalRectF());
}

ReviewInVantroView::PanelLayout ReviewInVantroView::ComputePanelLayout() const {
    PanelLayout layout;
    const float h0 = sharedui::GetRecommendedSize(workflowLabel).y;
    layout.workflowLabel = {kColumnLeft, kLabelTop, kColumnWidth, h0};

    const float y1 = h0 + kGapBelowLabel + kLabelTop;
    const float h1 = sharedui::MeasureTextHeight(descriptionText, kColumnWidth);
    layout.descriptionText = {kColumnLeft, y1, kColumnWidth, h1};

    const float y2 = y1 + h1 + kRowGap;
    const PointT<float> label = sharedui::GetRecommendedSize(locationLabel);
    layout.locationLabel = {kColumnLeft, y2, label.x, label.y};
    layout.locationButton = {label.x + kColumnLeft + kLabelToLinkGap, y2,
                             kColumnWidth - label.x - kLabelToLinkGap, label.y};

    const float y3 = y2 + label.y + kRowGap;
    const PointT<float> popup = sharedui::GetRecommendedSize(presetPopup);
    layout.presetPopup = {kColumnLeft, y3, popup.x, popup.y};

    const PointT<float> share = sharedui::GetRecommendedSize(shareButton);
    layout.shareButton = {kColumnRight - share.x, y3, share.x, share.y};

    layout.recommendedSize = {kViewWidth, y3 + share.y + kBottomMargin};
    return layout;
}

PointT<float> ReviewInVantroView::UI_GetRecommendedSize(limner::Limner& /*measuring*/) {
    return ComputePanelLayout().recommendedSize;
}

void ReviewInVantroView::UI_SizeChanged(const RectT<float>& rect) {
    PopupBaseView::UI_SizeChanged(rect);
    const PanelLayout layout = ComputePanelLayout();
    descriptionText->UI_SetLocalRectF(layout.descriptionText);
    locationLabel->UI_SetLocalRectF(layout.locationLabel);
    locationButton->UI_SetLocalRectF(layout.locationButton);
    shareButton->UI_SetLocalRectF(layout.shareButton);
    presetPopup->UI_SetLocalRectF(layout.presetPopup);
    workflowLabel->UI_SetLocalRectF(layout.workflowLabel);
}

}  // namespace vantrokelui::view
