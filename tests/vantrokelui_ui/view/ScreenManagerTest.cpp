#include <vantrokelui/view/ShareForReviewScreenManager.h>

#include <QWidget>

#include <gtest/gtest.h>

#include <kelui/ui/UI_HostWidgetNode.h>
#include <vantrokelui/sharedui/CreatePopupWorkflow.h>
#include <vantrokelui/sharedui/Measuring.h>
#include <vantrokelui/sharedui/PopupManager.h>
#include <vantrokelui/view/ShareForReviewScreenManagerImpl.h>

#include "support/qt/QtMainThreadFixture.h"

namespace vantrokelui::view {
namespace {

using ViewID = ShareForReviewViewID;

// A workflow host that records what the screen manager asks of it.
class RecordingWorkflow final : public sharedui::WorkflowBase {
public:
    void SetPopupPosition(kelcore::geom::PointT<float>) override {}
    boost::intrusive_ptr<sharedui::WorkflowSectionView> AddSection(
        std::size_t, boost::intrusive_ptr<kelui::ui::UI_SubView> view) override {
        sections.emplace_back(new sharedui::WorkflowSectionView(std::move(view), {}, nullptr));
        return sections.back();
    }
    void ShowSection(boost::intrusive_ptr<sharedui::WorkflowSectionView> section) override {
        shownSections.push_back(section);
        ++layouts;
    }
    void ShowWorkflow() override { ++shows; }
    void AddCommitCallback(std::function<void()> callback) override {
        commits.push_back(std::move(callback));
    }
    void HideWorkflow() override { ++hides; }
    void SetDialogButtons(boost::intrusive_ptr<kelui::ui::UI_Node>, const std::string&,
                          const std::string&) override {}
    void SetAnchorNode(boost::intrusive_ptr<kelui::ui::UI_Node>) override {}
    void UpdateLayout() override { ++layouts; }

    std::vector<boost::intrusive_ptr<sharedui::WorkflowSectionView>> sections;
    std::vector<boost::intrusive_ptr<sharedui::WorkflowSectionView>> shownSections;
    std::vector<std::function<void()>> commits;
    int shows = 0;
    int hides = 0;
    int layouts = 0;
};

class ScreenManagerTest : public testsupport::QtMainThreadFixture {
protected:
    void SetUp() override {
        QtMainThreadFixture::SetUp();
        viewModel = viewmodel::ShareForReviewViewModel::Create();
        workflow = std::make_shared<RecordingWorkflow>();
    }
    void TearDown() override {
        manager.reset();
        workflow.reset();
        viewModel.reset();
        QtMainThreadFixture::TearDown();
    }

    void Create() {
        manager = CreateShareForReviewScreenManager(viewModel, workflow);
        Pump();
    }
    /// Moves the panel to `id`, as an opening (which lets changes through again) and then the
    /// view model would.
    void Show(ViewID id) {
        viewModel->EnableCurrentViewIDMessages(true);
        viewModel->SetCurrentViewID(id);
        Pump();
    }
    boost::intrusive_ptr<kelui::ui::UI_SubView> Content() const {
        return workflow->sections.at(0)->GetContent();
    }

    std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel;
    std::shared_ptr<RecordingWorkflow> workflow;
    std::shared_ptr<ShareForReviewScreenManager> manager;
};

TEST_F(ScreenManagerTest, MakesOneSectionAroundAnEmptyViewAndOneCommitCallback) {
    Create();
    ASSERT_EQ(workflow->sections.size(), 1u);
    EXPECT_NE(Content(), nullptr);
    EXPECT_EQ(Content()->ChildCount(), 0u);
    EXPECT_EQ(workflow->commits.size(), 1u);
}

TEST_F(ScreenManagerTest, ViewIDZeroAtBindTimeHidesTheWorkflowThatWasNeverShown) {
    Create();
    EXPECT_EQ(workflow->hides, 1);
    EXPECT_EQ(workflow->shows, 0);
}

TEST_F(ScreenManagerTest, ViewIDZeroAtBindTimeLeavesAPopupThatNeverExistedAbsent) {
    auto popup = std::dynamic_pointer_cast<sharedui::PopupManager>(CreatePopupWorkflow());
    QWidget button;
    boost::intrusive_ptr<kelui::ui::UI_HostWidgetNode> anchor(
        new kelui::ui::UI_HostWidgetNode(&button));
    popup->SetAnchorNode(anchor);
    manager = CreateShareForReviewScreenManager(viewModel, popup);
    Pump();
    EXPECT_EQ(popup->GetPopupContainer(), nullptr);
    manager.reset();
}

TEST_F(ScreenManagerTest, TheScreenOfThePresentViewIDComesUpAtOnce) {
    viewModel->SetCurrentViewID(ViewID::ReviewInVantro);
    Create();
    EXPECT_EQ(workflow->shows, 1);
    EXPECT_EQ(workflow->hides, 0);
    ASSERT_EQ(workflow->shownSections.size(), 1u);
    EXPECT_EQ(workflow->shownSections[0], nullptr);
}

TEST_F(ScreenManagerTest, EachChangeMakesANewViewAndTheOldOneIsGone) {
    Create();
    Show(ViewID::EncodingQueued);
    const kelui::ui::UI_WeakNodePtr<kelui::ui::UI_SubView> first(Content());
    ASSERT_FALSE(first.Expired());
    Show(ViewID::EncodingProgress);
    EXPECT_TRUE(first.Expired());
    EXPECT_NE(Content(), nullptr);
    EXPECT_EQ(workflow->shows, 2);
}

TEST_F(ScreenManagerTest, TheLocationPickerShowsItsSectionAloneAndOtherScreensShowAll) {
    Create();
    Show(ViewID::SelectProject);
    ASSERT_FALSE(workflow->shownSections.empty());
    EXPECT_EQ(workflow->shownSections.back(), workflow->sections[0]);
    Show(ViewID::SelectFolder);
    EXPECT_EQ(workflow->shownSections.back(), workflow->sections[0]);
    Show(ViewID::CopyLinkSection);
    EXPECT_EQ(workflow->shownSections.back(), nullptr);
}

TEST_F(ScreenManagerTest, AViewIDOutsideTheScreensShowsAnEmptySectionWithoutFailing) {
    Create();
    Show(static_cast<ViewID>(14));
    ASSERT_NE(Content(), nullptr);
    EXPECT_EQ(Content()->ChildCount(), 0u);
    EXPECT_TRUE(Content()->UI_IsShown());
    EXPECT_EQ(workflow->shows, 1);
}

TEST_F(ScreenManagerTest, ZeroHidesTheWorkflowAndKeepsTheLastScreen) {
    Create();
    Show(ViewID::Offline);
    const auto screen = Content();
    Show(ViewID::None);
    EXPECT_EQ(workflow->hides, 2);
    EXPECT_EQ(Content(), screen);
}

TEST_F(ScreenManagerTest, AHeightChangeReachesTheHostOnlyThroughInvalidateParentForChild) {
    Create();
    Show(ViewID::ReviewInVantro);
    const int layoutsBefore = workflow->layouts;
    const int showsBefore = workflow->shows;
    auto& section = *workflow->sections[0];
    section.UI_SetLocalRectF({5.0f, 5.0f, 1.0f, 1.0f});

    viewModel->SetInvalidateParentForChild(!viewModel->GetInvalidateParentForChild());
    Pump();
    EXPECT_EQ(workflow->layouts, layoutsBefore + 1);
    EXPECT_EQ(workflow->shows, showsBefore);
    const auto size = sharedui::GetRecommendedSize(workflow->sections[0]);
    EXPECT_EQ(section.UI_GetLocalRectF(),
              (kelcore::geom::RectT<float>{0.0f, 0.0f, size.x, size.y}));
}

TEST_F(ScreenManagerTest, ACommitSetsTheViewIDToZero) {
    Create();
    Show(ViewID::ReviewInVantro);
    workflow->commits.at(0)();
    EXPECT_EQ(viewModel->GetCurrentViewID(), ViewID::None);
}

TEST_F(ScreenManagerTest, ACommitAfterTheViewModelIsGoneDoesNothing) {
    Create();
    manager.reset();
    viewModel.reset();
    Pump();
    EXPECT_NO_THROW(workflow->commits.at(0)());
}

TEST_F(ScreenManagerTest, NotificationsAfterTheManagerIsGoneDoNothing) {
    Create();
    manager.reset();
    const int shows = workflow->shows;
    Show(ViewID::ReviewInVantro);
    EXPECT_EQ(workflow->shows, shows);
}

}  // namespace
}  // namespace vantrokelui::view
