// Renders the share screen as the popup shows it (a main view holding one section) to PNG files,
// light and dark, at device pixel ratio 1 and 2, in three states: no location yet, a location
// and presets chosen, and a new link. Checks what a picture can prove: the section is exactly
// as tall as the screen asks, the bottom margin is empty background, and the Share button is
// drawn on the popup's row at the column's right edge.
#include <optional>
#include <string>
#include <tuple>

#include <QApplication>
#include <QWidget>

#include <gtest/gtest.h>

#include <kelui/ui/QtConversions.h>
#include <vantrokelui/sharedui/ResourceManager.h>
#include <vantrokelui/sharedui/WorkflowMainView.h>
#include <vantrokelui/sharedui/WorkflowSectionView.h>

#include "ReviewInVantroViewFixture.h"
#include "support/qt/Screenshots.h"

namespace vantrokelui::view::testing {
namespace {

using kelcore::geom::PointT;

enum class ScreenState { NoLocation, Chosen, NewLink };

std::string Name(ScreenState state) {
    switch (state) {
        case ScreenState::NoLocation:
            return "no-location";
        case ScreenState::Chosen:
            return "chosen";
        case ScreenState::NewLink:
            return "new-link";
    }
    return "unknown";
}

class ReviewInVantroViewScreenshotTest
    : public ReviewInVantroViewFixture,
      public ::testing::WithParamInterface<std::tuple<ScreenState, bool, int>> {};

TEST_P(ReviewInVantroViewScreenshotTest, TheScreenInsideThePopupsSection) {
    const auto [state, dark, ratio] = GetParam();
    std::optional<testsupport::ScopedDarkPalette> darkPalette;
    if (dark) {
        darkPalette.emplace();
    }
    viewModel->SetIsLoggedIn(true);
    viewModel->SetIsNetworkConnected(true);
    viewModel->SetAssetTypeIcon(
        sharedui::BindImageSupplyFunction("S_Sequence_16", &sharedui::GetResourceManager));
    viewModel->SetActiveAssetName(u"Sequence 01 \u2013 final grade");
    SetThreePresets();
    const auto tree = LocalTree::Make(u"Riverside Studio", u"Editors", u"Spring Campaign",
                                      u"Client reviews, second round");
    viewModel->SetUser(tree.user);
    if (state != ScreenState::NoLocation) {
        tree.user->SetSelection(tree.folder);
    }
    viewModel->SetCreateNewLinkMode(state == ScreenState::NewLink);

    boost::intrusive_ptr<ReviewInVantroView> screen(new ReviewInVantroView(viewModel));
    boost::intrusive_ptr<sharedui::WorkflowMainView> main(new sharedui::WorkflowMainView);
    main->UI_SetDrawSupplier(kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier());
    main->UI_Show(true);
    boost::intrusive_ptr<sharedui::WorkflowSectionView> section(
        new sharedui::WorkflowSectionView(screen, {}, nullptr));
    section->UI_Show(true);
    main->ChildPushBack(section);
    Pump();  // the bindings fill the screen
    section->SetContent(screen);
    const auto size = sharedui::GetRecommendedSize(main);
    const auto screenSize = sharedui::GetRecommendedSize(screen);
    ASSERT_EQ(size, (PointT<float>{screenSize.x + 2.0f, screenSize.y + 2.0f}));
    main->UI_SetLocalRectF({0.0f, 0.0f, size.x, size.y});
    QWidget* widget = main->GetWidget();
    testsupport::ShowOffscreen(*widget);
    Pump();

    const QImage image = testsupport::RenderWidget(*widget, ratio);

    const std::string file = "review-in-vantro-" + Name(state) + "-" +
                             std::string(dark ? "dark" : "light") + "@" + std::to_string(ratio) +
                             "x.png";
    ASSERT_TRUE(testsupport::SaveScreenshot(image, "panel", file));

    // The section (at 1, 1 inside the main view) is filled with palette gray 1; the bottom
    // margin under the Share button holds nothing else.
    const auto theme = main->UI_GetDrawSupplier()->GetTheme();
    const QRgb background = kelui::ui::ToQColor(kelui::skins::GetPaletteGrayColor(theme, 1)).rgb();
    const auto share = screen->GetShareButton()->UI_GetLocalRectF();
    const int marginTop = static_cast<int>(share.y + share.height) + 2;
    for (int y = marginTop; y < static_cast<int>(size.y) - 2; ++y) {
        for (int x = 2; x < static_cast<int>(size.x) - 2; x += 7) {
            ASSERT_EQ(image.pixelColor(x * ratio, y * ratio).rgb(), background)
                << "at " << x << ", " << y;
        }
    }
    // The Share button is drawn where the layout puts it: its box is not the background.
    const int shareX = static_cast<int>(1.0f + share.x + share.width / 2.0f);
    const int shareY = static_cast<int>(1.0f + share.y + 3.0f);
    EXPECT_NE(image.pixelColor(shareX * ratio, shareY * ratio).rgb(), background);
    EXPECT_EQ(share.x + share.width, 325.0f);

    widget->hide();
    main->ChildRemove(section);
}

std::string ParamName(
    const ::testing::TestParamInfo<ReviewInVantroViewScreenshotTest::ParamType>& param) {
    std::string name = Name(std::get<0>(param.param));
    std::erase(name, '-');
    return name + (std::get<1>(param.param) ? "Dark" : "Light") + "AtRatio" +
           std::to_string(std::get<2>(param.param));
}

INSTANTIATE_TEST_SUITE_P(StatesLightAndDark, ReviewInVantroViewScreenshotTest,
                         ::testing::Combine(::testing::Values(ScreenState::NoLocation,
                                                              ScreenState::Chosen,
                                                              ScreenState::NewLink),
                                            ::testing::Bool(), ::testing::Values(1, 2)),
                         ParamName);

}  // namespace
}  // namespace vantrokelui::view::testing
