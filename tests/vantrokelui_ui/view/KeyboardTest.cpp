// The panel without a mouse: Tab reaches every control of a screen's header and of a dialog, and
// Esc closes the popup through its commit path (the view ID goes to 0).
#include <QApplication>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>
#include <QWidget>

#include <gtest/gtest.h>

#include <kelui/controls/UI_TextButton.h>
#include <kelui/ui/MainTopLevelWindow.h>
#include <kelui/ui/UI_HostWidgetNode.h>
#include <kelworkspace/workspace/QtTopLevelWindow.h>
#include <vantrokelui/sharedui/CallToActionButton.h>
#include <vantrokelui/sharedui/DialogManager.h>
#include <vantrokelui/sharedui/PopupManager.h>
#include <vantrokelui/view/MenuItems.h>
#include <vantrokelui/view/PopupBaseView.h>
#include <vantrokelui/view/ShareForReviewScreenManager.h>
#include <vantrokelui/view/WorkflowLabel.h>

#include "support/qt/QtMainThreadFixture.h"

namespace vantrokelui::view {
namespace {

using kelcore::geom::PointT;

// A screen with the header label (menu included) and one button, laid out like the panel's.
class HeaderScreen final : public PopupBaseView {
public:
    explicit HeaderScreen(std::shared_ptr<viewmodel::ShareForReviewViewModel> model)
        : PopupBaseView(model),
          label(new WorkflowLabel(nullptr, GetPreShowMenuFunction(), GetPostShowMenuFunction(),
                                  {MakeSignOutItem(model), MakeCreateNewLinkItem(model)})),
          button(new sharedui::CallToActionButton) {
        label->UI_Show(true);
        ChildPushBack(label);
        button->SetText(u"Share");
        button->UI_Show(true);
        ChildPushBack(button);
        UI_Show(true);
    }
    PointT<float> UI_GetRecommendedSize(limner::Limner&) override { return {340.0f, 70.0f}; }
    void UI_SizeChanged(const kelcore::geom::RectT<float>&) override {
        label->UI_SetLocalRectF({15.0f, 10.0f, 310.0f, 20.0f});
        button->UI_SetLocalRectF({245.0f, 40.0f, 80.0f, 24.0f});
    }

    boost::intrusive_ptr<WorkflowLabel> label;
    boost::intrusive_ptr<sharedui::CallToActionButton> button;
};

class KeyboardTest : public testsupport::QtMainThreadFixture {
protected:
    void SetUp() override {
        QtMainThreadFixture::SetUp();
        window.setGeometry(100, 100, 700, 400);
        auto* layout = new QVBoxLayout(&window);
        shareButton = new QPushButton(QStringLiteral("Share"), &window);
        layout->addWidget(shareButton, 0, Qt::AlignRight | Qt::AlignTop);
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
        viewModel = viewmodel::ShareForReviewViewModel::Create();
        // The popup remembers its anchor weakly: the host keeps the node, as a host would.
        anchor.reset(new kelui::ui::UI_HostWidgetNode(shareButton));
    }
    void TearDown() override {
        anchor.reset();
        viewModel.reset();
        QtMainThreadFixture::TearDown();
    }

    QWidget window;
    QPushButton* shareButton = nullptr;
    boost::intrusive_ptr<kelui::ui::UI_HostWidgetNode> anchor;
    std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel;
};

TEST_F(KeyboardTest, TabReachesTheHeadersMenuAndTheScreensButtonInThePopup) {
    auto popup = std::make_shared<sharedui::PopupManager>();
    popup->SetAnchorNode(anchor);
    boost::intrusive_ptr<HeaderScreen> screen(new HeaderScreen(viewModel));
    popup->AddSection(0, screen);
    popup->ShowWorkflow();
    Pump();
    QWidget* popupWindow = popup->GetPopupContainer()->GetWidget();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(popupWindow));

    const QWidget* menu = screen->label->GetMenuPopup()->GetWidget();
    const QWidget* button = screen->button->GetWidget();
    std::vector<const QWidget*> reached;
    for (int i = 0; i < 4; ++i) {
        QWidget* focus = popupWindow->focusWidget();
        QTest::keyClick(focus ? focus : popupWindow, Qt::Key_Tab);
        reached.push_back(popupWindow->focusWidget());
    }
    EXPECT_NE(std::find(reached.begin(), reached.end(), menu), reached.end());
    EXPECT_NE(std::find(reached.begin(), reached.end(), button), reached.end());
}

TEST_F(KeyboardTest, EscClosesThePopupThroughTheCommitPath) {
    auto popup = std::make_shared<sharedui::PopupManager>();
    popup->SetAnchorNode(anchor);
    const auto screens = CreateShareForReviewScreenManager(viewModel, popup);
    viewModel->SetCurrentViewID(ShareForReviewViewID::ReviewInVantro);
    Pump();
    ASSERT_TRUE(popup->GetPopupContainer()->IsPopupShown());

    QWidget* popupWindow = popup->GetPopupContainer()->GetWidget();
    QWidget* focus = popupWindow->focusWidget();
    QTest::keyClick(focus ? focus : popupWindow, Qt::Key_Escape);
    Pump();
    EXPECT_EQ(viewModel->GetCurrentViewID(), ShareForReviewViewID::None);
    EXPECT_FALSE(popup->GetPopupContainer()->IsPopupShown());
}

TEST_F(KeyboardTest, TabMovesBetweenTheDialogsButtons) {
    const auto registered = std::make_shared<kelworkspace::workspace::QtTopLevelWindow>(&window);
    kelui::ui::SetMainTopLevelWindow(registered);
    DialogManager manager;
    boost::intrusive_ptr<kelui::ui::UI_SubView> view(new kelui::ui::UI_SubView);
    boost::intrusive_ptr<kelui::controls::UI_TextButton> cancel(new kelui::controls::UI_TextButton);
    boost::intrusive_ptr<kelui::controls::UI_TextButton> choose(new kelui::controls::UI_TextButton);
    cancel->SetText(u"Cancel");
    cancel->UI_SetNodeID("LocationPickerCancel");
    choose->SetText(u"Choose");
    choose->UI_SetNodeID("LocationPickerCommit");
    for (const auto& button : {cancel, choose}) {
        button->UI_Show(true);
        view->ChildPushBack(button);
    }
    view->UI_SetLocalRectF({0.0f, 0.0f, 340.0f, 40.0f});
    cancel->UI_SetLocalRectF({150.0f, 8.0f, 80.0f, 24.0f});
    choose->UI_SetLocalRectF({245.0f, 8.0f, 80.0f, 24.0f});
    manager.SetDialogButtons(view, "LocationPickerCancel", "LocationPickerCommit");
    manager.AddSection(0, view);

    std::vector<const QWidget*> reached;
    QTimer::singleShot(0, [&] {
        QWidget* dialog = QApplication::activeModalWidget();
        ASSERT_TRUE(QTest::qWaitForWindowActive(dialog));
        for (int i = 0; i < 3; ++i) {
            QWidget* focus = dialog->focusWidget();
            QTest::keyClick(focus ? focus : dialog, Qt::Key_Tab);
            reached.push_back(dialog->focusWidget());
        }
        QTest::keyClick(dialog, Qt::Key_Escape);
    });
    manager.ShowWorkflow();
    kelui::ui::SetMainTopLevelWindow({});

    EXPECT_NE(std::find(reached.begin(), reached.end(), cancel->GetWidget()), reached.end());
    EXPECT_NE(std::find(reached.begin(), reached.end(), choose->GetWidget()), reached.end());
}

}  // namespace
}  // namespace vantrokelui::view
