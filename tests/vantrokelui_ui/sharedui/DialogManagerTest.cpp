#include <vantrokelui/sharedui/DialogManager.h>

#include <QApplication>
#include <QDialog>
#include <QTest>
#include <QTimer>
#include <QWidget>

#include <gtest/gtest.h>

#include <kelcore/config/kel_exception.h>
#include <kelui/controls/UI_TextButton.h>
#include <kelui/ui/MainTopLevelWindow.h>
#include <kelworkspace/workspace/QtTopLevelWindow.h>
#include <vantroclient/VantroUser.h>
#include <vantrokelui/sharedui/CreatePopupWorkflow.h>
#include <vantrokelui/sharedui/Measuring.h>
#include <vantrokelui/sharedui/ShowSelectLocationDialogCentered.h>
#include <vantrokelui/viewmodel/ShareForReviewViewModel.h>

#include "support/qt/QtMainThreadFixture.h"

namespace vantrokelui::view {
namespace {

using kelcore::geom::PointT;
using kelcore::geom::RectT;

class FixedView final : public kelui::ui::UI_SubView {
public:
    FixedView(float width, float height) : size{width, height} {}
    PointT<float> UI_GetRecommendedSize(limner::Limner&) override { return size; }
    PointT<float> size;
};

// A view with the two dialog buttons a location picker has, under their node ids.
boost::intrusive_ptr<FixedView> ViewWithButtons(bool commitIsAButton = true) {
    boost::intrusive_ptr<FixedView> view(new FixedView(340.0f, 60.0f));
    boost::intrusive_ptr<kelui::controls::UI_TextButton> cancel(new kelui::controls::UI_TextButton);
    cancel->SetText(u"Cancel");
    cancel->UI_SetNodeID("LocationPickerCancel");
    view->ChildPushBack(cancel);
    if (commitIsAButton) {
        boost::intrusive_ptr<kelui::controls::UI_TextButton> commit(
            new kelui::controls::UI_TextButton);
        commit->SetText(u"Choose");
        commit->UI_SetNodeID("LocationPickerCommit");
        view->ChildPushBack(commit);
    } else {
        boost::intrusive_ptr<kelui::ui::UI_SubView> notAButton(new kelui::ui::UI_SubView);
        notAButton->UI_SetNodeID("LocationPickerCommit");
        view->ChildPushBack(notAButton);
    }
    return view;
}

class DialogManagerTest : public testsupport::QtMainThreadFixture {
protected:
    void SetUp() override {
        QtMainThreadFixture::SetUp();
        mainWindow.setGeometry(100, 100, 900, 600);
        mainWindow.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&mainWindow));
        registered = std::make_shared<kelworkspace::workspace::QtTopLevelWindow>(&mainWindow);
        kelui::ui::SetMainTopLevelWindow(registered);
    }
    void TearDown() override {
        kelui::ui::SetMainTopLevelWindow({});
        QtMainThreadFixture::TearDown();
    }

    /// Closes the modal dialog that is about to run with `key`, from inside its loop.
    static void PressInNextModal(Qt::Key key) {
        QTimer::singleShot(0, [key] {
            QWidget* modal = QApplication::activeModalWidget();
            ASSERT_NE(modal, nullptr);
            QTest::keyClick(modal, key);
        });
    }

    QWidget mainWindow;
    std::shared_ptr<kelworkspace::workspace::QtTopLevelWindow> registered;
};

TEST_F(DialogManagerTest, ASectionAroundAViewWithoutASizeStartsHidden) {
    DialogManager manager;
    boost::intrusive_ptr<FixedView> unsized(new FixedView(340.0f, 60.0f));
    boost::intrusive_ptr<FixedView> sized(new FixedView(340.0f, 60.0f));
    sized->UI_SetLocalRectF({0.0f, 0.0f, 340.0f, 60.0f});
    EXPECT_FALSE(manager.AddSection(0, unsized)->UI_IsShown());
    EXPECT_TRUE(manager.AddSection(0, sized)->UI_IsShown());
    EXPECT_FALSE(manager.GetMainView()->UI_IsShown());
}

TEST_F(DialogManagerTest, WithOneButtonIdentifierMissingNeitherButtonIsStored) {
    DialogManager manager;
    const auto view = ViewWithButtons();
    manager.SetDialogButtons(view, "LocationPickerCancel", "NoSuchNode");
    EXPECT_EQ(manager.GetCancelButton(), nullptr);
    EXPECT_EQ(manager.GetCommitButton(), nullptr);

    // And the dialog gets no buttons: Enter does not commit it, Esc still cancels.
    manager.AddSection(0, view);
    PressInNextModal(Qt::Key_Escape);
    manager.ShowWorkflow();
    ASSERT_NE(manager.GetDialog(), nullptr);
    EXPECT_EQ(manager.GetDialog()->GetCommitButton(), nullptr);
    EXPECT_EQ(manager.GetDialog()->GetCancelButton(), nullptr);
}

TEST_F(DialogManagerTest, ANodeThatIsNotAButtonRaisesTheTypeConversionError) {
    DialogManager manager;
    try {
        manager.SetDialogButtons(ViewWithButtons(false), "LocationPickerCancel",
                                 "LocationPickerCommit");
        FAIL() << "no error";
    } catch (const kelcore::config::kel_exception& error) {
        EXPECT_STREQ(error.what(), "Invalid type conversion.");
    }
    EXPECT_EQ(manager.GetCancelButton(), nullptr);
}

TEST_F(DialogManagerTest, ShowRunsTheDialogModallySizedToTheSectionsAndEnterCommits) {
    DialogManager manager;
    const auto view = ViewWithButtons();
    view->UI_SetLocalRectF({0.0f, 0.0f, 340.0f, 60.0f});
    int commits = 0;
    manager.SetDialogButtons(view, "LocationPickerCancel", "LocationPickerCommit");
    manager.GetCommitButton()->NotifyWhenChanged([&] { ++commits; });
    manager.ShowSection(manager.AddSection(0, view));

    PressInNextModal(Qt::Key_Return);
    manager.ShowWorkflow();

    EXPECT_EQ(commits, 1);
    ASSERT_NE(manager.GetDialog(), nullptr);
    EXPECT_EQ(manager.GetDialog()->GetCommitButton(), manager.GetCommitButton());
    EXPECT_EQ(manager.GetDialog()->GetCancelButton(), manager.GetCancelButton());
    EXPECT_TRUE(manager.GetMainView()->UI_IsShown());
    EXPECT_EQ(manager.GetMainView()->UI_GetLocalRectF(), (RectT<float>{0.0f, 0.0f, 342.0f, 62.0f}));
    EXPECT_EQ(manager.GetDialog()->GetWidget()->size(), QSize(342, 62));
}

TEST_F(DialogManagerTest, EscapeCancelsThroughTheCancelButton) {
    DialogManager manager;
    const auto view = ViewWithButtons();
    view->UI_SetLocalRectF({0.0f, 0.0f, 340.0f, 60.0f});
    int cancels = 0;
    manager.SetDialogButtons(view, "LocationPickerCancel", "LocationPickerCommit");
    manager.GetCancelButton()->NotifyWhenChanged([&] { ++cancels; });
    manager.AddSection(0, view);
    PressInNextModal(Qt::Key_Escape);
    manager.ShowWorkflow();
    EXPECT_EQ(cancels, 1);
}

TEST_F(DialogManagerTest, WithoutAMainWindowTheLayoutStopsButTheDialogStillRuns) {
    kelui::ui::SetMainTopLevelWindow({});
    DialogManager manager;
    boost::intrusive_ptr<FixedView> view(new FixedView(340.0f, 60.0f));
    view->UI_SetLocalRectF({0.0f, 0.0f, 340.0f, 60.0f});
    manager.AddSection(0, view);
    PressInNextModal(Qt::Key_Escape);
    manager.ShowWorkflow();
    EXPECT_EQ(manager.GetMainView()->UI_GetLocalRectF(), (RectT<float>{}));
}

TEST_F(DialogManagerTest, PopupOnlyOperationsDoNothing) {
    DialogManager manager;
    int commits = 0;
    manager.AddCommitCallback([&] { ++commits; });
    manager.SetAnchorNode(nullptr);
    manager.SetPopupPosition({5.0f, 5.0f});
    manager.HideWorkflow();  // no dialog yet
    EXPECT_EQ(manager.GetDialog(), nullptr);
    EXPECT_EQ(commits, 0);
}

TEST_F(DialogManagerTest, TheLocationDialogIsAssembledOnTheProjectStepAndNotRaisedByTheLibrary) {
    std::shared_ptr<sharedui::WorkflowBase> presented;
    sharedui::SetSelectLocationDialogPresenter(
        [&](const std::shared_ptr<sharedui::WorkflowBase>& workflow) { presented = workflow; });
    vantro::v2::User record;
    record.name = "ann";
    const auto user = kelcore::classref::MakeInterfaceRef<vantro::VantroUser>(std::move(record));

    sharedui::ShowSelectLocationDialogCentered(user, [](const auto&, const auto&) {});
    sharedui::SetSelectLocationDialogPresenter({});

    auto* dialog = dynamic_cast<DialogManager*>(presented.get());
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->GetDialog(), nullptr);  // assembled, not shown
    ASSERT_EQ(dialog->GetMainView()->ChildCount(), 1u);
    // The holder is released on return: the presenter's reference is the last one.
    EXPECT_EQ(presented.use_count(), 1);
}

TEST_F(DialogManagerTest, APresenterCanRaiseTheLocationDialog) {
    bool ran = false;
    sharedui::SetSelectLocationDialogPresenter(
        [&](const std::shared_ptr<sharedui::WorkflowBase>& workflow) {
            PressInNextModal(Qt::Key_Escape);
            workflow->ShowWorkflow();
            ran = true;
        });
    vantro::v2::User record;
    record.name = "ann";
    sharedui::ShowSelectLocationDialogCentered(
        kelcore::classref::MakeInterfaceRef<vantro::VantroUser>(std::move(record)),
        [](const auto&, const auto&) {});
    sharedui::SetSelectLocationDialogPresenter({});
    EXPECT_TRUE(ran);
}

}  // namespace
}  // namespace vantrokelui::view
