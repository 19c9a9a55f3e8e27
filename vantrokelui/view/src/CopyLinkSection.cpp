#include <vantrokelui/view/CopyLinkSection.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>

#include <kelcore/config/Localizer.h>
#include <kelcore/string/String.h>
#include <kelcore/utility/OpenFileInDefaultApplication.h>
#include <kelui/datatransfer/Clipboard.h>
#include <kelui/datatransfer/ClipboardSendData.h>
#include <kelui/sharedui/UI_ToastManager.h>
#include <kelui/skins/Theme.h>
#include <kelui/ui/MainTopLevelWindow.h>
#include <kelui/ui/UI_WeakNodePtr.h>
#include <vantrokelui/nodes/VantroUser.h>
#include <vantrokelui/sharedui/Measuring.h>
#include <vantrokelui/sharedui/ResourceManager.h>
#include <vantrokelui/utility/SDMLogging.h>

namespace vantrokelui::view {

using kelcore::geom::PointT;
using kelcore::geom::RectT;

namespace {

constexpr float kRowWidth = 310.0f;
constexpr float kRowHeight = 20.0f;

// The link shortens at its end: the start of an address says where it leads.
constexpr std::uint32_t kEndTruncation = 2;
// The quiet chrome, with container and border forced on below, keeps the button a button in
// the flat skin.
constexpr std::uint32_t kQuietChrome = 9;

}  // namespace

CopyLinkSection::CopyLinkSection(std::shared_ptr<viewmodel::ShareForReviewViewModel> model)
    : viewModel(std::move(model)),
      copyButton(new kelui::controls::UI_PictureTextButton),
      settingsButton(new kelui::controls::UI_PictureButton),
      linkText(new kelui::controls::UI_HotTextURL) {
    const kelcore::string::string url = viewModel->GetReviewLinkURL();
    linkText->SetTextTruncation(kEndTruncation);
    linkText->SetURL(kelcore::string::UTF16toStdString(url));
    linkText->SetText(url, true);
    linkText->UI_Show(true);
    ChildPushBack(linkText);

    copyButton->SetImageSupplyFunction(
        sharedui::BindImageSupplyFunction("S_Copy_16", &sharedui::GetResourceManager));
    copyButton->SetText(kelcore::config::Localizer::Get().GetString(
        "$$$/Corvane/vantrokelui/view/VantroShare/CopyLinkSectionView/CopyLink=Copy link"));
    const kelui::ui::UI_WeakNodePtr<CopyLinkSection> weakSelf(this);
    copyButton->NotifyWhenChanged([weakSelf] {
        if (const auto self = weakSelf.Lock()) {
            self->OnCopyLink();
        }
    });
    if (kelui::skins::IsRunningV7OrBeyond()) {
        copyButton->SetButtonChromeType(kQuietChrome);
    }
    copyButton->SetDisplayContainerAlways(true);
    copyButton->SetDisplayBorderAlways(true);
    copyButton->SetSpringLoaded(true);
    copyButton->SetCommitAppearance(false);
    copyButton->UI_Show(true);
    ChildPushBack(copyButton);

    UI_Show(true);
}

CopyLinkSection::~CopyLinkSection() = default;

void CopyLinkSection::OnCopyLink() {
    utility::SDMLogging::LogCopyLink();
    kelui::datatransfer::Clipboard::SendToClipboard(kelui::datatransfer::NewClipboardSendData(
        kelcore::string::StdToUTF16String(linkText->GetURL())));
    kelui::sharedui::UI_ToastManager::GetDefaultInstance()->DisplayToastMessage(
        kelui::ui::GetMainTopLevelWindow(),
        kelcore::config::Localizer::Get().GetUTF8String(
            "$$$/Corvane/vantrokelui/view/VantroShare/CopyLinkSectionView/Toast/Copied=Copied"),
        std::string(), [] {}, [] {}, kelui::sharedui::ToastType::Success,
        kelui::sharedui::kToastManager_DefaultDurationInSeconds,
        kelui::sharedui::kToastManager_DefaultPriority, kelui::sharedui::ToastLineType::SingleLine);
}

void CopyLinkSection::OnOpenSettings() {
    const std::shared_ptr<VantroUser> user = viewModel->GetUser();
    if (!user) {
        return;
    }
    kelcore::utility::OpenFileInDefaultApplication(
        kelcore::string::UTF16toStdString(user->GetSettingsURL()));
}

void CopyLinkSection::UI_SetLocalRectF(const RectT<float>& rect) {
    UI_SubView::UI_SetLocalRectF(rect);
    if (!UI_GetDrawSupplier()) {
        return;
    }
    const float linkWidth = std::min(sharedui::GetRecommendedSize(linkText).x, kMaxLinkWidth);
    linkText->UI_SetLocalRectF({0.0f, 0.0f, linkWidth, kRowHeight});
    copyButton->UI_SetLocalRectF(
        {rect.width - kCopyButtonWidth, 0.0f, kCopyButtonWidth, kRowHeight});
}

PointT<float> CopyLinkSection::UI_GetRecommendedSize(limner::Limner& /*measuring*/) {
    return {kRowWidth, kRowHeight};
}

}  // namespace vantrokelui::view
