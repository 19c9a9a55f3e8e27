// Renders each status screen as the popup shows it (inside a workflow's main view and section),
// light and dark, at device pixel ratio 1 and 2, to PNG files for people to look at, and checks
// what a picture can prove: the screen's texts are drawn, and its bottom margin is empty.
#include <functional>
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
#include <vantrokelui/view/DebugView.h>
#include <vantrokelui/view/NoAssetProcessorView.h>
#include <vantrokelui/view/NoAssetView.h>
#include <vantrokelui/view/OfflineView.h>
#include <vantrokelui/view/SigninView.h>
#include <vantrokelui/view/StorageLimitExceededView.h>

#include "StatusViewFixture.h"
#include "support/qt/Screenshots.h"

namespace vantrokelui::view::testing {
namespace {

enum class Screen {
    NoAssetProcessor,
    NoAsset,
    Offline,
    StorageLimitExceeded,
    Signin,
    SigninWithPolicyAndAlt,
    Debug
};

std::string ScreenName(Screen screen) {
    switch (screen) {
        case Screen::NoAssetProcessor:
            return "NoAssetProcessor";
        case Screen::NoAsset:
            return "NoAsset";
        case Screen::Offline:
            return "Offline";
        case Screen::StorageLimitExceeded:
            return "StorageLimitExceeded";
        case Screen::Signin:
            return "Signin";
        case Screen::SigninWithPolicyAndAlt:
            return "SigninWithPolicyAndAlt";
        case Screen::Debug:
            return "Debug";
    }
    return "Unknown";
}

/// Whether any pixel of `rect` (in view pixels of a picture at `ratio`) differs from `colour`.
bool AnyPixelDiffers(const QImage& image, const RectT<float>& rect, int ratio, QRgb colour) {
    const QRect area =
        QRectF(rect.x * ratio, rect.y * ratio, rect.width * ratio, rect.height * ratio)
            .toAlignedRect()
            .intersected(image.rect());
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (image.pixel(x, y) != colour) {
                return true;
            }
        }
    }
    return false;
}

class StatusScreenshotTest : public StatusViewFixture,
                             public ::testing::WithParamInterface<std::tuple<Screen, bool, int>> {
protected:
    boost::intrusive_ptr<PopupBaseView> MakeScreen(Screen screen) {
        switch (screen) {
            case Screen::NoAssetProcessor:
                return new NoAssetProcessorView(viewModel);
            case Screen::NoAsset:
                return new NoAssetView(viewModel);
            case Screen::Offline:
                return new OfflineView(viewModel);
            case Screen::StorageLimitExceeded:
                return new StorageLimitExceededView(viewModel);
            case Screen::Signin:
                return new SigninView(viewModel);
            case Screen::SigninWithPolicyAndAlt:
                SetKey("VantroNative.SignIn.PolicyLabelVisible", "true");
                SetKey("VantroNative.SignIn.AltSigninVisible", "true");
                return new SigninView(viewModel);
            case Screen::Debug:
                return new DebugView(viewModel);
        }
        return nullptr;
    }

    /// The rectangles, in the screen's coordinates, that must show drawn text.
    static std::vector<RectT<float>> TextAreas(Screen screen, PopupBaseView& made) {
        if (auto* signin = dynamic_cast<SigninView*>(&made)) {
            std::vector<RectT<float>> areas{signin->GetLongDescriptionText()->UI_GetLocalRectF(),
                                            signin->GetSigninButton()->UI_GetLocalRectF()};
            if (screen == Screen::SigninWithPolicyAndAlt) {
                areas.push_back(signin->GetTermsText()->UI_GetLocalRectF());
                areas.push_back(signin->GetPrivacyLink()->UI_GetLocalRectF());
                areas.push_back(signin->GetAltSigninButton()->UI_GetLocalRectF());
            }
            return areas;
        }
        if (auto* debug = dynamic_cast<DebugView*>(&made)) {
            return {debug->GetTitleText()->UI_GetLocalRectF(),
                    debug->GetTraceButton()->UI_GetLocalRectF()};
        }
        if (auto* offline = dynamic_cast<OfflineView*>(&made)) {
            return {offline->GetOfflineSection()->UI_GetLocalRectF()};
        }
        if (auto* storage = dynamic_cast<StorageLimitExceededView*>(&made)) {
            return {storage->GetDescriptionText()->UI_GetLocalRectF()};
        }
        if (auto* noAsset = dynamic_cast<NoAssetView*>(&made)) {
            return {noAsset->GetDescriptionText()->UI_GetLocalRectF()};
        }
        if (auto* noProcessor = dynamic_cast<NoAssetProcessorView*>(&made)) {
            return {noProcessor->GetDescriptionText()->UI_GetLocalRectF()};
        }
        return {};
    }
};

TEST_P(StatusScreenshotTest, TheScreenAsThePopupShowsIt) {
    const auto [which, dark, ratio] = GetParam();
    std::optional<testsupport::ScopedDarkPalette> darkPalette;
    if (dark) {
        darkPalette.emplace();
    }
    viewModel->SetAssetTypeIcon(
        sharedui::BindImageSupplyFunction("S_Sequence_16", &sharedui::GetResourceManager));
    viewModel->SetActiveAssetName(u"Sequence 01 \u2013 final grade");
    viewModel->SetIsLoggedIn(false);
    auto user = std::make_shared<VantroUser>();
    user->SetName(u"ann@studio.example");
    viewModel->SetUser(user);
    Pump();

    boost::intrusive_ptr<sharedui::WorkflowMainView> main(new sharedui::WorkflowMainView);
    main->UI_SetDrawSupplier(kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier());
    main->UI_Show(true);
    const boost::intrusive_ptr<PopupBaseView> screen = MakeScreen(which);
    boost::intrusive_ptr<sharedui::WorkflowSectionView> section(
        new sharedui::WorkflowSectionView(screen, {}, nullptr));
    section->UI_Show(true);
    main->ChildPushBack(section);
    Pump();
    const auto size = sharedui::GetRecommendedSize(main);
    main->UI_SetLocalRectF({0.0f, 0.0f, size.x, size.y});
    QWidget* widget = main->GetWidget();
    testsupport::ShowOffscreen(*widget);
    Pump();
    ASSERT_EQ(screen->UI_GetLocalRectF().width, 340.0f);

    const QImage image = testsupport::RenderWidget(*widget, ratio);

    const std::string name = "status-" + ScreenName(which) + "-" + (dark ? "dark" : "light") + "@" +
                             std::to_string(ratio) + "x.png";
    ASSERT_TRUE(testsupport::SaveScreenshot(image, "status", name));

    // The screen sits in the section at (1, 1) of the main view; its background is gray 1.
    const auto theme = main->UI_GetDrawSupplier()->GetTheme();
    const QRgb background = kelui::ui::ToQColor(kelui::skins::GetPaletteGrayColor(theme, 1)).rgb();
    const RectT<float> placed = screen->UI_GetLocalRectF();
    auto inMain = [&](const RectT<float>& rect) {
        return RectT<float>{rect.x + 1.0f, rect.y + 1.0f, rect.width, rect.height};
    };
    for (const RectT<float>& area : TextAreas(which, *screen)) {
        EXPECT_TRUE(AnyPixelDiffers(image, inMain(area), ratio, background))
            << "nothing drawn at " << area.x << "," << area.y;
    }
    // The bottom margin stays empty: nothing runs into it or past it.
    EXPECT_FALSE(AnyPixelDiffers(image, inMain({0.0f, placed.height - 14.0f, 340.0f, 14.0f}), ratio,
                                 background));
}

INSTANTIATE_TEST_SUITE_P(
    LightAndDark, StatusScreenshotTest,
    ::testing::Combine(::testing::Values(Screen::NoAssetProcessor, Screen::NoAsset, Screen::Offline,
                                         Screen::StorageLimitExceeded, Screen::Signin,
                                         Screen::SigninWithPolicyAndAlt, Screen::Debug),
                       ::testing::Bool(), ::testing::Values(1, 2)),
    [](const auto& test) {
        return ScreenName(std::get<0>(test.param)) + (std::get<1>(test.param) ? "Dark" : "Light") +
               "AtRatio" + std::to_string(std::get<2>(test.param));
    });

}  // namespace
}  // namespace vantrokelui::view::testing
