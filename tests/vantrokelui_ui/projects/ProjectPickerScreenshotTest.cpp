// Renders the location picker's project step as the popup shows it (a main view holding one
// section) to PNG files, light and dark, at device pixel ratio 1 and 2, with the "Riverside
// Studio" account proposed and one of its projects holding the proposal. Checks what a picture
// can prove: the current project's row is highlighted in palette gray 4, the rows below it are
// not, and Choose is drawn at the column's right edge.
#include <filesystem>
#include <string>
#include <tuple>

#include <QApplication>
#include <QImage>
#include <QPalette>
#include <QStyle>
#include <QWidget>

#include <gtest/gtest.h>

#include "support/qt/Screenshots.h"

#include <kelui/ui/QtConversions.h>
#include <vantrokelui/sharedui/Measuring.h>
#include <vantrokelui/sharedui/WorkflowMainView.h>
#include <vantrokelui/sharedui/WorkflowSectionView.h>
#include <vantrokelui/view/LocationPickerView.h>

#include "LocationPickerFixture.h"

namespace vantrokelui::view::testing {
namespace {

using kelcore::geom::PointT;

class ProjectPickerScreenshotTest : public LocationPickerFixture,
                                    public ::testing::WithParamInterface<std::tuple<bool, int>> {
protected:
    void TearDown() override {
        QApplication::setPalette(QApplication::style()->standardPalette());
        LocationPickerFixture::TearDown();
    }
};

TEST_P(ProjectPickerScreenshotTest, TheProjectStepInsideThePopupsSection) {
    const auto [dark, ratio] = GetParam();
    if (dark) {
        QApplication::setPalette(testsupport::DarkPalette());
    }
    tree.user->SetSelection(tree.spring.folder);
    tree.user->SetProposedAccount(tree.studio);
    tree.user->SetProposedSelection(tree.spring.folder);
    Pump();

    boost::intrusive_ptr<LocationPickerView> screen(new LocationPickerView(viewModel));
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
    ASSERT_EQ(size, (PointT<float>{342.0f, 394.0f}));
    main->UI_SetLocalRectF({0.0f, 0.0f, size.x, size.y});
    QWidget* widget = main->GetWidget();
    widget->setAttribute(Qt::WA_DontShowOnScreen, true);
    widget->show();
    Pump();

    QImage image(static_cast<int>(size.x) * ratio, static_cast<int>(size.y) * ratio,
                 QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    widget->render(&image);

    const std::string file = std::string("location-picker-projects-") + (dark ? "dark" : "light") +
                             "@" + std::to_string(ratio) + "x.png";
    const auto directory = std::filesystem::path(VANTRO_TEST_OUTPUT_DIR) / "screenshots";
    std::filesystem::create_directories(directory);
    ASSERT_TRUE(image.save(QString::fromStdString((directory / file).string())));
    const std::filesystem::path shots("/tmp/keluiqt-shots/projects");
    std::filesystem::create_directories(shots);
    std::filesystem::copy_file(directory / file, shots / file,
                               std::filesystem::copy_options::overwrite_existing);

    // Rows in window coordinates: main (1, 1) + picker (0, 27) + scroll view + section + row.
    const auto theme = main->UI_GetDrawSupplier()->GetTheme();
    const QRgb highlight = kelui::ui::ToQColor(kelui::skins::GetPaletteGrayColor(theme, 4)).rgb();
    const auto& picker = screen->GetProjectPicker();
    const auto scroll = picker->GetScrollView()->UI_GetLocalRectF();
    const auto rowAt = [&](const boost::intrusive_ptr<ProjectListItem>& row) {
        const auto sectionRect = row->UI_GetParentNode()->UI_GetLocalRectF();
        const auto rect = row->UI_GetLocalRectF();
        return QPoint(static_cast<int>(1.0f + scroll.x + sectionRect.x + rect.x + 200.0f),
                      static_cast<int>(1.0f + 27.0f + scroll.y + sectionRect.y + rect.y + 2.0f));
    };
    const auto rows = picker->GetRows();
    ASSERT_EQ(rows.size(), 4u);
    ASSERT_TRUE(rows[2]->IsCurrentProject());  // Spring Campaign, sorted third
    EXPECT_EQ(image.pixelColor(rowAt(rows[2]) * ratio).rgb(), highlight);
    EXPECT_NE(image.pixelColor(rowAt(rows[1]) * ratio).rgb(), highlight);
    EXPECT_NE(image.pixelColor(rowAt(rows[3]) * ratio).rgb(), highlight);

    const auto choose = screen->GetChooseButton()->UI_GetLocalRectF();
    EXPECT_EQ(choose.x + choose.width, 325.0f);
    const QRgb background = kelui::ui::ToQColor(kelui::skins::GetPaletteGrayColor(theme, 1)).rgb();
    const QPoint chooseCentre(static_cast<int>(1.0f + choose.x + choose.width / 2.0f),
                              static_cast<int>(1.0f + choose.y + 3.0f));
    EXPECT_NE(image.pixelColor(chooseCentre * ratio).rgb(), background);

    widget->hide();
    main->ChildRemove(section);
}

INSTANTIATE_TEST_SUITE_P(LightAndDark, ProjectPickerScreenshotTest,
                         ::testing::Combine(::testing::Bool(), ::testing::Values(1, 2)),
                         [](const auto& param) {
                             return std::string(std::get<0>(param.param) ? "Dark" : "Light") +
                                    "AtRatio" + std::to_string(std::get<1>(param.param));
                         });

}  // namespace
}  // namespace vantrokelui::view::testing
