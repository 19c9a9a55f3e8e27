#include <vantrokelui/view/WorkflowLabel.h>

#include <cmath>

#include <QApplication>
#include <QFont>
#include <QFontMetricsF>
#include <QMenu>
#include <QTest>

#include <gtest/gtest.h>

#include <kelui/ui/UI_NodeManager.h>
#include <kelui/ui/UI_PictureSupplyMessage.h>
#include <vantrokelui/sharedui/Measuring.h>
#include <vantrokelui/sharedui/ResourceManager.h>

#include "support/qt/QtMainThreadFixture.h"

namespace vantrokelui::view {
namespace {

using kelcore::geom::PointT;
using kelcore::geom::RectT;

class WorkflowLabelTest : public testsupport::QtMainThreadFixture {
protected:
    void TearDown() override {
        QApplication::setFont(originalFont);
        QtMainThreadFixture::TearDown();
    }

    /// A label inside a tree that has a drawing supplier, laid out where screens put it.
    boost::intrusive_ptr<WorkflowLabel> MakeLabel(
        const std::shared_ptr<std::function<void(kelui::ui::ConstMessage*)>>& icon,
        std::vector<MenuItem> items) {
        boost::intrusive_ptr<WorkflowLabel> label(new WorkflowLabel(icon, nullptr, nullptr, items));
        root->ChildPushBack(label);
        label->UI_Show(true);
        label->UI_SetLocalRectF({15.0f, 10.0f, 310.0f, 20.0f});
        return label;
    }

    static float BoldTitleWidth() {
        QFont bold = QApplication::font();
        bold.setBold(true);
        return static_cast<float>(
            std::ceil(QFontMetricsF(bold).horizontalAdvance(QStringLiteral("Share for review:"))));
    }

    static std::shared_ptr<std::function<void(kelui::ui::ConstMessage*)>> Icon() {
        return sharedui::BindImageSupplyFunction("S_Sequence_16", &sharedui::GetResourceManager);
    }

    static MenuItem Item(const char16_t* label, bool enabled, std::function<void()> action = {}) {
        return MenuItem{std::move(action), enabled, label};
    }

    QFont originalFont = QApplication::font();
    boost::intrusive_ptr<kelui::ui::UI_SubView> root = [] {
        boost::intrusive_ptr<kelui::ui::UI_SubView> view(new kelui::ui::UI_SubView);
        view->UI_SetDrawSupplier(kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier());
        view->UI_Show(true);
        return view;
    }();
};

TEST_F(WorkflowLabelTest, AlwaysRecommends310By20) {
    auto label = MakeLabel(nullptr, {});
    EXPECT_EQ(sharedui::GetRecommendedSize(label), (PointT<float>{310.0f, 20.0f}));
}

TEST_F(WorkflowLabelTest, ALabelWithoutAnIconShowsTheNameInItalicsEightBehindTheTitle) {
    auto label = MakeLabel(nullptr, {Item(u"Sign out", true)});
    const float titleWidth = BoldTitleWidth();
    ASSERT_LT(titleWidth, WorkflowLabel::kTitleMaxWidth);

    EXPECT_EQ(label->GetTitleText()->UI_GetLocalRectF(),
              (RectT<float>{0.0f, 2.5f, titleWidth, 14.0f}));
    EXPECT_EQ(label->GetTitleText()->GetFontStyleName(), "Bold");
    EXPECT_FALSE(label->GetIconImage()->UI_IsShown());
    EXPECT_EQ(label->GetNameText()->GetFontStyleName(), "Italic");
    const float x = titleWidth + 8.0f;
    EXPECT_EQ(label->GetIconImage()->UI_GetLocalRectF(), (RectT<float>{x, 1.0f, 14.0f, 14.0f}));
    EXPECT_EQ(label->GetNameText()->UI_GetLocalRectF(),
              (RectT<float>{x, 2.5f, 310.0f - x - 26.0f, 14.0f}));
    EXPECT_EQ(label->GetMenuPopup()->UI_GetLocalRectF(),
              (RectT<float>{292.0f, 1.0f, 18.0f, 18.0f}));
}

TEST_F(WorkflowLabelTest, ALabelWithAnIconShowsTheNameTwentyEightBehindTheTitle) {
    auto label = MakeLabel(Icon(), {});
    const float titleWidth = BoldTitleWidth();
    EXPECT_TRUE(label->GetIconImage()->UI_IsShown());
    EXPECT_NE(label->GetNameText()->GetFontStyleName(), "Italic");
    EXPECT_EQ(label->GetIconImage()->UI_GetLocalRectF(),
              (RectT<float>{titleWidth + 8.0f, 1.0f, 14.0f, 14.0f}));
    const float x = titleWidth + 28.0f;
    // Without menu items the menu is hidden and the name runs 26 wider.
    EXPECT_FALSE(label->GetMenuPopup()->UI_IsShown());
    EXPECT_EQ(label->GetNameText()->UI_GetLocalRectF(), (RectT<float>{x, 2.5f, 310.0f - x, 14.0f}));
    EXPECT_EQ(label->GetMenuPopup()->UI_GetLocalRectF(),
              (RectT<float>{292.0f, 1.0f, 18.0f, 18.0f}));
}

TEST_F(WorkflowLabelTest, ATitleWiderThan155IsCutTo155AndTheIconStillStandsEightBehindIt) {
    QFont large = QApplication::font();
    large.setPixelSize(40);
    QApplication::setFont(large);
    ASSERT_GT(BoldTitleWidth(), 155.0f);

    auto label = MakeLabel(Icon(), {});
    EXPECT_EQ(label->GetTitleText()->UI_GetLocalRectF(), (RectT<float>{0.0f, 2.5f, 155.0f, 14.0f}));
    EXPECT_EQ(label->GetIconImage()->UI_GetLocalRectF(),
              (RectT<float>{163.0f, 1.0f, 14.0f, 14.0f}));
    EXPECT_EQ(label->GetNameText()->UI_GetLocalRectF().x, 183.0f);
}

TEST_F(WorkflowLabelTest, AMenuWithAllItemsDisabledIsStillVisible) {
    auto label = MakeLabel(nullptr, {Item(u"One", false), Item(u"Two", false)});
    EXPECT_TRUE(label->GetMenuPopup()->UI_IsShown());
    EXPECT_EQ(label->GetMenuPopup()->GetItemCount(), 2);
    EXPECT_FALSE(label->GetMenuPopup()->IsItemEnabled(0));
    EXPECT_FALSE(label->GetMenuPopup()->IsItemEnabled(1));
    EXPECT_EQ(label->GetMenuPopup()->GetButtonChromeType(), 10u);
}

TEST_F(WorkflowLabelTest, TheTitleIsTheLocalisedShareForReview) {
    auto label = MakeLabel(nullptr, {});
    EXPECT_EQ(label->GetTitleText()->GetText(), u"Share for review:");
    EXPECT_EQ(label->GetNameText()->GetTextTruncation(), limner::TextTruncation::End);
}

TEST_F(WorkflowLabelTest, SetNameShowsTheName) {
    auto label = MakeLabel(nullptr, {});
    label->SetName(u"Sequence 01");
    EXPECT_EQ(label->GetNameText()->GetText(), u"Sequence 01");
}

TEST_F(WorkflowLabelTest, ChoosingAMenuEntryRunsItsActionAndTheMenuRestsOnNoEntry) {
    int first = 0;
    int second = 0;
    auto label = MakeLabel(nullptr, {Item(u"First", true, [&] { ++first; }),
                                     Item(u"Second", true, [&] { ++second; })});
    auto& popup = *label->GetMenuPopup();
    root->GetWidget()->setAttribute(Qt::WA_DontShowOnScreen, true);
    root->GetWidget()->show();
    popup.ShowMenu();
    ASSERT_TRUE(popup.IsMenuShowing());
    QTest::keyClick(popup.GetMenu(), Qt::Key_Down);
    QTest::keyClick(popup.GetMenu(), Qt::Key_Down);
    QTest::keyClick(popup.GetMenu(), Qt::Key_Return);
    Pump();
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 1);
    EXPECT_EQ(popup.GetValue(), -1);
}

TEST_F(WorkflowLabelTest, ASupplyFunctionAnswersWithTheNamedIconOfTheLibrarysArtwork) {
    const auto supply =
        sharedui::BindImageSupplyFunction("MoreSmallList_18", &sharedui::GetResourceManager);
    kelui::ui::UI_PictureSupplyMessage request;
    (*supply)(&request);
    ASSERT_NE(request.GetImage(), nullptr);
    EXPECT_EQ(request.GetIconName(), "MoreSmallList_18");
    EXPECT_EQ(request.GetImage()->GetWidth(), 18.0f);
    EXPECT_EQ(request.GetImage()->GetHeight(), 18.0f);
}

TEST_F(WorkflowLabelTest, TheLibraryCarriesItsTwoModuleImagesUnderTheirResourceNames) {
    auto& resources = sharedui::GetResourceManager();
    for (const char* name : {"S_VANTROINLINELOGO_LG_N_D_AT_2X", "S_VANTROPROJECTNAME_16_N_D_AT_2X",
                             "VantroInlineLogo_Lg", "S_VantroProjectName_16"}) {
        EXPECT_TRUE(resources.HasImage(name)) << name;
    }
    EXPECT_EQ(resources.GetImage("S_VANTROPROJECTNAME_16_N_D_AT_2X")->GetWidth(), 16.0f);
}

}  // namespace
}  // namespace vantrokelui::view
