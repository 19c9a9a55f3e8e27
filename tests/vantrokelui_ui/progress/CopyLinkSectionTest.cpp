#include <vantrokelui/view/CopyLinkSection.h>

#include <string>
#include <vector>

#include <QAccessible>

#include <gtest/gtest.h>

#include <kelappsupport/analytics/UsageEventsCapturedForTesting.h>
#include <kelcore/utility/OpenFileInDefaultApplication.h>
#include <kelui/controls/UI_Button.h>
#include <kelui/datatransfer/Clipboard.h>
#include <kelui/datatransfer/ClipboardSendData.h>
#include <kelui/skins/Theme.h>
#include <kelui/ui/UI_PictureSupplyMessage.h>

#include "ProgressViewFixture.h"
#include "vantrokelui/support/RecordingToastManager.h"

namespace vantrokelui::view {
namespace {

using kelcore::geom::PointT;
using kelcore::geom::RectT;
using kelcore::string::string;
using testing::ProgressViewFixture;

class CopyLinkSectionTest : public ProgressViewFixture {
protected:
    void TearDown() override {
        kelui::skins::SetRunningV7OrBeyond(true);
        kelcore::utility::SetDefaultApplicationOpener({});
        ProgressViewFixture::TearDown();
    }

    /// The row in the window, 310 wide at the column's left edge.
    boost::intrusive_ptr<CopyLinkSection> MakeRow() {
        boost::intrusive_ptr<CopyLinkSection> row(new CopyLinkSection(viewModel));
        root->ChildPushBack(row);
        row->UI_SetLocalRectF({15.0f, 40.0f, 310.0f, 20.0f});
        Pump();
        return row;
    }

    const std::vector<kelappsupport::analytics::SDMEvent::Field> kDialogPath{
        {"kel", "ui_path_to_access", "click:vantro-share-for-review-dialog"}};
};

QString AccessibleName(QWidget* widget) {
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(widget);
    return accessible ? accessible->text(QAccessible::Name) : QString();
}

TEST_F(CopyLinkSectionTest, ShowsTheLinkAsItWasWhenTheRowWasMade) {
    const auto row = MakeRow();

    viewModel->SetReviewLinkURL(u"http://service.invalid/r/Later");
    Pump();

    EXPECT_EQ(row->GetLinkText()->GetText(), kLink);
    EXPECT_EQ(row->GetLinkText()->GetURL(), "http://service.invalid/r/Ab12");
    EXPECT_EQ(row->GetLinkText()->GetTextTruncation(), limner::TextTruncation::End);
    EXPECT_TRUE(row->GetLinkText()->UI_IsShown());
    EXPECT_EQ(AccessibleName(row->GetLinkText()->GetWidget()),
              QStringLiteral("http://service.invalid/r/Ab12"));
}

TEST_F(CopyLinkSectionTest, HoldsTheLinkThenTheCopyButtonAndNothingElse) {
    const auto row = MakeRow();

    ASSERT_EQ(row->ChildCount(), 2u);
    EXPECT_EQ(row->ChildAt(0), row->GetLinkText());
    EXPECT_EQ(row->ChildAt(1), row->GetCopyButton());
    EXPECT_TRUE(row->UI_IsShown());
    EXPECT_TRUE(row->GetCopyButton()->UI_IsShown());
    EXPECT_EQ(row->GetCopyButton()->GetText(), u"Copy link");
    EXPECT_EQ(AccessibleName(row->GetCopyButton()->GetWidget()), QStringLiteral("Copy link"));
}

TEST_F(CopyLinkSectionTest, TheCopyButtonShowsTheCopyIcon) {
    const auto row = MakeRow();
    const auto& supply = row->GetCopyButton()->GetImageSupplyFunction();
    ASSERT_NE(supply, nullptr);

    kelui::ui::UI_PictureSupplyMessage request;
    (*supply)(&request);

    EXPECT_EQ(request.GetIconName(), "S_Copy_16");
    EXPECT_NE(request.GetImage(), nullptr);
}

TEST_F(CopyLinkSectionTest, AsksForOneRowOfTheColumn) {
    boost::intrusive_ptr<CopyLinkSection> row(new CopyLinkSection(viewModel));
    EXPECT_EQ(sharedui::GetRecommendedSize(row), (PointT<float>{310.0f, 20.0f}));
}

TEST_F(CopyLinkSectionTest, PlacesAShortLinkAtItsOwnWidthAndCopyAtTheRightEnd) {
    const auto row = MakeRow();

    const float linkWidth = sharedui::GetRecommendedSize(row->GetLinkText()).x;
    ASSERT_LT(linkWidth, CopyLinkSection::kMaxLinkWidth);
    EXPECT_EQ(row->GetLinkText()->UI_GetLocalRectF(), (RectT<float>{0.0f, 0.0f, linkWidth, 20.0f}));
    EXPECT_EQ(row->GetCopyButton()->UI_GetLocalRectF(), (RectT<float>{224.0f, 0.0f, 86.0f, 20.0f}));
    EXPECT_EQ(row->GetLinkText()->GetDisplayedText(), kLink);
}

TEST_F(CopyLinkSectionTest, CapsALongLinkAt196PixelsAndCutsItAtItsEnd) {
    const string longLink =
        u"http://service.invalid/r/" + string(60, u'x') + u"/review/with/a/long/tail";
    viewModel->SetReviewLinkURL(longLink);
    Pump();

    const auto row = MakeRow();

    EXPECT_EQ(row->GetLinkText()->UI_GetLocalRectF(), (RectT<float>{0.0f, 0.0f, 196.0f, 20.0f}));
    const string shown = row->GetLinkText()->GetDisplayedText();
    EXPECT_LT(shown.size(), longLink.size());
    EXPECT_EQ(shown.substr(0, 20), longLink.substr(0, 20));
    EXPECT_EQ(shown.back(), u'\u2026');
    EXPECT_EQ(row->GetLinkText()->GetURL(), kelcore::string::UTF16toStdString(longLink));
}

TEST_F(CopyLinkSectionTest, WithoutADrawingSupplierLeavesItsPartsWhereTheyAre) {
    boost::intrusive_ptr<CopyLinkSection> row(new CopyLinkSection(viewModel));

    row->UI_SetLocalRectF({15.0f, 40.0f, 310.0f, 20.0f});

    EXPECT_EQ(row->GetLinkText()->UI_GetLocalRectF(), RectT<float>{});
    EXPECT_EQ(row->GetCopyButton()->UI_GetLocalRectF(), RectT<float>{});
}

TEST_F(CopyLinkSectionTest, ClickingCopyPutsTheLinkOnTheClipboardAndSaysCopied) {
    vantrokelui::testing::RecordingToastManager toasts;
    kelappsupport::analytics::UsageEventsCapturedForTesting events;
    kelui::datatransfer::Clipboard::SendToClipboard(
        kelui::datatransfer::NewClipboardSendData(u"something else"));
    const auto row = MakeRow();

    Click(row->GetCopyButton());
    Pump();

    EXPECT_EQ(kelui::datatransfer::Clipboard::GetClipboardText(), kLink);
    const auto shown = toasts.Toasts();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].message, "Copied");
    EXPECT_TRUE(shown[0].buttonLabel.empty());
    EXPECT_EQ(shown[0].duration, kelui::sharedui::kToastManager_DefaultDurationInSeconds);
    EXPECT_EQ(shown[0].priority, kelui::sharedui::kToastManager_DefaultPriority);
    const auto logged = events.Events();
    ASSERT_EQ(logged.size(), 1u);
    EXPECT_EQ(logged[0].GetCategory(), "EXPORT");
    EXPECT_EQ(logged[0].GetSubcategory(), "Publish");
    EXPECT_EQ(logged[0].GetType(), "apply");
    EXPECT_EQ(logged[0].GetSubtype(), "copy-media-link");
    EXPECT_EQ(logged[0].GetFields(), kDialogPath);
}

TEST_F(CopyLinkSectionTest, SpaceOnTheFocusedCopyButtonCopiesToo) {
    vantrokelui::testing::RecordingToastManager toasts;
    const auto row = MakeRow();
    QWidget* button = row->GetCopyButton()->GetWidget();
    ASSERT_EQ(button->focusPolicy(), Qt::StrongFocus);

    button->setFocus(Qt::TabFocusReason);
    QTest::keyClick(button, Qt::Key_Space);
    Pump();

    EXPECT_EQ(kelui::datatransfer::Clipboard::GetClipboardText(), kLink);
    EXPECT_EQ(toasts.Toasts().size(), 1u);
}

TEST_F(CopyLinkSectionTest, ClickingTheLinkOpensTheReviewPage) {
    std::vector<std::string> opened;
    kelcore::utility::SetDefaultApplicationOpener([&opened](const std::string& url) {
        opened.push_back(url);
        return true;
    });
    const auto row = MakeRow();

    Click(row->GetLinkText());
    Pump();

    EXPECT_EQ(opened, std::vector<std::string>{"http://service.invalid/r/Ab12"});
}

TEST_F(CopyLinkSectionTest, InTheCurrentSkinTheCopyButtonIsQuietWithItsBoxAndBorderShown) {
    const auto row = MakeRow();
    const auto& copy = row->GetCopyButton();

    EXPECT_EQ(copy->GetButtonChromeType(), kelui::controls::UI_Button::kChromeQuiet);
    EXPECT_TRUE(copy->GetDisplayContainerAlways());
    EXPECT_TRUE(copy->GetDisplayBorderAlways());
    EXPECT_TRUE(copy->GetSpringLoaded());
    EXPECT_FALSE(copy->GetCommitAppearance());
}

TEST_F(CopyLinkSectionTest, InTheOlderSkinTheCopyButtonKeepsTheStandardChrome) {
    kelui::skins::SetRunningV7OrBeyond(false);
    const auto row = MakeRow();
    const auto& copy = row->GetCopyButton();

    EXPECT_EQ(copy->GetButtonChromeType(), kelui::controls::UI_Button::kChromeStandard);
    EXPECT_TRUE(copy->GetDisplayContainerAlways());
    EXPECT_TRUE(copy->GetDisplayBorderAlways());
}

}  // namespace
}  // namespace vantrokelui::view
