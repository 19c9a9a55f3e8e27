// Renders a workflow's main view with two sections and a header label with its menu to PNG
// files (light and dark, at device pixel ratio 1 and 2), for people to look at, and checks what
// a picture can prove: the section background and the border lines are where the layout says.
#include <optional>

#include <QApplication>
#include <QWidget>

#include <gtest/gtest.h>

#include <kelui/controls/UI_ProgressBar.h>
#include <kelui/controls/UI_StaticText.h>
#include <kelui/ui/QtConversions.h>
#include <kelui/ui/UI_NodeManager.h>
#include <vantrokelui/sharedui/CallToActionButton.h>
#include <vantrokelui/sharedui/Measuring.h>
#include <vantrokelui/sharedui/ResourceManager.h>
#include <vantrokelui/sharedui/WorkflowMainView.h>
#include <vantrokelui/sharedui/WorkflowSectionView.h>
#include <vantrokelui/view/WorkflowLabel.h>

#include "support/qt/QtMainThreadFixture.h"
#include "support/qt/Screenshots.h"

namespace vantrokelui::sharedui {
namespace {

using kelcore::geom::PointT;

// A screen of the panel's geometry: the label at (15, 10), a text and a button below it.
class SampleScreen final : public kelui::ui::UI_SubView {
public:
    explicit SampleScreen(bool withButton)
        : label(new view::WorkflowLabel(
              BindImageSupplyFunction("S_Sequence_16", &GetResourceManager), nullptr, nullptr,
              {view::MenuItem{[] {}, true, u"Sign out of Vantro"},
               view::MenuItem{[] {}, false, u"Create new link"}})),
          text(new kelui::controls::UI_StaticText),
          button(new CallToActionButton),
          progress(new kelui::controls::UI_ProgressBar) {
        label->SetName(u"Sequence 01 \u2013 final grade with a long name");
        label->UI_Show(true);
        ChildPushBack(label);
        text->SetText(
            u"Share a review link to the sequence. Reviewers can comment on every "
            u"frame, and a new version keeps the same link.");
        text->SetMultiLine(true);
        text->UI_Show(true);
        ChildPushBack(text);
        if (withButton) {
            button->SetText(u"Share");
            button->UI_Show(true);
            ChildPushBack(button);
        } else {
            progress->SetProgress(420, 1000);
            progress->UI_Show(true);
            ChildPushBack(progress);
        }
        UI_Show(true);
    }
    PointT<float> UI_GetRecommendedSize(limner::Limner&) override { return {340.0f, 130.0f}; }
    void UI_SizeChanged(const kelcore::geom::RectT<float>& rect) override {
        label->UI_SetLocalRectF({15.0f, 10.0f, 310.0f, 20.0f});
        text->UI_SetLocalRectF({15.0f, 40.0f, 310.0f, MeasureTextHeight(text, 310.0f)});
        button->UI_SetLocalRectF({rect.width - 15.0f - 80.0f, 96.0f, 80.0f, 24.0f});
        progress->UI_SetLocalRectF({15.0f, 106.0f, 310.0f, 8.0f});
    }

    boost::intrusive_ptr<view::WorkflowLabel> label;
    boost::intrusive_ptr<kelui::controls::UI_StaticText> text;
    boost::intrusive_ptr<CallToActionButton> button;
    boost::intrusive_ptr<kelui::controls::UI_ProgressBar> progress;
};

class WorkflowScreenshotTest : public testsupport::QtMainThreadFixture,
                               public ::testing::WithParamInterface<std::tuple<bool, int>> {};

TEST_P(WorkflowScreenshotTest, TwoSectionsAndALabelWithItsMenu) {
    const auto [dark, ratio] = GetParam();
    std::optional<testsupport::ScopedDarkPalette> darkPalette;
    if (dark) {
        darkPalette.emplace();
    }
    boost::intrusive_ptr<WorkflowMainView> main(new WorkflowMainView);
    main->UI_SetDrawSupplier(kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier());
    main->UI_Show(true);
    boost::intrusive_ptr<WorkflowSectionView> first(
        new WorkflowSectionView(new SampleScreen(true), {}, nullptr));
    boost::intrusive_ptr<WorkflowSectionView> second(
        new WorkflowSectionView(new SampleScreen(false), {}, nullptr));
    first->UI_Show(true);
    second->UI_Show(true);
    main->ChildPushBack(first);
    main->ChildPushBack(second);
    const auto size = GetRecommendedSize(main);
    ASSERT_EQ(size, (PointT<float>{342.0f, 263.0f}));
    main->UI_SetLocalRectF({0.0f, 0.0f, size.x, size.y});
    QWidget* widget = main->GetWidget();
    testsupport::ShowOffscreen(*widget);
    Pump();

    const QImage image = testsupport::RenderWidget(*widget, ratio);

    const std::string file =
        "workflow-" + std::string(dark ? "dark" : "light") + "@" + std::to_string(ratio) + "x.png";
    ASSERT_TRUE(testsupport::SaveScreenshot(image, "sharedui", file));

    // The section is filled with palette gray 1; the 1-pixel gaps carry the border in gray 4.
    const auto theme = main->UI_GetDrawSupplier()->GetTheme();
    const QColor background = kelui::ui::ToQColor(kelui::skins::GetPaletteGrayColor(theme, 1));
    const QColor border = kelui::ui::ToQColor(kelui::skins::GetPaletteGrayColor(theme, 4));
    EXPECT_EQ(image.pixelColor(200 * ratio, 60 * ratio).rgb(), background.rgb());
    EXPECT_EQ(image.pixelColor(200 * ratio, 131 * ratio).rgb(), border.rgb());  // between sections
    EXPECT_EQ(image.pixelColor(0, 50 * ratio).rgb(), border.rgb());             // left edge
}

INSTANTIATE_TEST_SUITE_P(LightAndDark, WorkflowScreenshotTest,
                         ::testing::Combine(::testing::Bool(), ::testing::Values(1, 2)),
                         [](const auto& test) {
                             return std::string(std::get<0>(test.param) ? "Dark" : "Light") +
                                    "AtRatio" + std::to_string(std::get<1>(test.param));
                         });

}  // namespace
}  // namespace vantrokelui::sharedui
