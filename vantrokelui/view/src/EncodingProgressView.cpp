#include <vantrokelui/view/EncodingProgressView.h>

#include <algorithm>
#include <array>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string_view>
#include <utility>

#include <kelcore/config/Localizer.h>
#include <kelcore/string/String.h>
#include <kelui/skins/Theme.h>
#include <kelui/ui/UI_NodeManager.h>
#include <vantrokelui/model/ShareModel.h>
#include <vantrokelui/sharedui/Measuring.h>

#include <kelui/ui/WeakNodeFunction.h>

#include "ScreenLayout.h"

namespace vantrokelui::view {

using kelcore::geom::PointT;
using kelcore::geom::RectT;
using kelcore::string::string;

namespace {

using detail::kBottomMargin;
using detail::kColumnLeft;
using detail::kColumnRight;
using detail::kColumnWidth;
using detail::kViewWidth;

constexpr float kViewHeight = 149.0f;
// From the label's top to the link row: the label's top margin and the gap under it.
constexpr float kGapBelowLabel = 20.0f;
constexpr float kGapBelowLink = 10.0f;
constexpr float kSpeedToTimeGap = 10.0f;
constexpr float kGapAboveBar = 4.0f;
constexpr float kClassicBarHeight = 12.0f;
// Cancel stands one pixel in from the column's right edge.
constexpr float kCancelInset = 1.0f;

// Custom theme colour of the bar's track.
constexpr std::uint32_t kTrackColorID = 5000061;

constexpr std::string_view kHoursMinutesSecondsLeft =
    "$$$/Corvane/vantrokelui/view/VantroShare/EncodingProgressView/"
    "ProcessingRemainingTimeInHourMinutesSeconds=@0 hr @1 mins @2 secs left";
constexpr std::string_view kMinutesSecondsLeft =
    "$$$/Corvane/vantrokelui/view/VantroShare/EncodingProgressView/"
    "ProcessingRemainingTimeInMinutesSeconds=@0 mins @1 secs left";
constexpr std::string_view kSecondsLeft =
    "$$$/Corvane/vantrokelui/view/VantroShare/EncodingProgressView/"
    "ProcessingRemainingTimeInSeconds=@0 secs left";
constexpr std::string_view kUploadingSpeed =
    "$$$/Corvane/vantrokelui/view/VantroShare/EncodingProgressView/UploadingSpeed=@0 Mbps";

string Localized(std::string_view key) {
    return kelcore::config::Localizer::Get().GetString(key);
}

// Values this close to 0 come from estimators that have nothing to say yet.
bool IsZero(double value) {
    return std::fabs(value) <= DBL_EPSILON;
}

string PrintUnsigned(unsigned value) {
    std::array<char, 16> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%u", value);
    return kelcore::string::StdToUTF16String(buffer.data());
}

string PrintInt(int value) {
    std::array<char, 16> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%i", value);
    return kelcore::string::StdToUTF16String(buffer.data());
}

string StatusTextFor(ShareForReviewViewID id) {
    switch (id) {
        case ShareForReviewViewID::EncodingQueued:
            return Localized(
                "$$$/Corvane/vantrokelui/view/VantroShare/EncodingProgressView/"
                "QueuedinSarvex=Queued in Sarvex");
        case ShareForReviewViewID::EncodingProgress:
            return Localized(
                "$$$/Corvane/vantrokelui/view/VantroShare/EncodingProgressView/"
                "EncodingInProgress=Encoding in Progress...");
        case ShareForReviewViewID::UploadProgress:
            return Localized(
                "$$$/Corvane/vantrokelui/view/VantroShare/EncodingProgressView/"
                "UploadInProgress=Upload in Progress...");
        default:
            return {};
    }
}

std::shared_ptr<limner::WidgetDrawingSupplier> SupplierOf(const kelui::ui::UI_Node& node) {
    return node.UI_GetDrawSupplierOrDefault();
}

}  // namespace

EncodingProgressView::EncodingProgressView(
    std::shared_ptr<viewmodel::ShareForReviewViewModel> model)
    : PopupBaseView(std::move(model)),
      workflowLabel(new WorkflowLabel(viewModel->GetAssetTypeIcon(), GetPreShowMenuFunction(),
                                      GetPostShowMenuFunction(), {})),
      copyLinkSection(new CopyLinkSection(viewModel)),
      statusText(new kelui::controls::UI_StaticText),
      speedText(new kelui::controls::UI_StaticText),
      timeLeftText(new kelui::controls::UI_StaticText),
      progressBar(new kelui::controls::UI_ProgressBar),
      cancelButton(new kelui::controls::UI_TextButton) {
    workflowLabel->UI_Show(true);
    copyLinkSection->UI_Show(true);
    ChildPushBack(workflowLabel);
    ChildPushBack(copyLinkSection);
    bindings.push_back(viewModel->AddActiveAssetNameBinding(
        kelui::ui::WeakNodeFunction(workflowLabel.get(), &WorkflowLabel::SetName)));

    const string status = StatusTextFor(viewModel->GetCurrentViewID());
    statusText->SetText(status);
    statusText->UI_Show(true);
    speedText->UI_Show(true);
    timeLeftText->UI_Show(true);
    ChildPushBack(statusText);
    ChildPushBack(speedText);
    ChildPushBack(timeLeftText);

    if (!kelui::skins::IsRunningV7OrBeyond()) {
        progressBar->SetCustomThemeColor(
            kTrackColorID, kelui::skins::GetPaletteGrayColor(SupplierOf(*this)->GetTheme(), 0));
    }
    // The bar shows no text of its own: screen readers hear the stage as its name.
    progressBar->SetAccessibleName(status);
    // The toolkit's bar recommends the size it has, so it starts at the classic height rather
    // than at none.
    progressBar->UI_SetLocalRectF({kColumnLeft, 0.0f, kColumnWidth, kClassicBarHeight});
    progressBar->UI_Show(true);
    ChildPushBack(progressBar);

    cancelButton->SetText(Localized(
        "$$$/Corvane/vantrokelui/view/VantroShare/EncodingProgressView/CancelBtn=Cancel"));
    cancelButton->UI_Show(true);
    cancelButton->SetDisabled(false);
    cancelButton->NotifyWhenChanged(
        kelui::ui::WeakNodeFunction(this, &EncodingProgressView::OnCancelClicked));
    ChildPushBack(cancelButton);

    bindings.push_back(viewModel->AddEncodingProgressBinding(
        kelui::ui::WeakNodeFunction(this, &EncodingProgressView::OnProgressChanged)));
    bindings.push_back(viewModel->AddProcessingRemainingTimeBinding(
        kelui::ui::WeakNodeFunction(this, &EncodingProgressView::OnRemainingTimeChanged)));
    bindings.push_back(viewModel->AddUploadingSpeedBinding(
        kelui::ui::WeakNodeFunction(this, &EncodingProgressView::OnSpeedChanged)));
    bindings.push_back(viewModel->AddEncodingStatusBinding(
        kelui::ui::WeakNodeFunction(this, &EncodingProgressView::OnEncodingStatusChanged)));

    UI_Show(true);
}

EncodingProgressView::~EncodingProgressView() = default;

void EncodingProgressView::OnProgressChanged(double progress) {
    if (IsZero(progress) || !std::isfinite(progress)) {
        progressBar->SetValueUnknown();
        return;
    }
    // Truncated, not rounded: the bar never shows a stage done before it is.
    const double fraction = std::clamp(progress, 0.0, 1.0);
    progressBar->SetProgress(static_cast<int>(fraction * kProgressSteps), kProgressSteps);
}

void EncodingProgressView::OnRemainingTimeChanged(double seconds) {
    string text;
    // A negative or undefined estimate says nothing either, like a zero one.
    if (!IsZero(seconds) && seconds > 0.0) {
        const auto whole = static_cast<unsigned>(std::min(seconds, kMaxRemainingSeconds));
        const unsigned hours = whole / 3600;
        const unsigned minutes = whole % 3600 / 60;
        const unsigned secs = whole % 60;
        if (hours != 0) {
            text = kelcore::string::ReplaceInString(Localized(kHoursMinutesSecondsLeft),
                                                    PrintUnsigned(hours), PrintUnsigned(minutes),
                                                    PrintUnsigned(secs));
        } else if (minutes != 0) {
            text = kelcore::string::ReplaceInString(Localized(kMinutesSecondsLeft),
                                                    PrintUnsigned(minutes), PrintUnsigned(secs));
        } else if (secs != 0) {
            text = kelcore::string::ReplaceInString(Localized(kSecondsLeft), PrintUnsigned(secs));
        }
    }
    timeLeftText->SetText(text);
    ApplyLayout();
}

void EncodingProgressView::OnSpeedChanged(double speed) {
    string text;
    if (!IsZero(speed) && std::isfinite(speed)) {
        // std::lround rounds halves away from zero.
        text = kelcore::string::ReplaceInString(Localized(kUploadingSpeed),
                                                PrintInt(static_cast<int>(std::lround(speed))));
    }
    speedText->SetText(text);
    ApplyLayout();
}

void EncodingProgressView::OnCancelClicked() {
    model::CancelActiveProcessingJob();
    viewModel->SetCurrentViewID(ShareForReviewViewID::None);
}

void EncodingProgressView::OnEncodingStatusChanged(EncodingStatus status) {
    ShareForReviewViewID stage;
    switch (status) {
        case EncodingStatus::Queued:
            stage = ShareForReviewViewID::EncodingQueued;
            break;
        case EncodingStatus::Encoding:
            stage = ShareForReviewViewID::EncodingProgress;
            break;
        case EncodingStatus::Encoded:
        case EncodingStatus::Uploading:
            stage = ShareForReviewViewID::UploadProgress;
            break;
        default:
            return;
    }
    const ShareForReviewViewID current = viewModel->GetCurrentViewID();
    const bool onProgress = current == ShareForReviewViewID::EncodingQueued ||
                            current == ShareForReviewViewID::EncodingProgress ||
                            current == ShareForReviewViewID::UploadProgress;
    if (onProgress && stage != current) {
        viewModel->SetCurrentViewID(stage);
    }
}

void EncodingProgressView::ApplyLayout() {
    UI_SetLocalRectF(UI_GetLocalRectF());
}

PointT<float> EncodingProgressView::UI_GetRecommendedSize(limner::Limner& /*measuring*/) {
    return {kViewWidth, kViewHeight};
}

void EncodingProgressView::UI_SetLocalRectF(const RectT<float>& rect) {
    PopupBaseView::UI_SetLocalRectF(rect);
    if (!UI_GetDrawSupplier()) {
        return;
    }
    const float y = detail::PlaceWorkflowLabel(workflowLabel) + kGapBelowLabel;
    const PointT<float> row = detail::PlaceInColumn(copyLinkSection, y);
    const float y2 = y + row.y + kGapBelowLink;

    const PointT<float> status = detail::PlaceInColumn(statusText, y2);
    const PointT<float> time = sharedui::GetRecommendedSize(timeLeftText);
    timeLeftText->UI_SetLocalRectF({kColumnRight - time.x, y2, time.x, time.y});
    const PointT<float> speed = sharedui::GetRecommendedSize(speedText);
    speedText->UI_SetLocalRectF(
        {kColumnRight - time.x - speed.x - kSpeedToTimeGap, y2, speed.x, speed.y});

    // On a whole pixel, so the bar's edges stay crisp.
    const float y3 = std::floor(y2 + status.y + kGapAboveBar + 0.9f);
    const float barHeight = kelui::skins::IsRunningV7OrBeyond()
                                ? sharedui::GetRecommendedSize(progressBar).y
                                : kClassicBarHeight;
    progressBar->UI_SetLocalRectF({kColumnLeft, y3, kColumnWidth, barHeight});

    const PointT<float> cancel = sharedui::GetRecommendedSize(cancelButton);
    cancelButton->UI_SetLocalRectF({kColumnRight - cancel.x - kCancelInset,
                                    rect.height - kBottomMargin - cancel.y, cancel.x, cancel.y});
}

}  // namespace vantrokelui::view
