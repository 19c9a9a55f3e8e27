#include "PanelFlowFixture.h"

#include "support/qt/Screenshots.h"

#include <cstdio>
#include <set>

#include <QColor>

#include <vantrokelui/nodes/VantroFolder.h>
#include <vantrokelui/view/ReviewInVantroView.h>

namespace vantrokelui::view::testing {

void PanelFlowFixture::ChooseReviewsAsLocation() {
    const auto share = Screen<ReviewInVantroView>();
    ASSERT_NE(share, nullptr) << "the location is chosen from the share screen";
    ASSERT_TRUE(Click(share->GetLocationButton()));
    ASSERT_TRUE(AwaitView(viewModel->GetUser()->GetSelection() ? ViewID::SelectFolder
                                                               : ViewID::SelectProject));
    // The picker's screen is not built yet: what its project row, folder row and Commit do is
    // done here on the view model, in the order the picker does it.
    const auto reviews = AwaitFolder(Guid(folder));
    ASSERT_NE(reviews, nullptr) << "the tree never held \"Reviews\"";
    viewModel->SetCurrentViewID(ViewID::SelectFolder);
    viewModel->GetUser()->SetSelection(reviews);
    viewModel->LocationPickerSelectionCommitted();
    ASSERT_TRUE(AwaitView(ViewID::ReviewInVantro));
}

void PanelFlowFixture::Shoot(const std::string& step, bool dark, int ratio) {
    QWidget* window = PopupWindow();
    ASSERT_NE(window, nullptr) << "no popup to render for " << step;
    ASSERT_TRUE(PopupShown()) << "the popup is hidden at " << step;
    if (dark) {
        QApplication::setPalette(testsupport::DarkPalette());
    }
    SettlePanel();
    QImage image(window->size() * ratio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    window->render(&image);
    if (dark) {
        QApplication::setPalette(QApplication::style()->standardPalette());
        SettlePanel();
    }

    std::string name = "flow-" + step + (dark ? "-dark" : "");
    if (ratio != 1) {
        name += "@" + std::to_string(ratio) + "x";
    }
    name += ".png";
    const auto directory = std::filesystem::path(VANTRO_TEST_OUTPUT_DIR) / "screenshots";
    std::filesystem::create_directories(directory);
    const auto file = directory / name;
    ASSERT_TRUE(image.save(QString::fromStdString(file.string()))) << file;
    const std::filesystem::path copies("/tmp/keluiqt-shots/e2e");
    std::filesystem::create_directories(copies);
    std::filesystem::copy_file(file, copies / name,
                               std::filesystem::copy_options::overwrite_existing);

    // A picture of one colour would mean that nothing was drawn.
    std::set<QRgb> colours;
    for (int y = 0; y < image.height() && colours.size() < 3; y += 3) {
        for (int x = 0; x < image.width() && colours.size() < 3; x += 3) {
            colours.insert(image.pixel(x, y));
        }
    }
    EXPECT_GE(colours.size(), 3u) << name << " is blank";
}

void SetStorageUsed(const std::filesystem::path& dataDir, const std::string& account,
                    std::uint64_t used) {
    const std::string command = "sqlite3 '" + (dataDir / "vantro.db").string() +
                                "' \"UPDATE accounts SET storage_used = " + std::to_string(used) +
                                " WHERE id = '" + account + "'\"";
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
}

std::string Text(const boost::json::value& value) {
    return value.is_string() ? std::string(value.as_string()) : std::string();
}

}  // namespace vantrokelui::view::testing
