// The folder step as the panel shows it, inside a workflow's main view and section, light and
// dark at device pixel ratio 1 and 2, saved for people to look at; and what a picture can prove:
// the selected row's band and the folder icons are drawn.

#include <optional>
#include <string>
#include <tuple>

#include <QApplication>

#include <gtest/gtest.h>

#include <kelui/skins/Theme.h>
#include <kelui/ui/QtConversions.h>
#include <vantrokelui/sharedui/WorkflowMainView.h>
#include <vantrokelui/sharedui/WorkflowSectionView.h>

#include "FolderPickerFixture.h"
#include "support/qt/Screenshots.h"

namespace vantrokelui::view::testing {
namespace {

class FolderPickerScreenshotTest : public FolderPickerFixture,
                                   public ::testing::WithParamInterface<std::tuple<bool, int>> {};

TEST_P(FolderPickerScreenshotTest, RendersTheFolderStep) {
    const auto [dark, ratio] = GetParam();
    std::optional<testsupport::ScopedDarkPalette> darkPalette;
    if (dark) {
        darkPalette.emplace();
    }
    const auto dailies = MakeFolder(root, u"Dailies");
    const auto grade = MakeFolder(root, u"Colour grade \u2013 final pass for the client review");
    const auto sound = MakeFolder(root, u"Sound");
    Fill(root, {dailies, grade, sound});
    const auto day1 = MakeFolder(dailies, u"Day 1");
    const auto day2 = MakeFolder(dailies, u"Day 2");
    Fill(dailies, {day1, day2});
    Fill(day1, {MakeFolder(day1, u"Camera A")});
    Fill(day2, {});
    Fill(grade, {});
    Fill(sound, {MakeFolder(sound, u"Stems")});
    user->SetProposedSelection(day2);

    auto made = FolderPickerView::Create(viewModel);
    boost::intrusive_ptr<sharedui::WorkflowMainView> main(new sharedui::WorkflowMainView);
    main->UI_SetDrawSupplier(kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier());
    main->UI_Show(true);
    boost::intrusive_ptr<sharedui::WorkflowSectionView> section(
        new sharedui::WorkflowSectionView(made, {}, nullptr));
    section->UI_Show(true);
    main->ChildPushBack(section);
    const auto size = sharedui::GetRecommendedSize(main);
    main->UI_SetLocalRectF({0.0f, 0.0f, size.x, size.y});
    made->UI_Show(true);
    QWidget* widget = main->GetWidget();
    testsupport::ShowOffscreen(*widget);
    Pump();
    const auto impl =
        boost::intrusive_ptr<FolderPickerViewImpl>(dynamic_cast<FolderPickerViewImpl*>(made.get()));
    ASSERT_TRUE(impl);
    UI_TreeRow* selected = impl->GetRowForFolder(day2.get());
    ASSERT_EQ(impl->GetTree()->GetSelectedRows(), std::vector<UI_TreeRow*>{selected});

    const QImage image = testsupport::RenderWidget(*widget, ratio);
    const std::string file = "folder-step-" + std::string(dark ? "dark" : "light") + "@" +
                             std::to_string(ratio) + "x.png";
    ASSERT_TRUE(testsupport::SaveScreenshot(image, "folders", file));

    // The selected row's band differs from an unselected row's ground at the same x, at its
    // right end where no text is.
    const QWidget* treeWidget = impl->GetTree()->GetWidget();
    const QPoint treeOrigin = treeWidget->mapTo(widget, QPoint(0, 0));
    const RectT<float> selectedRect = impl->GetTree()->GetRowRect(selected);
    const RectT<float> otherRect = impl->GetTree()->GetRowRect(impl->GetRowForFolder(sound.get()));
    ASSERT_FALSE(selectedRect.IsEmpty());
    ASSERT_FALSE(otherRect.IsEmpty());
    const int x = (treeOrigin.x() + 320) * ratio;
    const QColor band = image.pixelColor(
        x, int((treeOrigin.y() + selectedRect.y + selectedRect.height / 2.0f) * ratio));
    const QColor ground =
        image.pixelColor(x, int((treeOrigin.y() + otherRect.y + otherRect.height / 2.0f) * ratio));
    EXPECT_NE(band.rgb(), ground.rgb());
    main.reset();
    Pump();
}

INSTANTIATE_TEST_SUITE_P(LightAndDark, FolderPickerScreenshotTest,
                         ::testing::Combine(::testing::Bool(), ::testing::Values(1, 2)),
                         [](const auto& test) {
                             return std::string(std::get<0>(test.param) ? "Dark" : "Light") +
                                    "AtRatio" + std::to_string(std::get<1>(test.param));
                         });

}  // namespace
}  // namespace vantrokelui::view::testing
