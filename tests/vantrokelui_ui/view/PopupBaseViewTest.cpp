#include <vantrokelui/view/PopupBaseView.h>

#include <QTest>
#include <QWidget>

#include <gtest/gtest.h>

#include <kelappsupport/analytics/UsageEventsCapturedForTesting.h>
#include <kelui/controls/UI_TouchPopupContainer.h>
#include <kelui/ui/UI_HostWidgetNode.h>
#include <kelui/ui/UI_NodeManager.h>

#include "support/qt/QtMainThreadFixture.h"

namespace vantrokelui::view {
namespace {

using ViewID = ShareForReviewViewID;
using kelcore::geom::PointT;

// A screen with one clickable area and a popup whose menu functions are the screen's.
class TestScreen final : public PopupBaseView {
public:
    explicit TestScreen(std::shared_ptr<viewmodel::ShareForReviewViewModel> model)
        : PopupBaseView(std::move(model)), area(new kelui::ui::UI_SubView) {
        area->UI_Show(true);
        ChildPushBack(area);
        area->UI_SetLocalRectF({15.0f, 10.0f, 100.0f, 20.0f});
        UI_Show(true);
    }
    PointT<float> UI_GetRecommendedSize(limner::Limner&) override { return {340.0f, 40.0f}; }
    using PopupBaseView::GetPostShowMenuFunction;
    using PopupBaseView::GetPreShowMenuFunction;

    boost::intrusive_ptr<kelui::ui::UI_SubView> area;
};

class PopupBaseViewTest : public testsupport::QtMainThreadFixture {
protected:
    void SetUp() override {
        QtMainThreadFixture::SetUp();
        viewModel = viewmodel::ShareForReviewViewModel::Create();
        screen.reset(new TestScreen(viewModel));
        root->UI_SetDrawSupplier(kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier());
        root->GetWidget()->setGeometry(100, 100, 340, 40);
        root->ChildPushBack(screen);
        screen->UI_SetLocalRectF({0.0f, 0.0f, 340.0f, 40.0f});
        root->GetWidget()->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(root->GetWidget()));
    }
    void TearDown() override {
        screen.reset();
        root.reset();
        viewModel.reset();
        QtMainThreadFixture::TearDown();
    }

    std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel;
    boost::intrusive_ptr<kelui::ui::UI_SubView> root{new kelui::ui::UI_SubView};
    boost::intrusive_ptr<TestScreen> screen;
};

TEST_F(PopupBaseViewTest, APressOnANavigatingControlGoesToItsTargetAndReportsThePickerOpened) {
    screen->SetClickNavigation(screen->area, ViewID::SelectProject);
    for (const bool newLink : {false, true}) {
        viewModel->EnableCurrentViewIDMessages(true);
        viewModel->SetCurrentViewID(ViewID::ReviewInVantro);
        viewModel->SetCreateNewLinkMode(newLink);
        kelappsupport::analytics::UsageEventsCapturedForTesting events;

        QTest::mousePress(screen->area->GetWidget(), Qt::LeftButton, {}, QPoint(5, 5));
        Pump();

        EXPECT_EQ(viewModel->GetCurrentViewID(), ViewID::SelectProject);
        const auto captured = events.Events();
        ASSERT_FALSE(captured.empty());
        EXPECT_EQ(captured.back().GetSubtype(), "vantro-location-picker");
        ASSERT_EQ(captured.back().GetFields().size(), 1u);
        EXPECT_EQ(captured.back().GetFields()[0].value,
                  newLink ? "click:update-share-view" : "click:first-time-share-view");
        QTest::mouseRelease(screen->area->GetWidget(), Qt::LeftButton, {}, QPoint(5, 5));
    }
}

TEST_F(PopupBaseViewTest, ATargetOutsideThePickerSendsNoUsageEvent) {
    screen->SetClickNavigation(screen->area, ViewID::SigninPrompt);
    kelappsupport::analytics::UsageEventsCapturedForTesting events;
    QTest::mouseClick(screen->area->GetWidget(), Qt::LeftButton, {}, QPoint(5, 5));
    Pump();
    EXPECT_EQ(viewModel->GetCurrentViewID(), ViewID::SigninPrompt);
    EXPECT_TRUE(events.Events().empty());
}

TEST_F(PopupBaseViewTest, OnlyAPressNavigatesAndOnlyItIsHandled) {
    kelui::ui::MouseEvent move(kelui::ui::PointerEvent::kMove, 0, {1.0f, 1.0f}, 0);
    bool handled = true;
    EXPECT_FALSE(screen->OnNavigationClick(screen->area.get(), move, handled, ViewID::Offline));
    EXPECT_FALSE(handled);
    EXPECT_NE(viewModel->GetCurrentViewID(), ViewID::Offline);

    kelui::ui::MouseEvent press(kelui::ui::PointerEvent::kDown, 1, {1.0f, 1.0f}, 0);
    EXPECT_TRUE(screen->OnNavigationClick(screen->area.get(), press, handled, ViewID::Offline));
    EXPECT_TRUE(handled);
    EXPECT_EQ(viewModel->GetCurrentViewID(), ViewID::Offline);
}

TEST_F(PopupBaseViewTest, TheTargetIsFixedWhenTheNavigationIsSet) {
    ViewID target = ViewID::SelectFolder;
    screen->SetClickNavigation(screen->area, target);
    target = ViewID::SelectProject;
    QTest::mouseClick(screen->area->GetWidget(), Qt::LeftButton, {}, QPoint(5, 5));
    Pump();
    EXPECT_EQ(viewModel->GetCurrentViewID(), ViewID::SelectFolder);
}

TEST_F(PopupBaseViewTest, MenuFunctionsMarkTheEnclosingPopupWhileAMenuShows) {
    QWidget anchorWidget;
    boost::intrusive_ptr<kelui::ui::UI_HostWidgetNode> anchor(
        new kelui::ui::UI_HostWidgetNode(&anchorWidget));
    boost::intrusive_ptr<kelui::controls::UI_TouchPopupContainer> container(
        new kelui::controls::UI_TouchPopupContainer(nullptr, anchor, false, true, false, 2, true));
    container->GetContainer()->ChildPushBack(screen);

    kelui::controls::UI_Popup popup;
    screen->GetPreShowMenuFunction()(popup);
    EXPECT_TRUE(container->IsChildMenuShowing());
    screen->GetPostShowMenuFunction()(popup);
    EXPECT_FALSE(container->IsChildMenuShowing());
}

TEST_F(PopupBaseViewTest, MenuFunctionsOutsideAnyPopupDoNothing) {
    kelui::controls::UI_Popup popup;
    EXPECT_NO_THROW(screen->GetPreShowMenuFunction()(popup));
    EXPECT_NO_THROW(screen->GetPostShowMenuFunction()(popup));
}

TEST_F(PopupBaseViewTest, MenuFunctionsOfAScreenThatIsGoneDoNothing) {
    auto pre = screen->GetPreShowMenuFunction();
    root->ChildRemove(screen);
    screen.reset();
    kelui::controls::UI_Popup popup;
    EXPECT_NO_THROW(pre(popup));
}

}  // namespace
}  // namespace vantrokelui::view
