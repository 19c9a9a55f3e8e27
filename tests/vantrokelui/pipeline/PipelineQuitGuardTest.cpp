#include <gtest/gtest.h>

#include <array>
#include <string>

#include <kelcore/appstatemanager/PrepareToQuitService.h>
#include <kelui/dialogs/messagebox/UI_MessageBox.h>
#include <vantrokelui/model/ShareModel.h>

#include "SharePipelineFixture.h"
#include "vantrokelui/support/ScriptedMessageboxPresenter.h"
#include "vantrokelui/support/TestTopLevelWindow.h"

namespace vantrokeluitest {
namespace {

namespace model = vantrokelui::model;
using kelui::dialogs::messagebox::UI_MessageBox;
using vantrokelui::testing::ScriptedMessageboxPresenter;
using vantrokelui::testing::TestTopLevelWindow;

class PipelineQuitGuardTest : public SharePipelineFixture {};

TEST_F(PipelineQuitGuardTest, QuittingDuringAShareAsksAndCloseLaterStopsTheQuit) {
    StartSignedInWorld();
    const auto window = TestTopLevelWindow::Create();
    ScriptedMessageboxPresenter boxes(UI_MessageBox::Button2);
    const auto jobID = host->ShareUntilQueued();
    ASSERT_FALSE(jobID.empty());

    EXPECT_FALSE(kelcore::appstatemanager::RunPrepareToQuit()) << "Close later must stop the quit";

    const auto requests = boxes.Requests();
    ASSERT_EQ(requests.size(), 1u);
    const auto& request = requests.front();
    EXPECT_EQ(request.title, "Still rendering and uploading");
    EXPECT_EQ(request.message,
              "Your sequence is still rendering and uploading to Vantro. Closing Corvane now will "
              "cancel this process and newly created links will be empty.");
    EXPECT_EQ(request.buttons,
              (std::array<std::string, 5>{"Close now", "Close later", "", "", ""}));
    EXPECT_EQ(request.defaultButton, UI_MessageBox::Button2);
    EXPECT_EQ(request.icon, UI_MessageBox::Icon::Warning);
    EXPECT_FALSE(request.checkBox.has_value());
    EXPECT_EQ(request.parent, window);
    EXPECT_EQ(request.drawingSupplier, window->GetWorkspace()->GetDrawingSupplier());
    EXPECT_NE(Job(jobID), nullptr) << "the guard must not touch the jobs";

    // The question comes back at the next attempt; "Close now" lets the quit go on.
    boxes.SetAnswer(UI_MessageBox::Button1);
    EXPECT_TRUE(kelcore::appstatemanager::RunPrepareToQuit());
    EXPECT_EQ(boxes.Requests().size(), 2u);
    EXPECT_NE(Job(jobID), nullptr);
}

TEST_F(PipelineQuitGuardTest, QuittingAfterTheShareEndedAsksNothing) {
    StartSignedInWorld();
    const auto window = TestTopLevelWindow::Create();
    ScriptedMessageboxPresenter boxes(UI_MessageBox::Button2);
    const auto run = host->RunToLink();
    ASSERT_EQ(run.view, ViewID::CopyLinkSection);
    ASSERT_TRUE(AwaitJobGone(run.jobID));
    ASSERT_FALSE(model::HasActiveShareJobs());

    EXPECT_TRUE(kelcore::appstatemanager::RunPrepareToQuit());

    EXPECT_TRUE(boxes.Requests().empty());
}

TEST_F(PipelineQuitGuardTest, WithoutAMainWindowTheGuardLetsTheQuitGoOn) {
    StartSignedInWorld();
    ScriptedMessageboxPresenter boxes(UI_MessageBox::Button2);
    const auto jobID = host->ShareUntilQueued();
    ASSERT_FALSE(jobID.empty());

    EXPECT_TRUE(kelcore::appstatemanager::RunPrepareToQuit());

    EXPECT_TRUE(boxes.Requests().empty());
    EXPECT_NE(Job(jobID), nullptr);
}

}  // namespace
}  // namespace vantrokeluitest
