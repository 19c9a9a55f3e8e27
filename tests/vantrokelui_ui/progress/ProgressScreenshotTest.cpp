// Renders the end screen and the progress screen as the popup shows them (inside a workflow's
// main view and section), light and dark, at device pixel ratio 1 and 2, to PNG files for people
// to look at, and checks what a picture can prove: the section's background under the screen and
// the link drawn in the theme's link colour.
#include <cstdlib>
#include <optional>
#include <string>

#include <QApplication>
#include <QWidget>

#include <gtest/gtest.h>

#include <kelui/ui/QtConversions.h>
#include <vantrokelui/sharedui/ResourceManager.h>
#include <vantrokelui/sharedui/WorkflowMainView.h>
#include <vantrokelui/sharedui/WorkflowSectionView.h>
#include <vantrokelui/view/CopyLinkSectionView.h>
#include <vantrokelui/view/EncodingProgressView.h>

#include "ProgressViewFixture.h"
#include "support/qt/Screenshots.h"

namespace vantrokelui::view {
namespace {

using kelcore::geom::RectT;
using testing::ProgressViewFixture;
using testing::ViewID;

enum class Screen { EndClean, EndModified, EndModifiedOffline, Queued, Uploading };

std::string NameOf(Screen screen) {
    switch (screen) {
        case Screen::EndClean:
            return "end-clean";
        case Screen::EndModified:
            return "end-modified";
        case Screen::EndModifiedOffline:
            return "end-modified-offline";
        case Screen::Queued:
            return "progress-queued";
        case Screen::Uploading:
            return "progress-uploading";
    }
    return "unknown";
}

/// `rect`, given in `node`'s parent's coordinates, in the coordinates of `top` (an ancestor).
RectT<float> RectIn(const kelui::ui::UI_Node& top, const kelui::ui::UI_Node& node,
                    RectT<float> rect) {
    for (const kelui::ui::UI_Node* parent = node.UI_GetParentNode(); parent && parent != &top;
         parent = parent->UI_GetParentNode()) {
        rect.x += parent->UI_GetLocalRectF().x;
        rect.y += parent->UI_GetLocalRectF().y;
    }
    return rect;
}

/// Whether some pixel inside `rect` (logical pixels) is within a small distance of `color`.
bool HasColorNear(const QImage& image, const RectT<float>& rect, int ratio, const QColor& color) {
    constexpr int kTolerance = 40;
    for (int y = static_cast<int>(rect.y) * ratio;
         y < static_cast<int>(rect.y + rect.height) * ratio; ++y) {
        for (int x = static_cast<int>(rect.x) * ratio;
             x < static_cast<int>(rect.x + rect.width) * ratio; ++x) {
            const QColor pixel = image.pixelColor(x, y);
            if (std::abs(pixel.red() - color.red()) <= kTolerance &&
                std::abs(pixel.green() - color.green()) <= kTolerance &&
                std::abs(pixel.blue() - color.blue()) <= kTolerance) {
                return true;
            }
        }
    }
    return false;
}

const boost::intrusive_ptr<kelui::controls::UI_HotTextURL>& LinkTextOf(PopupBaseView& view) {
    if (auto* end = dynamic_cast<CopyLinkSectionView*>(&view)) {
        return end->GetCopyLinkSection()->GetLinkText();
    }
    return dynamic_cast<EncodingProgressView&>(view).GetCopyLinkSection()->GetLinkText();
}

class ProgressScreenshotTest : public ProgressViewFixture,
                               public ::testing::WithParamInterface<std::tuple<Screen, bool, int>> {
protected:
    /// The screen for `screen`, with the view model in the state it shows.
    boost::intrusive_ptr<PopupBaseView> MakeScreen(Screen screen) {
        viewModel->SetAssetTypeIcon(
            sharedui::BindImageSupplyFunction("S_Sequence_16", &sharedui::GetResourceManager));
        viewModel->SetActiveAssetName(u"Promo cut 03 \u2013 colour graded");
        viewModel->SetReviewLinkURL(u"https://review.vantro.invalid/r/7Hq2xWk");
        switch (screen) {
            case Screen::EndClean:
            case Screen::EndModified:
            case Screen::EndModifiedOffline:
                viewModel->SetActiveAssetDirty(screen != Screen::EndClean);
                viewModel->SetIsNetworkConnected(screen != Screen::EndModifiedOffline);
                viewModel->SetCurrentViewID(ViewID::CopyLinkSection);
                Pump();
                return new CopyLinkSectionView(viewModel);
            case Screen::Queued:
                viewModel->SetCurrentViewID(ViewID::EncodingQueued);
                Pump();
                return new EncodingProgressView(viewModel);
            case Screen::Uploading:
                viewModel->SetEncodingProgress(0.42);
                viewModel->SetProcessingRemainingTime(200.0);
                viewModel->SetUploadingSpeed(12.3);
                viewModel->SetCurrentViewID(ViewID::UploadProgress);
                Pump();
                return new EncodingProgressView(viewModel);
        }
        return nullptr;
    }
};

TEST_P(ProgressScreenshotTest, RendersTheScreenInThePopupsSection) {
    const auto [screen, dark, ratio] = GetParam();
    std::optional<testsupport::ScopedDarkPalette> darkPalette;
    if (dark) {
        darkPalette.emplace();
    }
    boost::intrusive_ptr<sharedui::WorkflowMainView> main(new sharedui::WorkflowMainView);
    main->UI_SetDrawSupplier(kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier());
    main->UI_Show(true);
    boost::intrusive_ptr<sharedui::WorkflowSectionView> section(
        new sharedui::WorkflowSectionView(nullptr, {}, nullptr));
    section->UI_Show(true);
    main->ChildPushBack(section);
    const boost::intrusive_ptr<PopupBaseView> view = MakeScreen(screen);
    ASSERT_NE(view, nullptr);
    section->SetContent(view);
    Pump();
    const auto size = sharedui::GetRecommendedSize(main);
    main->UI_SetLocalRectF({0.0f, 0.0f, size.x, size.y});
    QWidget* widget = main->GetWidget();
    testsupport::ShowOffscreen(*widget);
    Pump();

    const QImage image = testsupport::RenderWidget(*widget, ratio);

    const std::string file =
        NameOf(screen) + "-" + (dark ? "dark" : "light") + "@" + std::to_string(ratio) + "x.png";
    ASSERT_TRUE(testsupport::SaveScreenshot(image, "progress", file));

    const auto theme = main->UI_GetDrawSupplier()->GetTheme();
    // Left of the column, between the label and the link row, lies the section's background.
    const QColor background = kelui::ui::ToQColor(kelui::skins::GetPaletteGrayColor(theme, 1));
    const RectT<float> gap = RectIn(*main, *view, {5.0f, 35.0f, 1.0f, 1.0f});
    EXPECT_EQ(
        image.pixelColor(static_cast<int>(gap.x) * ratio, static_cast<int>(gap.y) * ratio).rgb(),
        background.rgb());

    // The link's text is drawn in the theme's link colour.
    const auto& linkText = LinkTextOf(*view);
    const RectT<float> link = RectIn(*main, *linkText, linkText->UI_GetLocalRectF());
    EXPECT_TRUE(HasColorNear(image, link, ratio, kelui::ui::ToQColor(theme.link)))
        << "no pixel of the link colour in the link's rectangle";
}

INSTANTIATE_TEST_SUITE_P(EndAndProgressScreens, ProgressScreenshotTest,
                         ::testing::Combine(::testing::Values(Screen::EndClean, Screen::EndModified,
                                                              Screen::EndModifiedOffline,
                                                              Screen::Queued, Screen::Uploading),
                                            ::testing::Bool(), ::testing::Values(1, 2)),
                         [](const auto& test) {
                             std::string name = NameOf(std::get<0>(test.param));
                             std::erase(name, '-');
                             return name + (std::get<1>(test.param) ? "Dark" : "Light") +
                                    "AtRatio" + std::to_string(std::get<2>(test.param));
                         });

}  // namespace
}  // namespace vantrokelui::view
